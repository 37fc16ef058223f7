#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>

#include "platform/Applications.h"
#include "platform/Files.h"

namespace pellak {

/// Application icons as "data:image/png;base64," URLs, kept in a file between runs. Any thread;
/// its lock is independent of the engine's and never held while an icon is drawn.
class IconCache {
 public:
  IconCache(Files& files, Applications& applicazioni, std::string file);

  /// Reads the file; a missing or broken one leaves the cache empty.
  void carica();

  /// The icon, made when it is not known yet; empty when there is none. A key without an icon is
  /// asked for only once in the life of the process.
  std::string icona(std::string_view chiave);
  /// The icon if it is known already, else empty.
  std::string nota(std::string_view chiave) const;

  bool daSalvare() const;
  /// Writes the file if an icon was added since the last time.
  Result<void> salva();

 private:
  Files& files_;
  Applications& applicazioni_;
  const std::string file_;
  mutable std::mutex lock_;
  std::map<std::string, std::string, std::less<>> cache_;
  std::set<std::string, std::less<>> senzaIcona_;
  bool dirty_ = false;
};

/// Base64 with the standard alphabet and padding.
std::string base64(std::string_view byte);

}  // namespace pellak
