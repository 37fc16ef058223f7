#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace pellak::app {

/// A count with its noun: "1 elemento", "12 elementi".
inline std::string quantita(std::int64_t numero, std::string_view una, std::string_view tante) {
  return std::to_string(numero) + " " + std::string(numero == 1 ? una : tante);
}

inline std::string quantiElementi(std::int64_t numero) {
  return quantita(numero, "elemento", "elementi");
}

}  // namespace pellak::app
