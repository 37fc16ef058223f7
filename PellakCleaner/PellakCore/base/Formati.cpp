#include "PellakCore/base/Formati.h"

#include <array>
#include <cmath>
#include <ctime>
#include <fmt/format.h>

namespace pellak {
namespace {

constexpr std::array<const char*, 6> kUnits = {" B", " KiB", " MiB", " GiB", " TiB", " PiB"};
constexpr std::int64_t kSecondsPerDay = 86'400;
/// Years beyond four digits make no sense as a file's time and would overflow the arithmetic.
constexpr double kLatestTime = 253'402'300'799.0;

std::int64_t utcOffset(std::int64_t secondi) {
  const auto time = static_cast<std::time_t>(secondi);
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) return 0;
  return local.tm_gmtoff;
}

struct Data {
  std::int64_t anno;
  unsigned mese;
  unsigned giorno;
};

/// Days since 1970-01-01 to a date of the proleptic Gregorian calendar, counted in years that
/// begin in March so that the leap day comes last.
Data dataDaGiorni(std::int64_t giorni) {
  const std::int64_t daEpoca = giorni + 719'468;
  const std::int64_t era = daEpoca / 146'097;
  const auto nellEra = static_cast<unsigned>(daEpoca - era * 146'097);
  const unsigned anno = (nellEra - nellEra / 1'460 + nellEra / 36'524 - nellEra / 146'096) / 365;
  const unsigned nellAnno = nellEra - (365 * anno + anno / 4 - anno / 100);
  const unsigned meseDaMarzo = (5 * nellAnno + 2) / 153;
  const unsigned giorno = nellAnno - (153 * meseDaMarzo + 2) / 5 + 1;
  const unsigned mese = meseDaMarzo < 10 ? meseDaMarzo + 3 : meseDaMarzo - 9;
  return {static_cast<std::int64_t>(anno) + era * 400 + (mese <= 2 ? 1 : 0), mese, giorno};
}

void putTwoDigits(char* dove, std::int64_t value) {
  dove[0] = static_cast<char>('0' + value / 10);
  dove[1] = static_cast<char>('0' + value % 10);
}

void appendUnsigned(std::string& uscita, std::uint64_t value) {
  const fmt::format_int digits(value);
  uscita.append(digits.data(), digits.size());
}

}  // namespace

void appendDimensione(std::string& uscita, std::int64_t byte) {
  const bool negative = byte < 0;
  // Two's complement negation that also holds for the smallest value.
  const std::uint64_t size =
      negative ? 0 - static_cast<std::uint64_t>(byte) : static_cast<std::uint64_t>(byte);
  if (negative) uscita += '-';
  std::size_t unit = 0;
  while (unit + 1 < kUnits.size() && (size >> (10 * unit)) >= 1024) ++unit;
  if (unit == 0) {
    appendUnsigned(uscita, size);
  } else {
    // Tenths in integers: the same digits as "%.1f" of the exact quotient, many times faster.
    const auto shift = static_cast<unsigned>(10 * unit);
    const std::uint64_t whole = size >> shift;
    const std::uint64_t rest = size & ((std::uint64_t{1} << shift) - 1);
    const std::uint64_t scaled = rest * 10;
    const std::uint64_t half = std::uint64_t{1} << (shift - 1);
    const std::uint64_t below = scaled & ((std::uint64_t{1} << shift) - 1);
    std::uint64_t tenths = whole * 10 + (scaled >> shift);
    if (below > half || (below == half && tenths % 2 == 1)) ++tenths;
    appendUnsigned(uscita, tenths / 10);
    uscita += '.';
    uscita += static_cast<char>('0' + tenths % 10);
  }
  uscita += kUnits[unit];
}

std::string dimensione(std::int64_t byte) {
  std::string uscita;
  appendDimensione(uscita, byte);
  return uscita;
}

std::int64_t FormatoData::scartoAl(std::int64_t secondi) {
  const std::int64_t giorno = secondi / kSecondsPerDay;
  auto [voce, nuova] = giorni_.try_emplace(giorno);
  if (nuova) {
    const std::int64_t inizio = utcOffset(giorno * kSecondsPerDay);
    voce->second = {inizio, inizio == utcOffset((giorno + 1) * kSecondsPerDay - 1)};
  }
  return voce->second.costante ? voce->second.scarto : utcOffset(secondi);
}

void FormatoData::append(std::string& uscita, double secondi) {
  if (!(secondi > 0) || secondi > kLatestTime) {
    uscita += '-';
    return;
  }
  const auto interi = static_cast<std::int64_t>(secondi);
  const std::int64_t locale = interi + scartoAl(interi);
  const std::int64_t giorni = locale >= 0 ? locale / kSecondsPerDay : -1;
  const std::int64_t nelGiorno = locale - giorni * kSecondsPerDay;
  const Data data = dataDaGiorni(giorni);
  std::array<char, 16> testo = {'0', '0', '0', '0', '-', '0', '0', '-',
                                '0', '0', ' ', '0', '0', ':', '0', '0'};
  putTwoDigits(&testo[0], data.anno / 100);
  putTwoDigits(&testo[2], data.anno % 100);
  putTwoDigits(&testo[5], data.mese);
  putTwoDigits(&testo[8], data.giorno);
  putTwoDigits(&testo[11], nelGiorno / 3'600);
  putTwoDigits(&testo[14], nelGiorno / 60 % 60);
  uscita.append(testo.data(), testo.size());
}

std::string FormatoData::testo(double secondi) {
  std::string uscita;
  append(uscita, secondi);
  return uscita;
}

}  // namespace pellak
