#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "PellakCore/Sec.h"
#include "platform/Result.h"

namespace pellak {

using Sezioni = std::map<std::string, Sec, std::less<>>;

/// The text of "risultati.json": one object per section with its findings in full.
std::string scriviRisultati(const Sezioni& sezioni);

/// Fills the sections from a saved text; a section whose entry is missing or never had a scan
/// stays as it is. Keys that are missing or of another type take their empty values. Error
/// (invalid) when the text is no JSON object; nothing is filled then.
Result<void> leggiRisultati(std::string_view testo, Sezioni& sezioni);

}  // namespace pellak
