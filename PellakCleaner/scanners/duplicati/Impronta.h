#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace pellak::scanners {

/// A quick number for some bytes. It is only good for telling different ones apart; that two are
/// equal proves nothing.
std::uint64_t impronta(std::span<const std::byte> dati);

}  // namespace pellak::scanners
