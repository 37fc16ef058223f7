#include "PellakCore/base/BytePath.h"

#include <vector>

#include "PellakCore/base/Utf8.h"

namespace pellak {
namespace {

/// U+EF80 to U+EFFF in UTF-8: EE, then BE (bytes below C0) or BF, then one continuation byte.
constexpr char kLead = '\xEE';
constexpr unsigned kSecondLow = 0xBE;
constexpr unsigned kSecondHigh = 0xBF;

bool isEscape(std::string_view sequence) {
  if (sequence.size() != 3 || sequence[0] != kLead) return false;
  const auto second = static_cast<unsigned char>(sequence[1]);
  return second == kSecondLow || second == kSecondHigh;
}

void appendEscape(std::string& uscita, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  uscita += kLead;
  uscita += static_cast<char>(kSecondLow + ((value >> 6U) & 1U));
  uscita += static_cast<char>(0x80U | (value & 0x3FU));
}

char escapedByte(std::string_view sequence) {
  const auto second = static_cast<unsigned char>(sequence[1]);
  const auto third = static_cast<unsigned char>(sequence[2]);
  return static_cast<char>(0x80U | ((second & 1U) << 6U) | (third & 0x3FU));
}

}  // namespace

void appendCodificato(std::string& uscita, std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = utf8Sequence(bytes);
    const std::string_view piece = bytes.substr(0, length == 0 ? 1 : length);
    if (length == 0 || isEscape(piece)) {
      for (const char byte : piece) appendEscape(uscita, byte);
    } else {
      uscita += piece;
    }
    bytes.remove_prefix(piece.size());
  }
}

std::string codificaByte(std::string_view bytes) {
  std::string uscita;
  uscita.reserve(bytes.size());
  appendCodificato(uscita, bytes);
  return uscita;
}

std::string decodificaByte(std::string_view testo) {
  if (testo.find(kLead) == std::string_view::npos) return std::string(testo);
  std::string uscita;
  uscita.reserve(testo.size());
  while (!testo.empty()) {
    const std::size_t length = utf8Sequence(testo);
    const std::string_view piece = testo.substr(0, length == 0 ? 1 : length);
    if (isEscape(piece)) {
      uscita += escapedByte(piece);
    } else {
      uscita += piece;
    }
    testo.remove_prefix(piece.size());
  }
  return uscita;
}

std::string espandiTilde(std::string_view percorso, std::string_view home) {
  const bool tilde = percorso == "~" || percorso.substr(0, 2) == "~/";
  if (!tilde) return std::string(percorso);
  std::string intero(home == "/" ? std::string_view() : home);
  intero += percorso.substr(1);
  return intero.empty() ? "/" : intero;
}

std::string percorsoMostrato(std::string_view percorso, std::string_view home) {
  if (home.empty() || home == "/" || !dentroCartella(percorso, home)) return std::string(percorso);
  return "~" + std::string(percorso.substr(home.size()));
}

std::string standardizza(std::string_view percorso, std::string_view home) {
  if (percorso.find('\0') != std::string_view::npos) return {};
  const std::string intero = espandiTilde(percorso, home);
  if (intero.empty() || intero[0] != '/') return {};
  std::vector<std::string_view> parti;
  std::string_view resto = intero;
  while (!resto.empty()) {
    const std::size_t fine = resto.find('/');
    const std::string_view parte = resto.substr(0, fine);
    resto.remove_prefix(fine == std::string_view::npos ? resto.size() : fine + 1);
    if (parte == "..") {
      if (!parti.empty()) parti.pop_back();
    } else if (!parte.empty() && parte != ".") {
      parti.push_back(parte);
    }
  }
  std::string pulito;
  for (const std::string_view parte : parti) {
    pulito += '/';
    pulito += parte;
  }
  return pulito.empty() ? "/" : pulito;
}

bool standard(std::string_view percorso) {
  if (!percorso.starts_with('/') || percorso.find('\0') != std::string_view::npos) return false;
  if (percorso == "/") return true;
  for (std::size_t barra = 0; barra != std::string_view::npos;) {
    const std::size_t fine = percorso.find('/', barra + 1);
    const std::string_view parte = percorso.substr(barra + 1, fine - barra - 1);
    if (parte.empty() || parte == "." || parte == "..") return false;
    barra = fine;
  }
  return true;
}

std::string_view ultimoComponente(std::string_view percorso) {
  while (percorso.size() > 1 && percorso.back() == '/') percorso.remove_suffix(1);
  if (percorso == "/") return percorso;
  const std::size_t barra = percorso.rfind('/');
  return barra == std::string_view::npos ? percorso : percorso.substr(barra + 1);
}

std::string_view cartellaSopra(std::string_view percorso) {
  const std::size_t barra = percorso.rfind('/');
  if (barra == std::string_view::npos) return ".";
  return percorso.substr(0, barra == 0 ? 1 : barra);
}

void appendNome(std::string& percorso, std::string_view nome) {
  if (!percorso.ends_with('/')) percorso += '/';
  percorso += nome;
}

std::string unisci(std::string cartella, std::string_view nome) {
  appendNome(cartella, nome);
  return cartella;
}

bool dentroCartella(std::string_view percorso, std::string_view cartella) {
  if (percorso.substr(0, cartella.size()) != cartella) return false;
  return percorso.size() == cartella.size() || percorso[cartella.size()] == '/' || cartella == "/";
}

}  // namespace pellak
