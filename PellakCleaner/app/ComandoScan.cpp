#include "app/ComandoScan.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/Utf8.h"
#include "app/Applicazione.h"
#include "app/Interruzione.h"
#include "app/PercorsoRichiesto.h"
#include "app/Terminale.h"
#include "app/Trattenuti.h"
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

/// What a command line asks for.
struct Richiesta {
  std::vector<std::string> sezioni;  ///< in catalogue order
  std::vector<std::string> radici;
};

std::optional<std::string> radiceRichiesta(Applicazione& applicazione, const std::string& scritta) {
  const std::string percorso = percorsoRichiesto(scritta, applicazione.home());
  DirectoryLister& lister = applicazione.platform().lister;
  const auto reale = lister.resolve(percorso);
  const auto record = reale ? lister.attributes(*reale) : Result<EntryAttributes>(reale.error());
  if (record && record->type == EntryType::directory) return *reale;
  const bool negata = !record && record.error().kind == ErrorKind::denied;
  fmt::print(stderr, "{}: {}\n",
             negata ? "cartella non leggibile (permessi)" : "cartella inesistente",
             perTerminale(scritta));
  return {};
}

/// Nothing after a line on standard error.
std::optional<Richiesta> leggiRichiesta(Applicazione& applicazione, const OpzioniScan& opzioni) {
  Richiesta richiesta;
  std::set<std::string_view> nominate;
  for (const std::string& argomento : opzioni.argomenti) {
    if (std::string_view("/~.").find(argomento.substr(0, 1)) != std::string_view::npos &&
        !argomento.empty()) {
      auto radice = radiceRichiesta(applicazione, argomento);
      if (!radice) return {};
      richiesta.radici.push_back(std::move(*radice));
    } else if (nelCatalogo(argomento)) {
      nominate.insert(argomento);
    } else {
      fmt::print(stderr, "sezione inesistente: {} (le sezioni sono {})\n", perTerminale(argomento),
                 elencoSezioni());
      return {};
    }
  }
  for (const Meta& meta : metas()) {
    if (nominate.empty() || nominate.contains(meta.id)) richiesta.sezioni.emplace_back(meta.id);
  }
  const bool conCartelle =
      nominate.empty() || nominate.contains("duplicati") || nominate.contains("grandi");
  if (richiesta.radici.empty() || conCartelle) return richiesta;
  fmt::print(stderr, "le cartelle valgono solo per duplicati e grandi\n");
  return {};
}

/// Scans one section after the other; false when interrupted.
bool scandisci(Engine& engine, const Richiesta& richiesta) {
  const std::vector<std::string>& sezioni = richiesta.sezioni;
  const Interruzione interruzione;
  Avanzamento avanzamento(sezioni.size());
  for (std::size_t i = 0; i < sezioni.size(); ++i) {
    engine.start(sezioni[i], false, richiesta.radici);
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

/// The sum of a section in the two words: what comes free and what is only reported.
std::string inDueParole(const RiassuntoSezione& sezione) {
  const std::string segnalati =
      sezione.segnalati > 0 ? dimensione(sezione.segnalati) + " segnalati" : std::string();
  if (sezione.libera == 0) return segnalati.empty() ? "Forse non libera spazio." : segnalati + ".";
  const std::string libera = "Libera almeno " + dimensione(sezione.libera);
  return libera + (segnalati.empty() ? "" : ", " + segnalati) + ".";
}

/// The first sentence is told in the two words; what nobody looked at must not read as clean.
std::string statoMostrato(const RiassuntoSezione& sezione) {
  if (!sezione.scandibile) return "Non ancora disponibile in questa versione.";
  const std::string& status = sezione.status;
  const std::size_t fine = std::min(status.find(". "), status.size() - 1) + 1;
  std::string prima = perTerminale(status.substr(0, fine));
  std::string resto = perTerminale(status.substr(fine));
  if (prima.starts_with("Recuperabili ")) prima = inDueParole(sezione);
  if (sezione.disponibile) return prima + resto;
  const std::string incompleta = "Ricerca non completa in questa versione.";
  if (prima == "Niente da segnalare.") return incompleta + resto;
  return prima + resto + (status.empty() ? "" : " ") + incompleta;
}

void stampaTabella(const Snapshot& istante, const std::vector<std::string>& sezioni,
                   std::int64_t libera) {
  Tabella tabella(
      {Allineamento::sinistra, Allineamento::sinistra, Allineamento::destra, Allineamento::destra});
  tabella.riga({"Sezione", "Stato", "Voci", "Libera"});
  std::int64_t voci = 0;
  for (const RiassuntoSezione& sezione : istante.sezioni) {
    if (std::count(sezioni.begin(), sezioni.end(), sezione.id) == 0) continue;
    tabella.riga({sezione.name, statoMostrato(sezione), std::to_string(sezione.voci),
                  dimensione(sezione.libera)});
    voci += sezione.voci;
  }
  tabella.riga({"Totale", "", std::to_string(voci), dimensione(libera)});
  stampa(tabella.testo());
  if (libera > 0) stampa("Lo spazio torna quando svuoti il Cestino.\n");
}

std::vector<Trattenuto> trattenuti(Engine& engine, const std::vector<std::string>& sezioni) {
  std::vector<Trattenuto> tutti;
  for (const std::string& sezione : sezioni) {
    for (const auto& voce : engine.findings(sezione)) {
      tutti.insert(tutti.end(), voce.finding.trattenuti.begin(), voce.finding.trattenuti.end());
    }
  }
  return tutti;
}

}  // namespace

int comandoScan(Applicazione& applicazione, const OpzioniScan& opzioni) {
  const auto richiesta = leggiRichiesta(applicazione, opzioni);
  if (!richiesta) return kUnknownSection;
  Engine& engine = applicazione.engine();
  if (!scandisci(engine, *richiesta)) {
    fmt::print(stderr, "Scansione interrotta.\n");
    return kInterrupted;
  }
  const auto stato = engine.snapshot();
  if (opzioni.json) {
    stampa(stato->testo);
    stampa("\n");
  } else {
    stampaTabella(*stato, richiesta->sezioni, engine.libera(richiesta->sezioni));
    stampaTrattenuti(trattenuti(engine, richiesta->sezioni), applicazione.home());
  }
  return chiudiUscita();
}

}  // namespace pellak::app
