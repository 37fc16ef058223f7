#include "app/Terminale.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <iterator>
#include <sys/ioctl.h>
#include <unistd.h>

#include "PellakCore/base/Utf8.h"

namespace pellak::app {
namespace {

constexpr std::size_t kDefaultColumns = 80;

void appendEscape(std::string& uscita, std::string_view byte) {
  for (const char c : byte) {
    if (c == '\n') {
      uscita += "\\n";
    } else if (c == '\t') {
      uscita += "\\t";
    } else {
      fmt::format_to(std::back_inserter(uscita), "\\x{:02x}", static_cast<unsigned char>(c));
    }
  }
}

/// C0, DEL, the C1 range, and the marks that reorder text on the screen.
bool isUnsafe(std::string_view sequence) {
  const auto first = static_cast<unsigned char>(sequence[0]);
  if (sequence.size() == 1) return first < 0x20 || first == 0x7F;
  const auto second = static_cast<unsigned char>(sequence[1]);
  if (first == 0xC2) return second < 0xA0;
  if (sequence.size() != 3 || first != 0xE2) return false;
  const auto third = static_cast<unsigned char>(sequence[2]);
  if (second == 0x80) return (third >= 0x8E && third <= 0x8F) || (third >= 0xA8 && third <= 0xAE);
  return second == 0x81 && third >= 0xA6 && third <= 0xA9;
}

std::string conCodice(std::string_view testo, std::string_view codice) {
  if (!coloriAmmessi()) return std::string(testo);
  return fmt::format("\033[{}m{}\033[0m", codice, testo);
}

std::string incolonna(const std::string& cella, std::size_t ampiezza, Allineamento allineamento) {
  const std::size_t occupati = larghezza(cella);
  const std::string vuoti(ampiezza > occupati ? ampiezza - occupati : 0, ' ');
  return allineamento == Allineamento::destra ? vuoti + cella : cella + vuoti;
}

}  // namespace

std::string perTerminale(std::string_view testo) {
  std::string uscita;
  while (!testo.empty()) {
    const std::size_t length = utf8Sequence(testo);
    const std::string_view piece = testo.substr(0, length == 0 ? 1 : length);
    if (length == 0 || isUnsafe(piece)) {
      appendEscape(uscita, piece);
    } else {
      uscita += piece;
    }
    testo.remove_prefix(piece.size());
  }
  return uscita;
}

std::size_t larghezza(std::string_view testo) {
  return static_cast<std::size_t>(std::count_if(testo.begin(), testo.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
  }));
}

bool uscitaInterattiva() {
  const char* tipo = std::getenv("TERM");
  const bool muto = tipo == nullptr || std::string_view(tipo) == "dumb";
  return !muto && ::isatty(STDOUT_FILENO) != 0 && ::isatty(STDERR_FILENO) != 0;
}

bool coloriAmmessi() {
  const char* senza = std::getenv("NO_COLOR");
  return (senza == nullptr || *senza == '\0') && uscitaInterattiva();
}

std::size_t colonneTerminale() {
  winsize misure{};
  const bool nota = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &misure) == 0 && misure.ws_col > 0;
  return nota ? misure.ws_col : kDefaultColumns;
}

std::string grassetto(std::string_view testo) { return conCodice(testo, "1"); }
std::string tenue(std::string_view testo) { return conCodice(testo, "2"); }

std::string Tabella::testo() const {
  std::vector<std::size_t> ampiezze(colonne_.size(), 0);
  for (const auto& celle : righe_) {
    for (std::size_t i = 0; i < celle.size(); ++i) {
      ampiezze[i] = std::max(ampiezze[i], larghezza(celle[i]));
    }
  }
  std::string uscita;
  for (std::size_t r = 0; r < righe_.size(); ++r) {
    std::string riga;
    for (std::size_t i = 0; i < righe_[r].size(); ++i) {
      if (i > 0) riga += "  ";
      riga += incolonna(righe_[r][i], ampiezze[i], colonne_[i]);
    }
    riga.erase(riga.find_last_not_of(' ') + 1);
    uscita += (r == 0 ? grassetto(riga) : riga) + "\n";
  }
  return uscita;
}

}  // namespace pellak::app
