#pragma once

#include <string>
#include <string_view>

namespace pellak {

/// `testo` between single quotes, so that a shell takes it as one argument whatever it holds; a
/// quote inside is closed, written escaped and opened again. The one place where text becomes
/// part of a shell line.
std::string traApici(std::string_view testo);

/// `testo` as a text literal of AppleScript, double quotes included.
std::string traVirgolette(std::string_view testo);

}  // namespace pellak
