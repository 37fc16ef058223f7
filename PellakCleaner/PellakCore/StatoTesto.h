#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Sec.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/JsonWriter.h"
#include "PellakCore/base/Rope.h"

namespace pellak {

/// Data URL of a group's icon if it is known already, else empty.
using IconaNota = std::function<std::string(std::string_view chiave)>;

/// One entry of a finding, as every reply shows it.
void scriviVoce(JsonWriter& uscita, const Voce& voce, FormatoData& date);

/// One finding with all its entries.
void scriviFinding(JsonWriter& uscita, const Finding& finding, FormatoData& date,
                   const IconaNota& icona);

/// Writes the state reply and keeps the written findings of each section, so that a change of a
/// status line costs no more than the line. Used by one thread at a time.
class StatoTesto {
 public:
  /// Appends the object of one section to `uscita`; `primo` for the first of the list.
  void scriviSezione(Rope& uscita, const Meta& meta, const Sec& sezione, bool inCoda, bool primo,
                     const IconaNota& icona);

 private:
  struct Scritto {
    std::uint64_t findingsVer = 0;
    Rope::Piece testo;  ///< the list of findings
    std::int64_t totale = 0;
  };

  const Scritto& findings(const Meta& meta, const Sec& sezione, const IconaNota& icona);

  std::map<std::string_view, Scritto> scritti_;
  FormatoData date_;
};

}  // namespace pellak
