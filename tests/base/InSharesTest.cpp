#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

#include "PellakCore/base/InShares.h"

namespace pellak {
namespace {

TEST(InShares, EveryPartIsDoneOnceByFewThreads) {
  for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{9}, std::size_t{10},
                                  std::size_t{21}, std::size_t{1003}}) {
    std::vector<std::atomic<int>> done(count);
    std::atomic<std::size_t> calls{0};
    inShares(count, 10, 3, [&](std::size_t begin, std::size_t end) {
      ++calls;
      for (std::size_t i = begin; i < end; ++i) ++done[i];
    });
    for (const auto& times : done) EXPECT_EQ(times, 1) << count;
    EXPECT_LE(calls, count < 20 ? 1U : 3U) << count;
  }
}

TEST(InShares, AnExceptionOfAnyThreadArrivesWhenAllAreDone) {
  for (const std::size_t where : {std::size_t{0}, std::size_t{99}}) {
    EXPECT_THROW(inShares(100, 1, 4,
                          [&](std::size_t begin, std::size_t end) {
                            if (begin <= where && where < end) throw std::runtime_error("no");
                          }),
                 std::runtime_error);
  }
}

}  // namespace
}  // namespace pellak
