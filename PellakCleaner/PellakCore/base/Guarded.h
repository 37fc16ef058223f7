#pragma once

#include <mutex>
#include <utility>

namespace pellak {

/// A value that can only be reached while its lock is held.
///
///   Guarded<Cache> cache;
///   cache.with([](Cache& c) { c.clear(); });
template <class T>
class Guarded {
 public:
  Guarded() = default;
  explicit Guarded(T value) : value_(std::move(value)) {}

  /// Runs `body` with the value under the lock and returns what it returns; nothing that refers
  /// to the value may leave it.
  template <class Body>
  auto with(Body&& body) {
    const std::lock_guard<std::mutex> hold(lock_);
    return std::forward<Body>(body)(value_);
  }

  template <class Body>
  auto with(Body&& body) const {
    const std::lock_guard<std::mutex> hold(lock_);
    return std::forward<Body>(body)(value_);
  }

 private:
  mutable std::mutex lock_;
  T value_{};
};

}  // namespace pellak
