#include <future>
#include <gtest/gtest.h>
#include <memory>

#include "PellakCore/base/BackgroundPool.h"

namespace pellak {
namespace {

TEST(BackgroundPoolTest, TasksRunAtTheSameTimeUpToTheNumberOfThreads) {
  std::atomic<int> now{0};
  std::atomic<int> most{0};
  std::atomic<int> left{40};
  std::atomic<bool> seen{false};
  std::promise<void> both;
  const std::shared_future<void> met = both.get_future().share();
  std::promise<void> done;
  BackgroundPool pool(2);
  for (int i = 0; i < 40; ++i) {
    ASSERT_TRUE(pool.post([&, met] {
      const int running = ++now;
      int before = most;
      while (before < running && !most.compare_exchange_weak(before, running)) {
      }
      if (running == 2 && !seen.exchange(true)) both.set_value();
      met.wait_for(std::chrono::seconds(10));
      --now;
      if (--left == 0) done.set_value();
    }));
  }
  EXPECT_EQ(done.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_EQ(most, 2);
}

TEST(BackgroundPoolTest, StoppingDropsWhatHasNotBegunAndJoinsTheRest) {
  const auto owned = std::make_shared<int>(0);
  std::promise<void> inside;
  std::atomic<bool> ended{false};
  std::atomic<bool> second{false};
  BackgroundPool pool(1);
  ASSERT_TRUE(pool.post([&] {
    inside.set_value();
    while (!pool.stopping()) std::this_thread::yield();
    ended = true;
  }));
  ASSERT_TRUE(pool.post([&, owned] { second = true; }));
  inside.get_future().wait();
  pool.stop();
  EXPECT_TRUE(ended);
  EXPECT_FALSE(second);
  EXPECT_EQ(owned.use_count(), 1) << "the dropped task is gone";
  EXPECT_FALSE(pool.post([] {}));
}

}  // namespace
}  // namespace pellak
