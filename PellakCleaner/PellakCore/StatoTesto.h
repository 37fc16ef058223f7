#pragma once

#include <functional>
#include <map>
#include <span>
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

/// One entry of a finding, as every reply shows it. `libera`: what emptying the Trash frees of it,
/// which is not the entry's own of a finding that is only a report.
void scriviVoce(JsonWriter& uscita, const Voce& voce, std::int64_t libera, FormatoData& date);

/// The member "perche_no" of a finding that held something back.
void scriviTrattenuti(JsonWriter& uscita, const Finding& finding);

/// The list of the roots with most refusals.
void scriviDinieghi(JsonWriter& uscita, const std::vector<RadiceNegata>& radici);

/// The entries of a finding that are listed; all of them or a part.
struct VociElencate {
  std::span<const Voce> items;
  std::span<const Group> groups;
};

/// One finding with these of its entries; totals and count are always those of all.
void scriviFinding(JsonWriter& uscita, const Finding& finding, const VociElencate& elencate,
                   FormatoData& date, const IconaNota& icona);

/// What a section shows beside its own state.
struct Contorno {
  bool inCoda = false;
  bool disponibile = true;  ///< there is a scanner for every special category
  std::int64_t libera = 0;  ///< what emptying the Trash frees of it
  bool scandibile = true;   ///< there is a scanner for something of it
};

/// Writes the state reply and keeps the written findings of each section, so that a change of a
/// status line costs no more than the line. Used by one thread at a time.
class StatoTesto {
 public:
  /// Appends the object of one section to `uscita`; `primo` for the first of the list.
  void scriviSezione(Rope& uscita, const Meta& meta, const Sec& sezione, const Contorno& contorno,
                     bool primo, const IconaNota& icona);

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
