#include "scanners/walker/Crew.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

#include "PellakCore/base/ThreadSetting.h"

namespace pellak::walker {

Crew::Crew(std::size_t most, std::vector<Task> first, Body body)
    : body_(std::move(body)), stack_(std::move(first)), allowed_(most) {}

void Crew::run() {
  std::unique_lock<std::mutex> hold(lock_);
  for (std::size_t wanted = stack_.size(); wanted > 0 && startOne(); --wanted) continue;
  if (stack_.empty()) return;
  if (started_ == 0) {
    started_ = 1;
    hold.unlock();
    body_(0);
    return;
  }
  updateHunger();
  ended_.wait(hold, [&] { return over_; });
  std::vector<std::thread> threads = std::move(threads_);
  hold.unlock();
  for (std::thread& thread : threads) thread.join();
}

std::optional<Task> Crew::take() {
  std::unique_lock<std::mutex> hold(lock_);
  ++waiting_;
  if (stack_.empty() && waiting_ == started_) finish();
  updateHunger();
  work_.wait(hold, [&] { return over_ || !stack_.empty(); });
  --waiting_;
  if (over_) return std::nullopt;
  Task task = std::move(stack_.back());
  stack_.pop_back();
  updateHunger();
  return task;
}

void Crew::give(std::vector<Task> tasks) {
  const std::lock_guard<std::mutex> hold(lock_);
  if (over_) return;
  std::size_t hands = tasks.size();
  stack_.insert(stack_.end(), std::make_move_iterator(tasks.begin()),
                std::make_move_iterator(tasks.end()));
  for (std::size_t i = std::min(hands, waiting_); i > 0; --i, --hands) work_.notify_one();
  while (hands > 0 && startOne()) --hands;
  updateHunger();
}

void Crew::end() {
  const std::lock_guard<std::mutex> hold(lock_);
  finish();
}

bool Crew::startOne() {
  if (started_ == allowed_) return false;
  try {
    threads_.emplace_back([this, setting = threadSetting(), worker = started_] {
      applyToThread(setting);
      body_(worker);
    });
  } catch (const std::system_error&) {
    allowed_ = started_;
    return false;
  }
  ++started_;
  return true;
}

void Crew::finish() {
  over_ = true;
  stack_.clear();
  work_.notify_all();
  ended_.notify_all();
}

void Crew::updateHunger() {
  hungry_.store(!over_ && stack_.empty() && (waiting_ > 0 || started_ < allowed_),
                std::memory_order_relaxed);
}

}  // namespace pellak::walker
