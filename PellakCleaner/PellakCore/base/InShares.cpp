#include "PellakCore/base/InShares.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

namespace pellak {

void inShares(std::size_t count, std::size_t least, std::size_t maxThreads,
              const std::function<void(std::size_t begin, std::size_t end)>& work) {
  const std::size_t threads = std::clamp<std::size_t>(
      std::min<std::size_t>(count / least, std::thread::hardware_concurrency()), 1, maxThreads);
  const std::size_t share = count / threads;
  std::vector<std::future<void>> others;  // joined when they go, also on the way of an exception
  std::size_t begin = 0;
  try {
    for (; others.size() + 1 < threads; begin += share) {
      others.push_back(std::async(std::launch::async, [&, begin] { work(begin, begin + share); }));
    }
  } catch (const std::system_error&) {
    // No more threads to be had: the rest is done here.
  }
  work(begin, count);
  for (std::future<void>& other : others) other.get();
}

}  // namespace pellak
