#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>

namespace pellak {

/// A byte count for display: divided by 1024 while it is at least 1024; "B" as a whole number,
/// "KiB", "MiB", "GiB", "TiB" and "PiB" with one decimal, rounded as printf does (exact ties to
/// the even digit). Example: 1536 is "1.5 KiB".
std::string dimensione(std::int64_t byte);

/// Appends what `dimensione` returns.
void appendDimensione(std::string& uscita, std::int64_t byte);

/// Dates for display, "yyyy-MM-dd HH:mm" in local time; 0 or less is "-".
///
/// One object serves one thread; it remembers the offset from UTC of the days it has seen, so
/// that writing many dates costs no call into the time zone data.
class FormatoData {
 public:
  std::string testo(double secondi);
  void append(std::string& uscita, double secondi);

 private:
  struct Giorno {
    std::int64_t scarto = 0;  ///< seconds east of UTC
    bool costante = false;    ///< the offset holds for the whole UTC day
  };
  std::int64_t scartoAl(std::int64_t secondi);

  std::unordered_map<std::int64_t, Giorno> giorni_;
};

}  // namespace pellak
