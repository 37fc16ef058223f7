#include "platform/posix/HomeFolder.h"

#include <cstddef>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pellak::posix {

namespace {

/// What the system's records have of a user, read by `campo`; empty when they have none.
template <class Campo>
std::string recorded(uid_t utente, Campo campo) {
  constexpr std::size_t kRecordBytes = std::size_t{16} << 10U;
  std::vector<char> memoria(kRecordBytes);
  passwd record{};
  passwd* trovato = nullptr;
  const int esito = ::getpwuid_r(utente, &record, memoria.data(), memoria.size(), &trovato);
  return esito != 0 || trovato == nullptr ? std::string() : std::string(campo(record));
}

}  // namespace

std::string homeFolder() {
  return recorded(::getuid(), [](const passwd& record) { return record.pw_dir; });
}

uid_t trashUser(const std::string& home) {
  struct stat info {};
  if (::geteuid() != 0 || ::stat(home.c_str(), &info) != 0) return ::geteuid();
  return info.st_uid;
}

std::string otherOwner(const std::string& home) {
  const uid_t utente = trashUser(home);
  if (utente == ::geteuid()) return {};
  std::string nome = recorded(utente, [](const passwd& record) { return record.pw_name; });
  return nome.empty() ? std::to_string(utente) : nome;
}

}  // namespace pellak::posix
