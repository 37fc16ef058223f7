#pragma once

#include <cstddef>
#include <string_view>

namespace pellak {

/// Length in bytes (1 to 4) of the well-formed UTF-8 sequence at the start of `testo`; 0 when
/// the bytes there are not one (overlong forms, surrogates and values beyond U+10FFFF are not
/// well-formed) or when `testo` is empty.
std::size_t utf8Sequence(std::string_view testo);

/// Whether the whole text is well-formed UTF-8.
bool utf8Valido(std::string_view testo);

/// The longest prefix of a well-formed text that holds at most `caratteri` code points.
std::string_view utf8Prefisso(std::string_view testo, std::size_t caratteri);

}  // namespace pellak
