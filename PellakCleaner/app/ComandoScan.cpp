#include "app/ComandoScan.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <string_view>
#include <thread>

#include "PellakCore/Catalogo.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/Utf8.h"
#include "app/Applicazione.h"
#include "app/Interruzione.h"
#include "app/Terminale.h"
#include "app/Uscita.h"

namespace pellak::app {
namespace {

using Orologio = std::chrono::steady_clock;

constexpr int kUnknownSection = 2;
constexpr int kInterrupted = 130;
constexpr std::chrono::milliseconds kLook{100};
/// A scan that takes longer to stop is worth a word.
constexpr std::chrono::milliseconds kPazienza{1000};

/// The line that moves while a scan runs; gone when it ends.
class Avanzamento {
 public:
  explicit Avanzamento(std::size_t sezioni) : sezioni_(sezioni) {}
  ~Avanzamento() { cancella(); }
  Avanzamento(const Avanzamento&) = delete;
  Avanzamento& operator=(const Avanzamento&) = delete;

  void mostra(const Snapshot& stato, std::size_t concluse) {
    if (!visibile_) return;
    const auto attiva =
        std::find_if(stato.sezioni.begin(), stato.sezioni.end(),
                     [](const RiassuntoSezione& sezione) { return sezione.scanning; });
    if (attiva == stato.sezioni.end()) return;
    const auto secondi =
        std::chrono::duration_cast<std::chrono::seconds>(Orologio::now() - inizio_).count();
    const std::string riga =
        fmt::format("[{}/{}] {}: {} ({:02}:{:02})", concluse + 1, sezioni_, attiva->name,
                    perTerminale(attiva->status), secondi / 60, secondi % 60);
    const std::size_t spazio = std::max<std::size_t>(colonneTerminale(), 2) - 1;
    fmt::print(stderr, "\r\033[K{}", utf8Prefisso(riga, spazio));
    std::fflush(stderr);
  }

 private:
  void cancella() {
    if (visibile_) fmt::print(stderr, "\r\033[K");
  }

  const std::size_t sezioni_;
  const bool visibile_ = uscitaInterattiva();
  const Orologio::time_point inizio_ = Orologio::now();
};

bool nelCatalogo(const std::string& id) { return cercaMeta(id) != nullptr; }

std::string elencoSezioni() {
  std::string elenco;
  for (const Meta& meta : metas()) elenco += (elenco.empty() ? "" : ", ") + std::string(meta.id);
  return elenco;
}

std::vector<std::string> sezioniRichieste(const OpzioniScan& opzioni) {
  std::vector<std::string> sezioni;
  for (const Meta& meta : metas()) {
    const bool richiesta =
        opzioni.sezioni.empty() ||
        std::count(opzioni.sezioni.begin(), opzioni.sezioni.end(), std::string(meta.id)) > 0;
    if (richiesta) sezioni.emplace_back(meta.id);
  }
  return sezioni;
}

/// Scans one section after the other; false when interrupted.
bool scandisci(Engine& engine, const std::vector<std::string>& sezioni) {
  const Interruzione interruzione;
  Avanzamento avanzamento(sezioni.size());
  for (std::size_t i = 0; i < sezioni.size(); ++i) {
    engine.start(sezioni[i]);
    for (auto stato = engine.snapshot(); stato->busy; stato = engine.snapshot()) {
      if (interruzione.chiesta()) {
        engine.stop();
        engine.attendiFine(kPazienza);
        if (engine.occupato()) {
          fmt::print(stderr, "Mi fermo… (di nuovo Ctrl-C per uscire subito)\n");
          engine.attendiFine();
        }
        return false;
      }
      avanzamento.mostra(*stato, i);
      engine.attendiFine(kLook);
    }
    if (interruzione.chiesta()) return false;
  }
  return true;
}

void stampaTabella(const Snapshot& istante, const std::vector<std::string>& sezioni) {
  Tabella tabella(
      {Allineamento::sinistra, Allineamento::sinistra, Allineamento::destra, Allineamento::destra});
  tabella.riga({"Sezione", "Stato", "Voci", "Recuperabili"});
  std::int64_t totale = 0;
  std::int64_t voci = 0;
  for (const RiassuntoSezione& sezione : istante.sezioni) {
    if (std::count(sezioni.begin(), sezioni.end(), sezione.id) == 0) continue;
    // What nobody looked at must not read as clean.
    const std::string stato = sezione.scandibile ? perTerminale(sezione.status)
                                                 : "Non ancora disponibile in questa versione.";
    tabella.riga({sezione.name, stato, std::to_string(sezione.voci), dimensione(sezione.totale)});
    totale = sommaSicura(totale, sezione.totale);
    voci += sezione.voci;
  }
  tabella.riga({"Totale", "", std::to_string(voci), dimensione(totale)});
  stampa(tabella.testo());
}

}  // namespace

int comandoScan(Applicazione& applicazione, const OpzioniScan& opzioni) {
  for (const std::string& id : opzioni.sezioni) {
    if (!nelCatalogo(id)) {
      fmt::print(stderr, "sezione inesistente: {} (le sezioni sono {})\n", perTerminale(id),
                 elencoSezioni());
      return kUnknownSection;
    }
  }
  const std::vector<std::string> sezioni = sezioniRichieste(opzioni);
  Engine& engine = applicazione.engine();
  if (!scandisci(engine, sezioni)) {
    fmt::print(stderr, "Scansione interrotta.\n");
    return kInterrupted;
  }
  const auto stato = engine.snapshot();
  if (opzioni.json) {
    stampa(stato->testo);
    stampa("\n");
  } else {
    stampaTabella(*stato, sezioni);
  }
  return chiudiUscita();
}

}  // namespace pellak::app
