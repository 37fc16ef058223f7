#include "trash/Insiemi.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "trash/Gruppi.h"

namespace pellak::trash {
namespace {

constexpr std::array<std::string_view, 4> kCompagni = {"-wal", "-shm", "-journal", "-lock"};

/// Of the items those that have companions among the others.
std::unordered_set<std::string> principaliPresenti(const std::vector<Candidato>& voci) {
  std::unordered_set<std::string_view> cercati;
  for (const Candidato& voce : voci) {
    if (const auto principale = principaleDi(voce.percorso); !principale.empty()) {
      cercati.insert(principale);
    }
  }
  std::unordered_set<std::string> presenti;
  if (cercati.empty()) return presenti;
  for (const Candidato& voce : voci) {
    if (cercati.contains(voce.percorso)) presenti.insert(voce.percorso);
  }
  return presenti;
}

}  // namespace

std::string_view principaleDi(std::string_view percorso) {
  const auto coda = std::find_if(kCompagni.begin(), kCompagni.end(), [&](std::string_view fine) {
    return percorso.ends_with(fine) && percorso.size() > fine.size() &&
           percorso[percorso.size() - fine.size() - 1] != '/';
  });
  if (coda == kCompagni.end()) return {};
  return percorso.substr(0, percorso.size() - coda->size());
}

std::vector<std::string> compagniDi(std::string_view percorso) {
  std::vector<std::string> compagni;
  for (const std::string_view coda : kCompagni) {
    compagni.push_back(std::string(percorso) + std::string(coda));
  }
  return compagni;
}

std::vector<Lotto> lottiDi(std::vector<Candidato> voci) {
  const std::unordered_set<std::string> presenti = principaliPresenti(voci);
  std::unordered_map<std::string, std::size_t> posti;
  std::vector<Lotto> lotti;
  if (presenti.empty() && !voci.empty()) {
    lotti.push_back({std::move(voci), {}, false});
    return lotti;
  }
  for (Candidato& voce : voci) {
    std::string insieme(principaleDi(voce.percorso));
    if (!presenti.contains(insieme)) insieme = voce.percorso;
    if (!presenti.contains(insieme)) {
      if (lotti.empty() || lotti.back().insieme) lotti.emplace_back();
      lotti.back().voci.push_back(std::move(voce));
      continue;
    }
    // A set stands where its first item does.
    const auto [posto, nuovo] = posti.try_emplace(std::move(insieme), lotti.size());
    if (nuovo) lotti.push_back({{}, {}, true});
    lotti[posto->second].voci.push_back(std::move(voce));
  }
  return lotti;
}

std::vector<Lotto> lottiDi(const Finding& finding, const Group& gruppo) {
  std::vector<Candidato> voci;
  aggiungiPercorsi(gruppo, voci);
  if (!finding.insieme()) return lottiDi(std::move(voci));
  std::vector<Lotto> uno(1);
  uno.front().voci = std::move(voci);
  uno.front().insieme = true;
  return uno;
}

std::string conNumero(const std::string& percorso, std::size_t numero) {
  const std::size_t nome = percorso.rfind('/') + 1;
  const std::size_t punto = percorso.rfind('.');
  const bool estensione = punto != std::string::npos && punto > nome && punto + 1 < percorso.size();
  const std::string aggiunta = " (ripristinato " + std::to_string(numero) + ")";
  if (!estensione) return percorso + aggiunta;
  return percorso.substr(0, punto) + aggiunta + percorso.substr(punto);
}

std::string conNumeroComune(const std::string& percorso, std::size_t numero) {
  const std::string_view principale = principaleDi(percorso);
  if (principale.empty()) return conNumero(percorso, numero);
  return conNumero(std::string(principale), numero) + percorso.substr(principale.size());
}

}  // namespace pellak::trash
