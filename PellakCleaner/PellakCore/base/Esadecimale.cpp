#include "PellakCore/base/Esadecimale.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace pellak {

std::string esadecimale(std::span<const std::uint8_t> byte) {
  constexpr std::string_view kCifre = "0123456789abcdef";
  std::string testo;
  testo.reserve(byte.size() * 2);
  for (const std::uint8_t b : byte) {
    testo += kCifre[b >> 4];
    testo += kCifre[b & 15];
  }
  return testo;
}

bool daEsadecimale(std::string_view testo, std::span<std::uint8_t> byte) {
  bool buono = testo.size() == byte.size() * 2;
  for (std::size_t i = 0; buono && i < byte.size(); ++i) {
    const char* fine = testo.data() + 2 * i + 2;
    const auto letto = std::from_chars(fine - 2, fine, byte[i], 16);
    buono = letto.ec == std::errc() && letto.ptr == fine;
  }
  if (!buono) std::fill(byte.begin(), byte.end(), std::uint8_t{0});
  return buono;
}

}  // namespace pellak
