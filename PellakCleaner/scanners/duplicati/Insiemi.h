#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scanners/duplicati/Contenuti.h"

namespace pellak::scanners {

/// Files of a list, one after another, that are read side by side.
struct Insieme {
  std::uint32_t da = 0;
  std::uint32_t quanti = 0;
  bool tutti = false;  ///< whether they are all that may be equal to each other
};

/// Cuts the runs of files known as equal by samples into sets of at most `piu`, those that take
/// the longest to read first. The list is one as `tieniUguali` leaves it, save that files of a run
/// whose content is remembered stand behind those to be read.
std::vector<Insieme> insiemiDi(const std::vector<Contenuto>& contenuti, std::size_t piu);

}  // namespace pellak::scanners
