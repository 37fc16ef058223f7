#pragma once

namespace pellak {

/// Something a thread does to itself, such as lowering its priority, that the threads it starts
/// for its own work are to do as well. Systems differ in what a new thread inherits; this does not.
using ThreadSetting = void (*)();

/// What the calling thread had applied last; null when nothing.
ThreadSetting threadSetting();

/// Applies a setting (null: nothing) to the calling thread, for as long as it lives.
void applyToThread(ThreadSetting setting);

}  // namespace pellak
