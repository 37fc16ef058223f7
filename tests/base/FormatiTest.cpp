#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "PellakCore/base/Formati.h"

namespace pellak {
namespace {

/// The rule as it reads: divide by 1024 while at least 1024, one decimal by the C library.
std::string comeStampa(std::int64_t byte) {
  constexpr std::array<const char*, 6> kUnits = {"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
  auto value = static_cast<double>(byte);
  std::size_t unit = 0;
  while (value >= 1024 && unit < 5) {
    value /= 1024;
    ++unit;
  }
  std::array<char, 64> testo{};
  std::snprintf(testo.data(), testo.size(), unit == 0 ? "%.0f %s" : "%.1f %s", value, kUnits[unit]);
  return testo.data();
}

TEST(Dimensione, MatchesPrintfAtEveryScale) {
  for (const std::int64_t byte :
       {std::int64_t{0}, std::int64_t{1023}, std::int64_t{1024}, std::int64_t{1536},
        std::int64_t{1024 * 1024 - 1}, std::int64_t{1} << 40, std::int64_t{1} << 50,
        (std::int64_t{1} << 53) - 1}) {
    EXPECT_EQ(dimensione(byte), comeStampa(byte));
  }
  std::mt19937_64 random(7);
  for (int i = 0; i < 200'000; ++i) {
    // Within the range in which a double holds the count exactly, all magnitudes alike.
    const auto byte = static_cast<std::int64_t>((random() >> 11U) >> (random() % 53));
    ASSERT_EQ(dimensione(byte), comeStampa(byte)) << byte;
  }
  EXPECT_EQ(dimensione(std::numeric_limits<std::int64_t>::max()), "8192.0 PiB");
  EXPECT_EQ(dimensione(-1536), "-1.5 KiB");
}

TEST(FormatoData, MatchesTheCLibraryAcrossTimeZoneChanges) {
  for (const char* zone : {"Europe/Rome", "Asia/Kathmandu", "America/St_Johns", "UTC"}) {
    ::setenv("TZ", zone, 1);
    ::tzset();
    FormatoData date;
    std::mt19937 random(11);
    for (int i = 0; i < 20'000; ++i) {
      // The last Sundays of March and October included: half of the times lie in 2024.
      const std::time_t quando =
          i % 2 == 0 ? 1'704'067'200 + static_cast<std::time_t>(random() % 31'622'400)
                     : 1 + static_cast<std::time_t>(random() % 4'000'000'000);
      std::tm locale{};
      localtime_r(&quando, &locale);
      std::array<char, 32> atteso{};
      std::strftime(atteso.data(), atteso.size(), "%Y-%m-%d %H:%M", &locale);
      ASSERT_EQ(date.testo(static_cast<double>(quando)), atteso.data()) << zone << " " << quando;
    }
  }
  FormatoData date;
  EXPECT_EQ(date.testo(0), "-");
  EXPECT_EQ(date.testo(-5), "-");
  EXPECT_EQ(date.testo(std::numeric_limits<double>::quiet_NaN()), "-");
  EXPECT_EQ(date.testo(1e300), "-");
}

}  // namespace
}  // namespace pellak
