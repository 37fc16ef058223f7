#pragma once

#include <cstdint>

namespace pellak {

/// What lies at a path, a final symbolic link not followed. The numbers are saved with the results.
enum class EntryType : std::uint8_t { unknown, directory, link, regular, other };

}  // namespace pellak
