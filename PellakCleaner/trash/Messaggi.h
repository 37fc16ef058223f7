#pragma once

#include <string>
#include <string_view>

#include "platform/Result.h"

namespace pellak::trash {

/// The refusal while the Trash can't be listed to finish an interrupted operation's books.
inline constexpr const char* kNonElencato =
    "il Cestino non è leggibile: non so come è finita un'operazione interrotta e non sposto nulla";

/// Something is not any more as the page or the scan saw it.
inline constexpr const char* kCambiato = "lo stato è cambiato: ricarica e riprova";

/// Something is not there any more.
inline constexpr const char* kSparito = "non esiste piu': era gia' stato rimosso";

/// Why an item of a set stays that could have moved itself.
inline constexpr const char* kInsieme = "va spostato insieme agli altri, e non tutti si spostano";

/// The log can't be read: which file, and why.
std::string registroNonLeggibile(const Error& errore);

/// Why an item could not be moved to the Trash, in words for the user. What the system itself said
/// is used where no kind of error has words of its own.
std::string trashMessage(std::string_view percorso, const Error& errore);

}  // namespace pellak::trash
