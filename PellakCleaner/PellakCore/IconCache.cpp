#include "PellakCore/IconCache.h"

#include <array>
#include <cstdint>
#include <utility>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{64} << 20U;
constexpr std::string_view kPrefix = "data:image/png;base64,";
/// Keys come from the page: a flood of them must not fill the memory.
constexpr std::size_t kMaxKeyBytes = 4096;
constexpr std::size_t kMaxWithoutIcon = 20'000;

}  // namespace

std::string base64(std::string_view byte) {
  constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string testo;
  testo.reserve((byte.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < byte.size(); i += 3) {
    const std::size_t presenti = std::min<std::size_t>(3, byte.size() - i);
    std::uint32_t terna = 0;
    for (std::size_t j = 0; j < 3; ++j) {
      terna = (terna << 8U) | (j < presenti ? static_cast<unsigned char>(byte[i + j]) : 0U);
    }
    for (std::size_t j = 0; j < 4; ++j) {
      testo += j <= presenti ? kAlphabet[(terna >> (18 - 6 * j)) & 0x3FU] : '=';
    }
  }
  return testo;
}

IconCache::IconCache(Files& files, Applications& applicazioni, std::string file)
    : files_(files), applicazioni_(applicazioni), file_(std::move(file)) {}

void IconCache::carica() {
  const Result<std::string> testo = files_.read(file_, kMaxBytes);
  if (!testo) return;
  const Result<JsonDocument> documento = JsonDocument::parse(*testo);
  if (!documento) return;
  const std::lock_guard<std::mutex> hold(lock_);
  documento->radice().perOgniMembro([&](const std::string& chiave, Json valore) {
    auto icona = valore.testo();
    if (icona && icona->rfind(kPrefix, 0) == 0) cache_[chiave] = std::move(*icona);
  });
}

std::string IconCache::nota(std::string_view chiave) const {
  const std::lock_guard<std::mutex> hold(lock_);
  const auto trovata = cache_.find(chiave);
  return trovata == cache_.end() ? std::string() : trovata->second;
}

std::string IconCache::icona(std::string_view chiave) {
  if (chiave.empty() || chiave.size() > kMaxKeyBytes) return {};
  if (std::string trovata = nota(chiave); !trovata.empty()) return trovata;
  {
    const std::lock_guard<std::mutex> hold(lock_);
    if (senzaIcona_.contains(chiave)) return {};
  }
  const Result<std::string> png = applicazioni_.iconPng(chiave);
  const std::lock_guard<std::mutex> hold(lock_);
  if (!png) {
    if (senzaIcona_.size() < kMaxWithoutIcon) senzaIcona_.emplace(chiave);
    return {};
  }
  std::string url = std::string(kPrefix) + base64(*png);
  cache_[std::string(chiave)] = url;
  dirty_ = true;
  return url;
}

bool IconCache::daSalvare() const {
  const std::lock_guard<std::mutex> hold(lock_);
  return dirty_;
}

Result<void> IconCache::salva() {
  JsonWriter uscita;
  {
    const std::lock_guard<std::mutex> hold(lock_);
    if (!dirty_) return {};
    dirty_ = false;
    uscita.beginObject();
    for (const auto& [chiave, icona] : cache_) uscita.textKey(chiave).text(icona);
    uscita.endObject();
  }
  const std::string testo = uscita.take();
  const std::array<std::string_view, 1> pezzi = {testo};
  Result<void> scritto = files_.replace(file_, pezzi);
  if (!scritto) {
    const std::lock_guard<std::mutex> hold(lock_);
    dirty_ = true;
  }
  return scritto;
}

}  // namespace pellak
