#include "PellakCore/base/BackgroundPool.h"

#include <system_error>
#include <utility>

namespace pellak {

bool BackgroundPool::post(Task task) {
  {
    const std::lock_guard<std::mutex> hold(lock_);
    if (stopping()) return false;
    if (idle_ <= pending_.size() && !startOne() && threads_.empty()) return false;
    pending_.push_back(std::move(task));
  }
  work_.notify_one();
  return true;
}

bool BackgroundPool::startOne() {
  if (threads_.size() >= most_) return false;
  try {
    threads_.emplace_back([this] { run(); });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void BackgroundPool::stop() {
  std::vector<std::thread> threads;
  std::deque<Task> dropped;
  {
    const std::lock_guard<std::mutex> hold(lock_);
    stopping_ = true;
    threads.swap(threads_);
    dropped.swap(pending_);
  }
  work_.notify_all();
  for (std::thread& thread : threads) thread.join();
}

void BackgroundPool::run() {
  std::unique_lock<std::mutex> hold(lock_);
  while (!stopping()) {
    if (pending_.empty()) {
      ++idle_;
      work_.wait(hold);
      --idle_;
      continue;
    }
    Task task = std::move(pending_.front());
    pending_.pop_front();
    hold.unlock();
    task();
    task = nullptr;
    hold.lock();
  }
}

}  // namespace pellak
