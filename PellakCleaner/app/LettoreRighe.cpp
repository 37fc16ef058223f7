#include "app/LettoreRighe.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace pellak::app {
namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10U;

}  // namespace

LettoreRighe::LettoreRighe(int descriptor, std::size_t massimoByte)
    : descriptor_(descriptor), massimoByte_(massimoByte) {}

std::optional<std::string> LettoreRighe::daRaccolto() {
  for (;;) {
    const std::size_t fine = raccolto_.find('\n', cercatoFino_);
    if (fine == std::string::npos) {
      cercatoFino_ = raccolto_.size();
      if (raccolto_.size() > massimoByte_) {
        raccolto_.clear();
        cercatoFino_ = 0;
        saltando_ = true;
      }
      return {};
    }
    std::string riga = raccolto_.substr(0, fine);
    raccolto_.erase(0, fine + 1);
    cercatoFino_ = 0;
    const bool intera = !saltando_ && riga.size() <= massimoByte_;
    saltando_ = false;
    if (intera) return riga;
  }
}

bool LettoreRighe::leggi() {
  std::array<char, kBlock> blocco{};
  const ssize_t letti = ::read(descriptor_, blocco.data(), blocco.size());
  if (letti > 0) raccolto_.append(blocco.data(), static_cast<std::size_t>(letti));
  return letti > 0 || (letti < 0 && (errno == EINTR || errno == EAGAIN));
}

LettoreRighe::Esito LettoreRighe::prossima(std::string& riga, int millisecondi) {
  for (;;) {
    if (auto pronta = daRaccolto()) {
      riga = std::move(*pronta);
      return Esito::riga;
    }
    if (finito_) {
      if (raccolto_.empty() || saltando_) return Esito::fine;
      riga = std::move(raccolto_);
      raccolto_.clear();
      cercatoFino_ = 0;
      return Esito::riga;
    }
    pollfd attesa{descriptor_, POLLIN, 0};
    const int pronti = ::poll(&attesa, 1, millisecondi);
    if (pronti == 0 || (pronti < 0 && errno == EINTR)) return Esito::sospesa;
    if (pronti < 0 || !leggi()) finito_ = true;
  }
}

}  // namespace pellak::app
