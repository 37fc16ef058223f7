#include "shell/Prova.h"

#include <chrono>
#include <fmt/format.h>

#include "PellakCore/Catalogo.h"
#include "PellakCore/base/Json.h"

namespace pellak::shell::prova {
namespace {

using Orologio = std::chrono::steady_clock;

constexpr int kRipetizioni = 100;
constexpr std::chrono::hours kSenzaFine{24};

class Cronometro {
 public:
  double ms() const {
    return std::chrono::duration<double, std::milli>(Orologio::now() - inizio_).count();
  }

 private:
  Orologio::time_point inizio_ = Orologio::now();
};

std::int64_t vociDi(const Snapshot& stato, std::string_view id) {
  for (const RiassuntoSezione& sezione : stato.sezioni) {
    if (sezione.id == id) return sezione.voci;
  }
  return 0;
}

void tempiStato(Engine& engine, const Stampa& stampa) {
  engine.touch();
  const Cronometro fredda;
  static_cast<void>(engine.snapshot()->testo.str());
  stampa(fmt::format("BENCH: serialize fredda    {:7.2f} ms", fredda.ms()));
  const Cronometro ripetuta;
  for (int i = 0; i < kRipetizioni; ++i) static_cast<void>(engine.snapshot());
  stampa(fmt::format("BENCH: serialize x100      {:7.2f} ms (cache)", ripetuta.ms()));
}

void tempiMappa(Engine& engine, const std::string& home, const Stampa& stampa) {
  const Cronometro fredda;
  auto mappa = engine.mappa().richiedi(home, true);
  while (mappa && (*mappa)->misurando()) {
    engine.mappa().attendi(home, kSenzaFine);
    mappa = engine.mappa().richiedi(home);
  }
  stampa(fmt::format("BENCH: mappa ~ fredda      {:7.0f} ms", fredda.ms()));
  const Cronometro nota;
  static_cast<void>(engine.mappa().richiedi(home).ok());
  stampa(fmt::format("BENCH: mappa ~ in cache    {:7.2f} ms", nota.ms()));
}

}  // namespace

void tempi(Engine& engine, const std::string& home, const Stampa& stampa) {
  stampa("BENCH: sezione                tempo      esito");
  double totale = 0;
  for (const Meta& meta : metas()) {
    const Cronometro tempo;
    if (!engine.start(meta.id)) {
      stampa("err: scansione già in corso");
      return;
    }
    engine.attendiFine();
    const double ms = tempo.ms();
    totale += ms;
    stampa(fmt::format("BENCH: {:<22} {:7.0f} ms  {} voci", meta.id, ms,
                       vociDi(*engine.snapshot(), meta.id)));
  }
  tempiStato(engine, stampa);
  tempiMappa(engine, home, stampa);
  stampa(fmt::format("BENCH: TOTALE scansioni    {:7.0f} ms", totale));
}

void fumo(Engine& engine, api::Router& router, const Stampa& stampa) {
  const auto chiedi = [&](const char* rotta, const char* chiave) {
    const api::Risposta risposta = router.handle(rotta, {});
    const auto documento = JsonDocument::parse(risposta.testo.str());
    const bool giusta = risposta.stato == 200 && documento && documento->radice().contiene(chiave);
    stampa(giusta ? fmt::format("SMOKE: {} ok", rotta)
                  : fmt::format("err: {} stato {}", rotta, risposta.stato));
  };
  chiedi("/api/state", "sections");
  chiedi("/api/settings", "valori");
  chiedi("/api/log", "ops");
  const auto stato = engine.snapshot();
  stampa(stato->sezioni.size() == metas().size()
             ? fmt::format("SMOKE: {} sezioni, versione {}", stato->sezioni.size(), stato->ver)
             : fmt::format("err: {} sezioni", stato->sezioni.size()));
  const Regole regole = engine.effectiveRules();
  stampa(regole.guasto.empty() ? fmt::format("SMOKE: {} regole", regole.categorie.size())
                               : "err: regole non leggibili: " + regole.guasto);
}

}  // namespace pellak::shell::prova
