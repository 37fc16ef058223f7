#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/Engine.h"
#include "PellakCore/Finding.h"
#include "platform/Applications.h"
#include "platform/FileReader.h"
#include "trash/Cestino.h"
#include "trash/Copie.h"

namespace pellak::trash {

/// Which copy of a duplicate set stays.
struct SceltaCopia {
  std::int64_t group = 0;
  std::string first;  ///< the group's first path as the caller knows it; empty: not compared
  std::string keep;   ///< empty: the copy that stays by default
};

/// What the user may do with the findings: the checks, titles and messages of every request that
/// moves something to the Trash or back.
///
/// Only paths that a finding holds are moved; what was moved, or is not there any more, leaves the
/// finding, what could not be moved stays. Any thread.
class OperazioniCestino {
 public:
  /// All of them outlive it.
  OperazioniCestino(Engine& engine, Cestino& cestino, Applications& applicazioni,
                    FileReader& reader)
      : engine_(engine), cestino_(cestino), applicazioni_(applicazioni), copie_(reader) {}

  /// All items of a category, or those of `solo` that it holds.
  Esito trash(std::string_view finding, const std::optional<std::vector<std::string>>& solo);
  /// `first` is the group's first path as the caller knows it.
  Esito trashGroup(std::string_view finding, std::int64_t gruppo, std::string_view first,
                   bool chiudiPrima);
  /// `firsts`: the first path of each of `gruppi`, as the caller knows them.
  Esito trashSel(std::string_view finding, std::span<const std::int64_t> gruppi,
                 const std::optional<std::vector<std::string>>& firsts, bool chiudiPrima);
  Esito keep(const SceltaCopia& scelta);
  /// One copy of each set, or of each that is chosen. Sets without a copy that may be relied on
  /// are skipped, and so are those where the chosen one may not.
  Esito keepAll(const std::optional<std::vector<SceltaCopia>>& scelte);
  Esito dupScarta(std::string_view finding, std::int64_t gruppo,
                  const std::vector<std::string>& percorsi);

  Esito restore(std::string_view operazione, std::optional<std::int64_t> indice) {
    return cestino_.restore(operazione, indice);
  }
  /// Newest first. An error is the log's that can't be read.
  Result<void> log(const std::function<void(const Operazione&)>& visita) {
    return cestino_.log(visita);
  }

 private:
  /// A set of which one copy stays and the others go.
  struct Pulizia {
    std::size_t tenuta;
    Lotto lotto;
  };

  Esito sposta(std::string_view finding, const Cestino::Titolo& titolo,
               std::span<const Lotto> lotti);
  std::optional<Esito> appAperta(const Finding& finding, const Group& gruppo, bool chiudi) const;
  std::optional<Lotto> scarta(const Group& gruppo, std::size_t tenuta,
                              const std::vector<std::size_t>& via,
                              std::vector<Fallito>& falliti) const;
  std::optional<Pulizia> tieniUna(const Group& gruppo, const std::string& scelta,
                                  std::vector<Fallito>& falliti) const;
  Esito spostaCopie(std::string_view finding, const std::string& tenuta, const Lotto& lotto,
                    std::vector<Fallito> falliti);
  Esito pulisci(const Finding& finding, std::span<const SceltaCopia> scelte);

  Engine& engine_;
  Cestino& cestino_;
  Applications& applicazioni_;
  Copie copie_;
};

}  // namespace pellak::trash
