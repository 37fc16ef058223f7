#pragma once

#include <span>
#include <string_view>

namespace pellak {

/// The folders that the system is made of or configured by, on either system. Nothing of them
/// moves to the Trash, and nothing comes back to them.
std::span<const std::string_view> postiDelSistema();

/// Whether a path lies in one of them or is one; the folders of items that start by themselves do
/// not count. Purely textual; the path is absolute and in its plain form.
bool delSistema(std::string_view percorso);

}  // namespace pellak
