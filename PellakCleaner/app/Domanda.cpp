#include "app/Domanda.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fmt/format.h>
#include <optional>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace pellak::app {
namespace {

constexpr int kLookMilliseconds = 100;
constexpr std::size_t kMaxLine = 1000;

/// The line without blanks around it; nothing at the end of input.
std::optional<std::string> rigaLetta(const Interruzione& interruzione) {
  std::string riga;
  while (!interruzione.chiesta()) {
    pollfd attesa{STDIN_FILENO, POLLIN, 0};
    const int pronti = ::poll(&attesa, 1, kLookMilliseconds);
    if (pronti == 0 || (pronti < 0 && errno == EINTR)) continue;
    std::array<char, 256> parte{};
    const ssize_t letti = pronti < 0 ? -1 : ::read(STDIN_FILENO, parte.data(), parte.size());
    if (letti <= 0 || riga.size() > kMaxLine) return {};
    riga.append(parte.data(), static_cast<std::size_t>(letti));
    if (riga.find('\n') == std::string::npos) continue;
    riga.resize(riga.find('\n'));
    const std::size_t primo = riga.find_first_not_of(" \t\r");
    if (primo == std::string::npos) return std::string();
    return riga.substr(primo, riga.find_last_not_of(" \t\r") + 1 - primo);
  }
  return {};
}

bool affermativa(const std::string& riga) {
  for (const char* parola : {"s", "S", "si", "Si", "SI", "sì", "Sì", "SÌ"}) {
    if (riga == parola) return true;
  }
  return false;
}

}  // namespace

bool qualcunoAlTerminale() { return ::isatty(STDIN_FILENO) != 0 && ::isatty(STDERR_FILENO) != 0; }

Assenso chiediConferma(std::string_view domanda, const Interruzione& interruzione) {
  ::tcflush(STDIN_FILENO, TCIFLUSH);
  fmt::print(stderr, "{} [s/N] ", domanda);
  std::fflush(stderr);
  const auto riga = rigaLetta(interruzione);
  if (!riga) fmt::print(stderr, "\n");
  if (interruzione.chiesta()) return Assenso::interrotto;
  return riga && affermativa(*riga) ? Assenso::si : Assenso::no;
}

}  // namespace pellak::app
