#include "platform/linux/gtk/MainLoopGtk.h"

#include <algorithm>
#include <cmath>
#include <glib.h>
#include <utility>

namespace pellak::native {
namespace {

constexpr double kMillisecond = 1000;
constexpr double kLongest = 2'000'000;  // seconds; what the loop's counter holds

}  // namespace

struct MainLoopGtk::Timer {
  MainLoopGtk& loop;
  TimerId id;
  bool again;
  Task task;
  GSource* source;
};

MainLoopGtk::MainLoopGtk() : loop_(g_main_loop_new(nullptr, 0)) {}

MainLoopGtk::~MainLoopGtk() {
  while (!timers_.empty()) cancel(timers_.begin()->first);
  if (wakeUp_ != nullptr) {
    g_source_destroy(wakeUp_);
    g_source_unref(wakeUp_);
  }
  g_main_loop_unref(loop_);
}

int MainLoopGtk::run(Task pronto) {
  post(std::move(pronto));
  if (!ended_) g_main_loop_run(loop_);
  return stato_;
}

void MainLoopGtk::terminate(int stato) {
  if (ended_) return;
  ended_ = true;
  stato_ = stato;
  g_main_loop_quit(loop_);
}

void MainLoopGtk::post(Task task) {
  const std::lock_guard<std::mutex> hold(lock_);
  posted_.push_back(std::move(task));
  if (wakeUp_ != nullptr) return;
  wakeUp_ = g_idle_source_new();
  // As events of the window: neither waits for the other to run dry.
  g_source_set_priority(wakeUp_, G_PRIORITY_DEFAULT);
  g_source_set_callback(wakeUp_, onPosted, this, nullptr);
  g_source_attach(wakeUp_, nullptr);
}

int MainLoopGtk::onPosted(void* self) {
  auto* loop = static_cast<MainLoopGtk*>(self);
  std::deque<Task> tasks;
  {
    const std::lock_guard<std::mutex> hold(loop->lock_);
    tasks.swap(loop->posted_);
    g_source_unref(std::exchange(loop->wakeUp_, nullptr));
  }
  for (const Task& task : tasks) {
    if (loop->ended_) break;
    task();
  }
  return G_SOURCE_REMOVE;
}

MainLoop::TimerId MainLoopGtk::after(double seconds, Task task) {
  return start(seconds, false, std::move(task));
}

MainLoop::TimerId MainLoopGtk::every(double seconds, Task task) {
  return start(seconds, true, std::move(task));
}

MainLoop::TimerId MainLoopGtk::start(double seconds, bool again, Task task) {
  const double wait = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, kLongest);
  GSource* source = g_timeout_source_new(static_cast<guint>(std::lround(wait * kMillisecond)));
  const auto timer = std::make_shared<Timer>(Timer{*this, ++last_, again, std::move(task), source});
  timers_[timer->id] = timer;
  g_source_set_callback(source, onTimer, timer.get(), nullptr);
  g_source_attach(source, nullptr);
  return timer->id;
}

void MainLoopGtk::cancel(TimerId timer) {
  const auto found = timers_.find(timer);
  if (found == timers_.end()) return;
  GSource* source = found->second->source;
  timers_.erase(found);
  g_source_destroy(source);
  g_source_unref(source);
}

int MainLoopGtk::onTimer(void* raw) {
  auto* due = static_cast<Timer*>(raw);
  // Its own task may cancel it.
  const std::shared_ptr<Timer> timer = due->loop.timers_.at(due->id);
  if (!timer->again) timer->loop.cancel(timer->id);
  if (!timer->loop.ended_) timer->task();
  return timer->again ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

}  // namespace pellak::native
