#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "PellakCore/Finding.h"

namespace pellak {

/// Orders in which a finding's entries are listed.
enum class OrdineVoci { spazio, nome };

/// Whether path `a` comes before path `b` by name: last components compared without regard to
/// case (ASCII and the Latin-1 letters), then the bytes of the whole path.
bool primaPerNome(std::string_view a, std::string_view b);

/// Indices of `numero` entries from place `da` of the order: by space (largest first, equal ones
/// in candidate order) or by name. `da` + `numero` must not exceed the number of entries.
std::vector<std::size_t> paginaOrdinata(const std::vector<Voce>& voci, OrdineVoci ordine,
                                        std::size_t da, std::size_t numero);

}  // namespace pellak
