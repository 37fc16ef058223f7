#include "platform/macos/appkit/MainLoopMac.h"

#import <AppKit/AppKit.h>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace pellak::native {
namespace {

constexpr double kLongest = 2'000'000;  // seconds
/// Of a repeated timer's interval: lets the system fire several timers at once.
constexpr double kTolerance = 0.1;

/// A loop that was told to stop looks at that after its next event.
void wakeUp() {
  NSEvent* event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0];
  [NSApp postEvent:event atStart:YES];
}

/// Stopping ends the innermost loop only, which may be that of a dialog.
void leaveAllLoops() {
  const bool inDialog = NSApp.modalWindow != nil;
  [NSApp stop:nil];
  wakeUp();
  if (!inDialog) return;
  dispatch_async(dispatch_get_main_queue(), ^{
    leaveAllLoops();
  });
}

}  // namespace

struct MainLoopMac::State {
  bool ended = false;
  int stato = 0;
  TimerId last = 0;
  std::map<TimerId, NSTimer*> timers;
};

MainLoopMac::MainLoopMac() : state_(std::make_shared<State>()) {}

MainLoopMac::~MainLoopMac() {
  state_->ended = true;
  while (!state_->timers.empty()) cancel(state_->timers.begin()->first);
}

int MainLoopMac::run() {
  if (!state_->ended) [NSApp run];
  return state_->stato;
}

void MainLoopMac::terminate(int stato) {
  if (state_->ended) return;
  state_->ended = true;
  state_->stato = stato;
  leaveAllLoops();
}

void MainLoopMac::post(Task task) {
  const auto state = state_;
  const auto kept = std::make_shared<Task>(std::move(task));
  dispatch_async(dispatch_get_main_queue(), ^{
    // Taken out, so that it also goes away here and not on the thread that posted it.
    const Task running = std::move(*kept);
    if (!state->ended) running();
  });
}

MainLoop::TimerId MainLoopMac::after(double seconds, Task task) {
  return start(seconds, false, std::move(task));
}

MainLoop::TimerId MainLoopMac::every(double seconds, Task task) {
  return start(seconds, true, std::move(task));
}

MainLoop::TimerId MainLoopMac::start(double seconds, bool again, Task task) {
  const double wait = std::isnan(seconds) ? 0 : std::clamp(seconds, 0.0, kLongest);
  const auto state = state_;
  const auto kept = std::make_shared<Task>(std::move(task));
  const TimerId id = ++state->last;
  NSTimer* timer = [NSTimer timerWithTimeInterval:wait
                                          repeats:again
                                            block:^(NSTimer* /*timer*/) {
                                              // Its own task may cancel it, and with it this block.
                                              const auto running = kept;
                                              if (!again) state->timers.erase(id);
                                              if (!state->ended) (*running)();
                                            }];
  if (again) timer.tolerance = wait * kTolerance;
  [NSRunLoop.mainRunLoop addTimer:timer forMode:NSRunLoopCommonModes];
  state->timers[id] = timer;
  return id;
}

void MainLoopMac::cancel(TimerId timer) {
  const auto found = state_->timers.find(timer);
  if (found == state_->timers.end()) return;
  NSTimer* ended = found->second;
  state_->timers.erase(found);
  [ended invalidate];
}

}  // namespace pellak::native
