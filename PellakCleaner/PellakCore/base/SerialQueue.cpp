#include "PellakCore/base/SerialQueue.h"

#include <utility>

namespace pellak {

SerialQueue::SerialQueue(std::string etichetta) : etichetta_(std::move(etichetta)) {}

SerialQueue::~SerialQueue() {
  {
    const std::lock_guard<std::mutex> hold(lock_);
    stopping_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void SerialQueue::startThread() {
  if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
}

void SerialQueue::post(Task task) {
  {
    const std::lock_guard<std::mutex> hold(lock_);
    if (stopping_) return;
    startThread();
    pending_.push_back(std::move(task));
    ++posted_;
  }
  changed_.notify_all();
}

void SerialQueue::postAfter(std::chrono::milliseconds attesa, Task task) {
  {
    const std::lock_guard<std::mutex> hold(lock_);
    if (stopping_) return;
    startThread();
    delayed_.emplace(std::chrono::steady_clock::now() + attesa, std::move(task));
  }
  changed_.notify_all();
}

void SerialQueue::drain() {
  std::unique_lock<std::mutex> hold(lock_);
  const std::uint64_t target = posted_;
  changed_.wait(hold, [&] { return finished_ >= target || stopping_; });
}

bool SerialQueue::drainFor(std::chrono::milliseconds attesa) {
  std::unique_lock<std::mutex> hold(lock_);
  const std::uint64_t target = posted_;
  return changed_.wait_for(hold, attesa, [&] { return finished_ >= target || stopping_; });
}

std::size_t SerialQueue::inAttesa() {
  const std::lock_guard<std::mutex> hold(lock_);
  return static_cast<std::size_t>(posted_ - finished_);
}

void SerialQueue::promoteDue() {
  const auto now = std::chrono::steady_clock::now();
  while (!delayed_.empty() && delayed_.begin()->first <= now) {
    pending_.push_back(std::move(delayed_.begin()->second));
    ++posted_;
    delayed_.erase(delayed_.begin());
  }
}

void SerialQueue::run() {
  std::unique_lock<std::mutex> hold(lock_);
  while (!stopping_) {
    promoteDue();
    if (pending_.empty()) {
      if (delayed_.empty()) {
        changed_.wait(hold);
      } else {
        changed_.wait_until(hold, std::chrono::steady_clock::time_point(delayed_.begin()->first));
      }
      continue;
    }
    Task task = std::move(pending_.front());
    pending_.pop_front();
    hold.unlock();
    task();
    task = nullptr;
    hold.lock();
    ++finished_;
    changed_.notify_all();
  }
}

}  // namespace pellak
