#include "app/ComandoTrash.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <vector>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Formati.h"
#include "app/Applicazione.h"
#include "app/Domanda.h"
#include "app/Interruzione.h"
#include "app/Quantita.h"
#include "app/Richiesta.h"
#include "app/SceltaCestino.h"
#include "app/Terminale.h"
#include "app/Uscita.h"
#include "trash/Messaggi.h"

namespace pellak::app {
namespace {

constexpr int kRefused = 1;
constexpr int kUnknownFinding = 2;
constexpr int kInterrupted = 130;
constexpr std::size_t kShown = 10;

/// What came of the requests.
struct Bilancio {
  std::int64_t mossi = 0;
  std::int64_t tot = 0;         ///< bytes
  std::vector<std::string> op;  ///< the records of what moved
  bool pieno = true;            ///< all that was asked for was done
  bool cambiato = false;        ///< the disk is not any more as it was scanned
};

std::int64_t quante(const SceltaCestino& scelta) {
  return static_cast<std::int64_t>(scelta.voci.size());
}

/// On standard error, beside the question it belongs to.
void mostra(const Finding& finding, const SceltaCestino& scelta, const std::string& home) {
  fmt::print(stderr, "{}\n", grassetto(perTerminale(finding.name)));
  if (!finding.note.empty()) fmt::print(stderr, "{}\n", perTerminale(finding.note));
  if (finding.duplicati()) {
    fmt::print(stderr,
               "Di ogni gruppo resta una copia ancora intatta: di solito la più vecchia.\n");
  }
  Tabella tabella({Allineamento::destra, Allineamento::sinistra});
  tabella.riga({"Dimensione", "Percorso"});
  for (std::size_t i = 0; i < std::min(kShown, scelta.voci.size()); ++i) {
    tabella.riga({dimensione(scelta.voci[i].size),
                  perTerminale(percorsoMostrato(scelta.voci[i].percorso, home))});
  }
  fmt::print(stderr, "\n{}", tabella.testo());
  const std::size_t altri = scelta.voci.size() - std::min(kShown, scelta.voci.size());
  if (altri == 1) fmt::print(stderr, "… e un altro\n");
  if (altri > 1) fmt::print(stderr, "… e altri {}\n", altri);
  fmt::print(stderr, "\nLibera almeno {}: lo spazio torna quando svuoti il Cestino.\n",
             dimensione(scelta.libera));
}

/// The exit status when nothing is to be done; 0 to go on.
int chiedi(const Finding& finding, const SceltaCestino& scelta, const std::string& home,
           const Interruzione& interruzione) {
  if (!qualcunoAlTerminale()) {
    fmt::print(stderr, "nessun terminale a cui chiedere conferma: ripeti il comando con --yes.\n");
    return kRefused;
  }
  mostra(finding, scelta, home);
  const std::string domanda = fmt::format(
      "Sposto nel Cestino {} ({})?", quantiElementi(quante(scelta)), dimensione(totale(scelta)));
  switch (chiediConferma(domanda, interruzione)) {
    case Assenso::si:
      return 0;
    case Assenso::interrotto:
      fmt::print(stderr, "Interrotto: non ho spostato niente.\n");
      return kInterrupted;
    case Assenso::no:
      break;
  }
  fmt::print(stderr, "Non ho spostato niente.\n");
  return kRefused;
}

void racconta(Json risposta, const RichiestaCestino& richiesta, const std::string& home,
              Bilancio& bilancio) {
  const auto riga = [&](const std::string& testo) {
    bilancio.pieno = false;
    bilancio.cambiato = bilancio.cambiato || testo.ends_with(trash::kCambiato);
    fmt::print(stderr, "{}\n", perTerminale(testo));
  };
  const std::string err = perche(risposta);
  if (!err.empty()) riga(richiesta.nome.empty() ? err : richiesta.nome + ": " + err);
  risposta["failed"].perOgni([&](Json voce) {
    riga(percorsoMostrato(voce.testo("percorso"), home) + ": " + perche(voce));
  });
  for (const std::string& nome : risposta.testi("saltati")) {
    const bool copie = richiesta.rotta == "/api/keep_all";
    riga("saltato: " + nome + (copie ? std::string(": ") + trash::kCambiato : std::string()));
  }
  if (const std::string avviso = risposta.testo("avviso"); !avviso.empty()) {
    fmt::print(stderr, "{}\n", perTerminale(avviso));
  }
  bilancio.mossi += risposta.intero("ok", 0);
  bilancio.tot = sommaSicura(bilancio.tot, risposta.intero("tot", 0));
  if (risposta.contiene("op")) bilancio.op.push_back(risposta.testo("op"));
}

void stampaEsito(const Bilancio& bilancio) {
  if (bilancio.mossi == 0) return;
  stampa(fmt::format("{} nel Cestino {}, {}\n", bilancio.mossi == 1 ? "Spostato" : "Spostati",
                     quantiElementi(bilancio.mossi), dimensione(bilancio.tot)));
  for (const std::string& op : bilancio.op) {
    stampa("Per annullare: pellak-cleaner restore " + op + "\n");
  }
}

int sposta(Applicazione& applicazione, const SceltaCestino& scelta,
           const Interruzione& interruzione) {
  Bilancio bilancio;
  for (const RichiestaCestino& richiesta : scelta.richieste) {
    if (interruzione.chiesta()) break;
    const JsonDocument risposta = richiedi(applicazione, richiesta.rotta, richiesta.corpo);
    racconta(risposta.radice(), richiesta, applicazione.home(), bilancio);
  }
  if (bilancio.cambiato) {
    fmt::print(stderr, "Per aggiornare i risultati: pellak-cleaner scan\n");
  }
  stampaEsito(bilancio);
  const int stato = chiudiUscita();
  if (interruzione.chiesta()) {
    fmt::print(stderr, "Interrotto.\n");
    return kInterrupted;
  }
  return bilancio.pieno ? stato : kRefused;
}

}  // namespace

int comandoTrash(Applicazione& applicazione, const OpzioniTrash& opzioni) {
  const auto finding = applicazione.engine().finding(opzioni.finding);
  if (!finding && applicazione.engine().senzaRisultati(opzioni.finding)) {
    fmt::print(stderr, "nessun risultato salvato: rifai la scansione\n");
    return kRefused;
  }
  if (!finding) {
    fmt::print(stderr, "categoria inesistente: {}\n", perTerminale(opzioni.finding));
    return kUnknownFinding;
  }
  const Interruzione interruzione;
  const SceltaCestino scelta =
      scegliPerCestino(*finding, opzioni.gruppi, trash::Copie(applicazione.reader()));
  if (!scelta.rifiutata) {
    if (scelta.voci.empty()) {
      fmt::print(stderr, "niente da cestinare\n");
      return kRefused;
    }
    if (!opzioni.senzaChiedere) {
      const int stato = chiedi(*finding, scelta, applicazione.home(), interruzione);
      if (stato != 0) return stato;
    }
  }
  return sposta(applicazione, scelta, interruzione);
}

}  // namespace pellak::app
