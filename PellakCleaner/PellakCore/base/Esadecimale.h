#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace pellak {

/// Two lower-case digits a byte.
std::string esadecimale(std::span<const std::uint8_t> byte);

/// Fills `byte` with what a text of exactly as many pairs of digits says; false, and zeros, when it
/// is no such text.
bool daEsadecimale(std::string_view testo, std::span<std::uint8_t> byte);

}  // namespace pellak
