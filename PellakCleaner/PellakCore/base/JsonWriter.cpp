#include "PellakCore/base/JsonWriter.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fmt/format.h>
#include <iterator>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

/// Largest magnitude below which every double that is whole is exactly an integer.
constexpr double kExactIntegers = 9'007'199'254'740'992.0;

constexpr std::uint64_t kOnes = 0x0101010101010101ULL;
constexpr std::uint64_t kHighs = 0x8080808080808080ULL;

/// Whether any of eight bytes is a control character, a quote, a backslash or not ASCII.
bool needsCare(std::uint64_t word) {
  const std::uint64_t control = (word - kOnes * 0x20) & ~word;
  const std::uint64_t quote = word ^ (kOnes * '"');
  const std::uint64_t slash = word ^ (kOnes * '\\');
  const std::uint64_t quoteHit = (quote - kOnes) & ~quote;
  const std::uint64_t slashHit = (slash - kOnes) & ~slash;
  return ((control | quoteHit | slashHit | word) & kHighs) != 0;
}

bool isPlain(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte >= 0x20 && byte < 0x80 && c != '"' && c != '\\';
}

std::size_t plainRun(std::string_view testo) {
  std::size_t done = 0;
  while (done + 8 <= testo.size()) {
    std::uint64_t word = 0;
    std::memcpy(&word, testo.data() + done, 8);
    if (needsCare(word)) break;
    done += 8;
  }
  while (done < testo.size() && isPlain(testo[done])) ++done;
  return done;
}

std::size_t nonAsciiRun(std::string_view testo) {
  std::size_t done = 0;
  while (done < testo.size() && static_cast<unsigned char>(testo[done]) >= 0x80) ++done;
  return done;
}

void appendEscaped(std::string& uscita, char c) {
  switch (c) {
    case '"':
      uscita += "\\\"";
      return;
    case '\\':
      uscita += "\\\\";
      return;
    case '\n':
      uscita += "\\n";
      return;
    case '\r':
      uscita += "\\r";
      return;
    case '\t':
      uscita += "\\t";
      return;
    default:
      fmt::format_to(std::back_inserter(uscita), "\\u{:04x}", static_cast<unsigned>(c));
  }
}

}  // namespace

void appendJsonText(std::string& uscita, std::string_view valore) {
  while (!valore.empty()) {
    const std::size_t plain = plainRun(valore);
    uscita.append(valore.data(), plain);
    valore.remove_prefix(plain);
    if (valore.empty()) return;
    const std::size_t foreign = nonAsciiRun(valore);
    if (foreign > 0) {
      appendCodificato(uscita, valore.substr(0, foreign));
      valore.remove_prefix(foreign);
    } else {
      appendEscaped(uscita, valore[0]);
      valore.remove_prefix(1);
    }
  }
}

void appendJsonInteger(std::string& uscita, std::int64_t valore) {
  const fmt::format_int digits(valore);
  uscita.append(digits.data(), digits.size());
}

void appendJsonNumber(std::string& uscita, double valore) {
  if (!std::isfinite(valore)) valore = 0;
  if (std::fabs(valore) < kExactIntegers && valore == std::trunc(valore)) {
    appendJsonInteger(uscita, static_cast<std::int64_t>(valore));
  } else {
    fmt::format_to(std::back_inserter(uscita), "{}", valore);
  }
}

void JsonWriter::separate() {
  if (comma_) uscita_ += ',';
  comma_ = true;
}

JsonWriter& JsonWriter::beginObject() {
  separate();
  uscita_ += '{';
  comma_ = false;
  return *this;
}

JsonWriter& JsonWriter::endObject() {
  uscita_ += '}';
  comma_ = true;
  return *this;
}

JsonWriter& JsonWriter::beginArray() {
  separate();
  uscita_ += '[';
  comma_ = false;
  return *this;
}

JsonWriter& JsonWriter::endArray() {
  uscita_ += ']';
  comma_ = true;
  return *this;
}

JsonWriter& JsonWriter::key(std::string_view nome) {
  separate();
  uscita_ += '"';
  uscita_ += nome;
  uscita_ += "\":";
  comma_ = false;
  return *this;
}

JsonWriter& JsonWriter::textKey(std::string_view nome) {
  text(nome);
  uscita_ += ':';
  comma_ = false;
  return *this;
}

JsonWriter& JsonWriter::text(std::string_view valore) {
  openText();
  appendJsonText(uscita_, valore);
  return closeText();
}

JsonWriter& JsonWriter::texts(std::span<const std::string> valori) {
  beginArray();
  for (const std::string& valore : valori) text(valore);
  return endArray();
}

JsonWriter& JsonWriter::integer(std::int64_t valore) {
  separate();
  appendJsonInteger(uscita_, valore);
  return *this;
}

JsonWriter& JsonWriter::number(double valore) {
  separate();
  appendJsonNumber(uscita_, valore);
  return *this;
}

JsonWriter& JsonWriter::boolean(bool valore) { return raw(valore ? "true" : "false"); }

JsonWriter& JsonWriter::raw(std::string_view json) {
  separate();
  uscita_ += json;
  return *this;
}

JsonWriter& JsonWriter::openText() {
  separate();
  uscita_ += '"';
  return *this;
}

JsonWriter& JsonWriter::closeText() {
  uscita_ += '"';
  return *this;
}

std::string JsonWriter::take() {
  comma_ = false;
  return std::exchange(uscita_, {});
}

std::string jsonText(std::string_view valore) {
  std::string uscita = "\"";
  appendJsonText(uscita, valore);
  uscita += '"';
  return uscita;
}

}  // namespace pellak
