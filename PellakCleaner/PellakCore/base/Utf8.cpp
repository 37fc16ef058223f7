#include "PellakCore/base/Utf8.h"

#include <cstdint>
#include <cstring>

namespace pellak {
namespace {

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

/// Well-formed sequences by lead byte: total length and the allowed range of the second byte.
struct Lead {
  std::size_t length;
  unsigned char low;
  unsigned char high;
};

Lead leadOf(unsigned char lead) {
  if (lead < 0x80) return {1, 0, 0};
  if (lead < 0xC2) return {0, 0, 0};
  if (lead < 0xE0) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead < 0xF0) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead < 0xF4) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

/// Skips ASCII eight bytes at a time: most text here is ASCII.
std::size_t asciiRun(std::string_view testo) {
  std::size_t done = 0;
  while (done + 8 <= testo.size()) {
    std::uint64_t word = 0;
    std::memcpy(&word, testo.data() + done, 8);
    if ((word & 0x8080808080808080ULL) != 0) break;
    done += 8;
  }
  while (done < testo.size() && static_cast<unsigned char>(testo[done]) < 0x80) ++done;
  return done;
}

}  // namespace

std::size_t utf8Sequence(std::string_view testo) {
  if (testo.empty()) return 0;
  const Lead lead = leadOf(static_cast<unsigned char>(testo[0]));
  if (lead.length <= 1) return lead.length;
  if (testo.size() < lead.length) return 0;
  const auto second = static_cast<unsigned char>(testo[1]);
  if (second < lead.low || second > lead.high) return 0;
  for (std::size_t i = 2; i < lead.length; ++i) {
    if (!isContinuation(testo[i])) return 0;
  }
  return lead.length;
}

bool utf8Valido(std::string_view testo) {
  for (;;) {
    testo.remove_prefix(asciiRun(testo));
    if (testo.empty()) return true;
    const std::size_t length = utf8Sequence(testo);
    if (length == 0) return false;
    testo.remove_prefix(length);
  }
}

std::string_view utf8Prefisso(std::string_view testo, std::size_t caratteri) {
  std::size_t end = 0;
  while (caratteri > 0 && end < testo.size()) {
    const std::size_t length = utf8Sequence(testo.substr(end));
    end += length == 0 ? 1 : length;
    --caratteri;
  }
  return testo.substr(0, end);
}

}  // namespace pellak
