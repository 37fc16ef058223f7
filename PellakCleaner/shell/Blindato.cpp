#include "shell/Blindato.h"

#include <cstddef>
#include <zlib.h>

#include "PellakCore/base/Utf8.h"

namespace pellak::shell::blindato {
namespace {

constexpr std::string_view kAlfabeto =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kLunghezza = 4;
constexpr std::uint8_t kMassimoQuarto = 3;
/// The window of a deflate stream without header or checksum.
constexpr int kGrezzo = -MAX_WBITS;

std::string base64(std::string_view byte) {
  std::string testo;
  std::uint32_t tre = 0;
  for (std::size_t i = 0; i < byte.size(); i += 3) {
    const std::size_t quanti = std::min<std::size_t>(3, byte.size() - i);
    tre = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      tre = tre << 8U | (j < quanti ? static_cast<std::uint8_t>(byte[i + j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      testo += j <= quanti ? kAlfabeto[tre >> (18 - 6 * j) & 63U] : '=';
    }
  }
  return testo;
}

std::optional<std::string> daBase64(std::string_view testo) {
  if (testo.size() % 4 != 0) return {};
  std::size_t fine = 0;
  while (fine < 2 && fine < testo.size() && testo[testo.size() - 1 - fine] == '=') ++fine;
  std::string byte;
  byte.reserve(testo.size() / 4 * 3);
  std::uint32_t bit = 0;
  int quanti = 0;
  for (const char carattere : testo.substr(0, testo.size() - fine)) {
    const std::size_t valore = kAlfabeto.find(carattere);
    if (valore == std::string_view::npos) return {};
    bit = bit << 6U | static_cast<std::uint32_t>(valore);
    quanti += 6;
    if (quanti < 8) continue;
    quanti -= 8;
    byte += static_cast<char>(bit >> static_cast<unsigned>(quanti) & 0xFFU);
  }
  return byte;
}

void combina(std::string& byte, const Chiave& chiave) {
  for (std::size_t i = 0; i < byte.size(); ++i) {
    byte[i] = static_cast<char>(static_cast<std::uint8_t>(byte[i]) ^ chiave[i % chiave.size()]);
  }
}

Bytef* comeByte(std::string& testo) { return reinterpret_cast<Bytef*>(testo.data()); }

}  // namespace

std::optional<std::string> apri(std::string_view sigillato, const Chiave& chiave) {
  auto byte = daBase64(sigillato);
  if (!byte || byte->size() <= kLunghezza) return {};
  combina(*byte, chiave);
  std::uint32_t lunghezza = 0;
  for (std::size_t i = kLunghezza; i-- > 0;) {
    lunghezza = lunghezza << 8U | static_cast<std::uint8_t>((*byte)[i]);
  }
  if (lunghezza == 0 || static_cast<std::uint8_t>((*byte)[3]) > kMassimoQuarto) return {};
  std::string testo(lunghezza, '\0');
  z_stream flusso{};
  if (inflateInit2(&flusso, kGrezzo) != Z_OK) return {};
  flusso.next_in = comeByte(*byte) + kLunghezza;
  flusso.avail_in = static_cast<uInt>(byte->size() - kLunghezza);
  flusso.next_out = comeByte(testo);
  flusso.avail_out = lunghezza;
  // The end of the stream is only reported when it yields no byte more than the length.
  const bool intero = inflate(&flusso, Z_FINISH) == Z_STREAM_END && flusso.total_out == lunghezza;
  inflateEnd(&flusso);
  return intero ? std::optional(std::move(testo)) : std::nullopt;
}

std::string sigilla(std::string_view testo, const Chiave& chiave) {
  std::string byte(kLunghezza, '\0');
  for (std::size_t i = 0; i < kLunghezza; ++i) {
    byte[i] = static_cast<char>(testo.size() >> (8 * i) & 0xFFU);
  }
  std::string contenuto(testo);
  byte.resize(kLunghezza + compressBound(static_cast<uLong>(testo.size())) + 16);
  z_stream flusso{};
  deflateInit2(&flusso, Z_BEST_COMPRESSION, Z_DEFLATED, kGrezzo, 9, Z_DEFAULT_STRATEGY);
  flusso.next_in = comeByte(contenuto);
  flusso.avail_in = static_cast<uInt>(contenuto.size());
  flusso.next_out = comeByte(byte) + kLunghezza;
  flusso.avail_out = static_cast<uInt>(byte.size() - kLunghezza);
  deflate(&flusso, Z_FINISH);
  byte.resize(kLunghezza + flusso.total_out);
  deflateEnd(&flusso);
  combina(byte, chiave);
  return base64(byte);
}

std::optional<std::string> pagina(std::string_view sigillata, const Chiave& chiave) {
  auto testo = apri(sigillata, chiave);
  if (testo && !utf8Valido(*testo)) return {};
  return testo;
}

}  // namespace pellak::shell::blindato
