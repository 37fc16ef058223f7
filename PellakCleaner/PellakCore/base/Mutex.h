#pragma once

#include <mutex>

// Annotations that let clang check which lock guards which field; nothing elsewhere.
#if defined(__clang__)
#define PELLAK_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define PELLAK_THREAD_ATTRIBUTE(x)
#endif

#define PELLAK_GUARDED_BY(lock) PELLAK_THREAD_ATTRIBUTE(guarded_by(lock))
#define PELLAK_REQUIRES(...) PELLAK_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define PELLAK_EXCLUDES(...) PELLAK_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

namespace pellak {

/// std::mutex that the compiler can reason about. For objects whose lock guards many fields; a
/// single value belongs in `Guarded`.
class PELLAK_THREAD_ATTRIBUTE(capability("mutex")) Mutex {
 public:
  void lock() PELLAK_THREAD_ATTRIBUTE(acquire_capability()) { inner_.lock(); }
  void unlock() PELLAK_THREAD_ATTRIBUTE(release_capability()) { inner_.unlock(); }
  /// For std::condition_variable; the caller holds the lock.
  std::mutex& inner() { return inner_; }

 private:
  std::mutex inner_;
};

/// Holds a `Mutex` for a scope.
class PELLAK_THREAD_ATTRIBUTE(scoped_lockable) MutexLock {
 public:
  explicit MutexLock(Mutex& mutex) PELLAK_THREAD_ATTRIBUTE(acquire_capability(mutex))
      : mutex_(mutex) {
    mutex_.lock();
  }
  ~MutexLock() PELLAK_THREAD_ATTRIBUTE(release_capability()) { mutex_.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& mutex_;
};

}  // namespace pellak
