#pragma once

#include <string_view>
#include <vector>

#include "PellakCore/Regole.h"

namespace pellak {

/// Where the desktop's "user-dirs.dirs" puts the user's folders: one move for each of them that is
/// not where the rules write it ("~/Downloads"). A folder that is the home itself stands for none,
/// by the file's convention; lines that are not understood say nothing.
std::vector<Spostamento> leggiCartelleUtente(std::string_view testo, std::string_view home);

}  // namespace pellak
