#include "platform/posix/HomeFolder.h"

#include <cstddef>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace pellak::posix {

std::string homeFolder() {
  constexpr std::size_t kRecordBytes = std::size_t{16} << 10U;
  std::vector<char> memoria(kRecordBytes);
  passwd record{};
  passwd* trovato = nullptr;
  const int esito = ::getpwuid_r(::getuid(), &record, memoria.data(), memoria.size(), &trovato);
  return esito != 0 || trovato == nullptr ? std::string() : std::string(record.pw_dir);
}

}  // namespace pellak::posix
