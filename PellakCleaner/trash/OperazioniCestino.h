#pragma once

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

/// What the user may do with the findings: the checks, titles and messages of every request that
/// moves something to the Trash or back.
///
/// Only paths that a finding holds are moved; what was moved leaves the finding, what could not
/// be stays. Any thread.
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
  Esito trashSel(std::string_view finding, std::vector<std::int64_t> gruppi, bool chiudiPrima);
  /// `keep` empty: the first copy that exists. `first` empty: not compared.
  Esito keep(std::int64_t gruppo, const std::string& keep, std::string_view first);
  /// Keeps in every group the first copy, in the order of the group, that is as the scan found it.
  /// Groups without one are skipped.
  Esito keepAll();
  Esito dupScarta(std::string_view finding, std::int64_t gruppo,
                  const std::vector<std::string>& percorsi);

  Esito restore(std::string_view operazione, std::optional<std::int64_t> indice) {
    return cestino_.restore(operazione, indice);
  }
  /// Newest first.
  void log(const std::function<void(const Operazione&)>& visita) { cestino_.log(visita); }

 private:
  Esito sposta(std::string_view finding, const Cestino::Titolo& titolo,
               std::span<const Lotto> lotti);
  void togliDaElenco(std::string_view finding, const std::vector<Mossa>& mosse);
  std::optional<Esito> appAperta(const Finding& finding, const Group& gruppo, bool chiudi) const;
  std::optional<Lotto> scarta(const Group& gruppo, std::size_t tenuta,
                              const std::vector<std::size_t>& via, Esito& esito) const;
  Esito scartaUno(std::string_view finding, const Group& gruppo, std::size_t tenuta,
                  const std::vector<std::size_t>& via);

  Engine& engine_;
  Cestino& cestino_;
  Applications& applicazioni_;
  Copie copie_;
};

}  // namespace pellak::trash
