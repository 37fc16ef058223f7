#include "app/ComandoRestore.h"

#include <cstddef>
#include <cstdio>
#include <fmt/format.h>
#include <set>
#include <string>
#include <vector>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/JsonWriter.h"
#include "app/Applicazione.h"
#include "app/Quantita.h"
#include "app/Richiesta.h"
#include "app/Terminale.h"
#include "app/Uscita.h"

namespace pellak::app {
namespace {

constexpr int kFailed = 1;
constexpr std::size_t kShown = 10;

/// Where the items lie now: the first few, and each that found its place taken.
void stampaTornati(Json risposta, const std::string& home) {
  const auto mostrato = [&](const std::string& percorso) {
    return "  " + perTerminale(percorsoMostrato(percorso, home));
  };
  const std::vector<std::string> rinominati = risposta.testi("rinominati");
  const std::set<std::string> altrove(rinominati.begin(), rinominati.end());
  std::size_t soliti = 0;
  for (const std::string& percorso : risposta.testi("percorsi")) {
    if (altrove.contains(percorso)) {
      stampa(mostrato(percorso) + " (il posto era occupato)\n");
    } else if (++soliti <= kShown) {
      stampa(mostrato(percorso) + "\n");
    }
  }
  if (soliti == kShown + 1) stampa("  … e un altro\n");
  if (soliti > kShown + 1) stampa(fmt::format("  … e altri {}\n", soliti - kShown));
}

std::string corpoRichiesta(const OpzioniRestore& opzioni) {
  JsonWriter corpo;
  corpo.beginObject().key("op").text(opzioni.operazione);
  if (opzioni.indice) corpo.key("index").integer(*opzioni.indice);
  return corpo.endObject().take();
}

}  // namespace

int comandoRestore(Applicazione& applicazione, const OpzioniRestore& opzioni) {
  const JsonDocument documento = richiedi(applicazione, "/api/restore", corpoRichiesta(opzioni));
  const Json risposta = documento.radice();
  if (const std::string err = perche(risposta); !err.empty()) {
    fmt::print(stderr, "{}\n", perTerminale(err));
    return kFailed;
  }
  const std::int64_t tornati = risposta.intero("items", 0);
  if (tornati > 0) {
    stampa(fmt::format("{} {}\n", tornati == 1 ? "Ripristinato" : "Ripristinati",
                       quantiElementi(tornati)));
    stampaTornati(risposta, applicazione.home());
  }
  const std::size_t falliti = risposta["failed"].quanti();
  risposta["failed"].perOgni([&](Json fallito) {
    const std::string percorso = percorsoMostrato(fallito.testo("percorso"), applicazione.home());
    fmt::print(stderr, "{}\n", perTerminale(percorso + ": " + perche(fallito)));
  });
  if (const std::string avviso = risposta.testo("avviso"); !avviso.empty()) {
    fmt::print(stderr, "{}\n", perTerminale(avviso));
  }
  const int stato = chiudiUscita();
  return falliti == 0 ? stato : kFailed;
}

}  // namespace pellak::app
