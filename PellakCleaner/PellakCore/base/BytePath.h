#pragma once

#include <string>
#include <string_view>

namespace pellak {

/// Bytes to JSON-safe text and back.
///
/// File names may hold any bytes but NUL, JSON text only well-formed UTF-8. Well-formed UTF-8
/// stays as it is; every byte that is not part of it becomes the one code point U+EF00 + byte
/// (so U+EF80 to U+EFFF). Genuine characters of that range are written the same way, byte by
/// byte, which makes the mapping one-to-one in both directions.
std::string codificaByte(std::string_view bytes);

/// The inverse of `codificaByte`. Text that does not come from it is returned unchanged except
/// that code points of the range stand for their byte.
std::string decodificaByte(std::string_view testo);

/// Appends to `uscita` what `codificaByte` would return; the caller has no copy to pay for.
void appendCodificato(std::string& uscita, std::string_view bytes);

/// "~" and "~/…" with the home folder in place of "~"; any other text as it is ("~anna" too).
std::string espandiTilde(std::string_view percorso, std::string_view home);

/// For display: a path below the home folder with "~" in its place.
std::string percorsoMostrato(std::string_view percorso, std::string_view home);

/// The path without ".", "..", doubled and trailing slashes, "~" expanded; ".." above the root
/// stays at the root. Purely textual: no link is followed. Empty when the path is empty, not
/// absolute or holds a NUL byte.
std::string standardizza(std::string_view percorso, std::string_view home);

/// Whether an absolute path is already as `standardizza` would return it. Allocates nothing.
bool standard(std::string_view percorso);

/// The last component of a path, without trailing slashes ("/" for the root).
std::string_view ultimoComponente(std::string_view percorso);

/// The folder that a path lies in ("/" for what lies at the top and the root itself). Without a
/// slash ".".
std::string_view cartellaSopra(std::string_view percorso);

/// Joins a folder's path and an entry's name; "/" gets no second slash.
void appendNome(std::string& percorso, std::string_view nome);
std::string unisci(std::string cartella, std::string_view nome);

/// Whether `percorso` is `cartella` itself or lies below it (plain text comparison).
bool dentroCartella(std::string_view percorso, std::string_view cartella);

}  // namespace pellak
