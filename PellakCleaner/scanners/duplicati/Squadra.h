#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>

namespace pellak::scanners {

/// A piece of work in numbered parts that several threads share. Parts are handed out in
/// ascending order.
class Squadra {
 public:
  /// At most `thread` threads share the work. `stop` may be empty.
  Squadra(std::size_t parti, std::size_t thread, const std::function<bool()>& stop)
      : parti_(parti), thread_(thread), stop_(stop) {}

  /// Runs `lavoro` on several threads, waits for all of them and passes on the first exception;
  /// the others are then told by `controlla` to end. Called once.
  void esegui(const std::function<void()>& lavoro);

  /// The next part, or none. Throws like `controlla`.
  std::optional<std::size_t> prossima();

  /// How many parts nobody has taken yet.
  std::size_t rimaste() const;

  /// Throws `ScanCancelled` once a stop is wanted or another thread failed.
  void controlla() const;

 private:
  void protetto(const std::function<void()>& lavoro);

  const std::size_t parti_;
  const std::size_t thread_;
  const std::function<bool()>& stop_;
  std::atomic<std::size_t> prese_{0};
  mutable std::atomic<bool> finita_{false};
  std::mutex lock_;
  std::exception_ptr errore_;
};

}  // namespace pellak::scanners
