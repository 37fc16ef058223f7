#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "PellakCore/base/SerialQueue.h"

namespace pellak {
namespace {

TEST(SerialQueue, KeepsTheOrderOfEachThreadAndRunsOneAtATime) {
  SerialQueue coda("prova");
  std::vector<int> eseguiti;  // no lock: the queue itself must keep tasks apart
  std::vector<std::thread> mittenti;
  for (int mittente = 0; mittente < 4; ++mittente) {
    mittenti.emplace_back([&, mittente] {
      for (int i = 0; i < 500; ++i) {
        coda.post([&eseguiti, valore = mittente * 1000 + i] { eseguiti.push_back(valore); });
      }
    });
  }
  for (std::thread& mittente : mittenti) mittente.join();
  coda.drain();
  ASSERT_EQ(eseguiti.size(), 2000U);
  std::vector<int> ultimo(4, -1);
  for (const int valore : eseguiti) {
    EXPECT_EQ(valore % 1000, ultimo[static_cast<std::size_t>(valore / 1000)] + 1);
    ultimo[static_cast<std::size_t>(valore / 1000)] = valore % 1000;
  }
}

TEST(SerialQueue, DelayedTasksRunAfterTheirTimeAndNotAfterTheQueue) {
  std::atomic<bool> tardi{false};
  {
    SerialQueue coda("prova");
    std::promise<void> fatto;
    const auto inizio = std::chrono::steady_clock::now();
    coda.postAfter(std::chrono::milliseconds(30), [&] { fatto.set_value(); });
    coda.postAfter(std::chrono::hours(1), [&] { tardi = true; });
    fatto.get_future().wait();
    EXPECT_GE(std::chrono::steady_clock::now() - inizio, std::chrono::milliseconds(30));
  }
  EXPECT_FALSE(tardi);
}

TEST(SerialQueue, DestructionWaitsForTheRunningTaskAndDropsTheRest) {
  std::promise<void> iniziato;
  std::promise<void> lascia;
  std::atomic<int> eseguiti{0};
  {
    SerialQueue coda("prova");
    coda.post([&] {
      iniziato.set_value();
      lascia.get_future().wait();
      std::this_thread::sleep_for(std::chrono::milliseconds(500));
      ++eseguiti;
    });
    for (int i = 0; i < 3; ++i) coda.post([&] { eseguiti += 100; });
    iniziato.get_future().wait();
    EXPECT_FALSE(coda.drainFor(std::chrono::milliseconds(1)));
    lascia.set_value();
  }
  EXPECT_EQ(eseguiti, 1);
}

}  // namespace
}  // namespace pellak
