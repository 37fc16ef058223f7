#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/base/Mutex.h"

namespace pellak {

/// Counts the paths that the system refused to open (EPERM or EACCES), in all and by root.
/// Shared by the threads of one scan; every operation takes its own lock.
class Contatore {
 public:
  /// `home` folds the roots below the home folder to "~". With `campioni` the first 20,000
  /// refused paths are kept too.
  explicit Contatore(std::string home, bool campioni = campioniRichiesti());

  void add(std::optional<std::string_view> percorso);
  void reset();
  std::int64_t n() const;
  std::map<std::string, std::int64_t> perRadice() const;
  std::vector<std::string> percorsi() const;

  /// Whether the environment holds PELLAK_DENIED=1; read once for the life of the process.
  static bool campioniRichiesti();

 private:
  const std::string home_;
  const bool campioni_;
  mutable Mutex lock_;
  std::int64_t n_ PELLAK_GUARDED_BY(lock_) = 0;
  std::map<std::string, std::int64_t> perRadice_ PELLAK_GUARDED_BY(lock_);
  std::vector<std::string> percorsi_ PELLAK_GUARDED_BY(lock_);
};

/// The bucket under which a refusal counts: "~" and two more components below the home folder,
/// three components elsewhere.
std::string rootKey(std::string_view percorso, std::string_view home);

/// A root and how often it was refused.
struct RadiceNegata {
  std::string cartella;
  std::int64_t quanti = 0;
};

/// The roots with most refusals, most first (equal ones in byte order), at most `massimo`.
std::vector<RadiceNegata> radiciPeggiori(const Contatore& contatore, std::size_t massimo = 10);

/// The counter of whatever thread has none of its own. One for the process, never destroyed.
class Denied {
 public:
  static Contatore& sezione();

  static void resetShared() { sezione().reset(); }
  static std::int64_t sharedCount() { return sezione().n(); }
  static std::vector<std::string> sharedPaths() { return sezione().percorsi(); }
};

/// Counts a refusal on the current thread's counter, or on the shared one.
void registraDiniego(std::optional<std::string_view> percorso);

/// Runs `body` with `contatore` as the current thread's counter and puts back exactly what was
/// installed before, also when `body` throws. Threads started inside do not inherit it.
void withCounter(Contatore& contatore, const std::function<void()>& body);

}  // namespace pellak
