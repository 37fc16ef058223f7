#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The page and the built-in rules document inside the executable, in a sealed form that no text
/// search finds: base64 of a length (four bytes, least significant first) and a raw deflate
/// stream, every byte combined with one of a repeated key by exclusive or. No secret: the seal
/// keeps the page and the program together.
namespace pellak::shell::blindato {

using Chiave = std::array<std::uint8_t, 16>;

/// Undoes the seal; nothing when any of it does not fit: not base64, too short, a length of 0 or
/// of 64 MiB and more, a stream that yields another length.
std::optional<std::string> apri(std::string_view sigillato, const Chiave& chiave);

/// The sealed form of a text that is neither empty nor 64 MiB long.
std::string sigilla(std::string_view testo, const Chiave& chiave);

/// The page; nothing when there is none or it is not UTF-8.
std::optional<std::string> pagina(std::string_view sigillata, const Chiave& chiave);

}  // namespace pellak::shell::blindato
