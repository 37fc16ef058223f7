#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/Finding.h"

namespace pellak {

/// What speaks against a copy as the one of its set that stays. A graver reason
/// is the higher bit, so the sums compare as the reasons do.
enum Svantaggio : std::uint8_t {
  kDiPassaggio = 1,    ///< below a folder where files only pass through
  kNomeDiCopia = 2,    ///< "(2)", "copia" or "copy" in its name
  kNonScrivibile = 4,  ///< its folder can't be written to
  kAltroVolume = 8     ///< not on the volume of the home folder
};

/// Those that the path itself tells; `passaggi` are absolute folders.
std::uint8_t svantaggiDelPercorso(std::string_view percorso, std::span<const std::string> passaggi);

/// The copy of a set that stays when nobody chooses: the one with least against
/// it, of several the oldest, of several the first. Whether it may be relied on
/// is for `trash::Copie` to say; 0 for a group without paths.
std::size_t copiaTenuta(const Group& gruppo);

/// All copies in the order in which they would stay.
std::vector<std::size_t> inOrdineDiTenuta(const Group& gruppo);

}  // namespace pellak
