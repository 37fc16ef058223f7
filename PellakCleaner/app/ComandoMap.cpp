#include "app/ComandoMap.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <memory>

#include "PellakCore/MappaDisco.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/Utf8.h"
#include "app/Applicazione.h"
#include "app/Interruzione.h"
#include "app/PercorsoRichiesto.h"
#include "app/Quantita.h"
#include "app/Terminale.h"
#include "app/Uscita.h"

namespace pellak::app {
namespace {

using Orologio = std::chrono::steady_clock;
using MappaPtr = std::shared_ptr<const Mappa>;

constexpr int kUnreadable = 1;
constexpr int kInterrupted = 130;
constexpr std::chrono::milliseconds kLook{100};
constexpr std::size_t kBar = 20;

/// The line that moves while a folder is measured; gone when it ends.
class Avanzamento {
 public:
  Avanzamento() = default;
  ~Avanzamento() {
    if (mostrato_) fmt::print(stderr, "\r\033[K");
  }
  Avanzamento(const Avanzamento&) = delete;
  Avanzamento& operator=(const Avanzamento&) = delete;

  void mostra(const Mappa& mappa) {
    if (!visibile_) return;
    mostrato_ = true;
    daMisurare_ = std::max(daMisurare_, mappa.ignoti);
    const auto secondi =
        std::chrono::duration_cast<std::chrono::seconds>(Orologio::now() - inizio_).count();
    const std::string riga =
        fmt::format("Misurate {} cartelle su {}, {} ({:02}:{:02})", daMisurare_ - mappa.ignoti,
                    daMisurare_, dimensione(mappa.tot), secondi / 60, secondi % 60);
    const std::size_t spazio = std::max<std::size_t>(colonneTerminale(), 2) - 1;
    fmt::print(stderr, "\r\033[K{}", utf8Prefisso(riga, spazio));
    std::fflush(stderr);
  }

 private:
  const bool visibile_ = uscitaInterattiva();
  const Orologio::time_point inizio_ = Orologio::now();
  bool mostrato_ = false;
  std::size_t daMisurare_ = 0;
};

/// Asks until the map is complete. Nothing when interrupted.
Result<MappaPtr> misura(MappaDisco& disco, const std::string& percorso) {
  const Interruzione interruzione;
  Avanzamento avanzamento;
  for (;;) {
    auto mappa = disco.richiedi(percorso);
    if (interruzione.chiesta()) return MappaPtr();
    if (!mappa || !(*mappa)->misurando()) return mappa;
    avanzamento.mostra(**mappa);
    disco.attendi((*mappa)->percorso, kLook);
  }
}

std::string barra(std::int64_t size, std::int64_t massimo) {
  const double quota = massimo <= 0 ? 0 : static_cast<double>(size) / static_cast<double>(massimo);
  auto piene = static_cast<std::size_t>(std::lround(quota * static_cast<double>(kBar)));
  if (size > 0) piene = std::max<std::size_t>(piene, 1);
  std::string testo;
  for (std::size_t i = 0; i < kBar; ++i) testo += i < piene ? "█" : "░";
  return testo;
}

void stampaTabella(const Mappa& mappa, const std::string& home) {
  stampa(grassetto(perTerminale(percorsoMostrato(mappa.percorso, home))) + "\n" +
         dimensione(mappa.tot) + "\n\n");
  const std::int64_t massimo = mappa.voci.empty() ? 0 : mappa.voci.front().size;
  Tabella tabella({Allineamento::destra, Allineamento::sinistra, Allineamento::sinistra});
  tabella.riga({"Dimensione", "", "Nome"});
  for (const VoceMappa& voce : mappa.voci) {
    tabella.riga({dimensione(voce.size), barra(voce.size, massimo),
                  perTerminale(voce.nome) + (voce.dir ? "/" : "")});
  }
  stampa(tabella.testo());
  const std::size_t nascoste = mappa.figli - mappa.voci.size();
  if (nascoste == 1) stampa("… e un'altra voce\n");
  if (nascoste > 1) stampa(fmt::format("… e altre {} voci\n", nascoste));
}

int nonLeggibile(const Error& errore, const std::string& percorso) {
  const char* testo = "cartella non leggibile";
  if (errore.kind == ErrorKind::denied) testo = "cartella non leggibile (permessi)";
  if (errore.kind == ErrorKind::missing) testo = "cartella inesistente";
  fmt::print(stderr, "{}: {}\n", testo, perTerminale(percorso));
  return kUnreadable;
}

}  // namespace

int comandoMap(Applicazione& applicazione, const OpzioniMap& opzioni) {
  const std::string percorso = percorsoRichiesto(opzioni.percorso, applicazione.home());
  if (percorso.empty()) {
    fmt::print(stderr, "percorso non valido: {}\n", perTerminale(opzioni.percorso));
    return kUnreadable;
  }
  const Result<MappaPtr> esito = misura(applicazione.engine().mappa(), percorso);
  if (!esito) return nonLeggibile(esito.error(), percorso);
  if (*esito == nullptr) {
    fmt::print(stderr, "Misura interrotta.\n");
    return kInterrupted;
  }
  const Mappa& mappa = **esito;
  if (opzioni.json) {
    JsonWriter uscita;
    scriviMappa(uscita, mappa);
    stampa(uscita.take() + "\n");
  } else {
    stampaTabella(mappa, applicazione.home());
  }
  const int stato = chiudiUscita();
  if (mappa.nonLeggibili > 0) {
    fmt::print(stderr, "{}: il totale è parziale.\n",
               quantita(mappa.nonLeggibili, "elemento non leggibile", "elementi non leggibili"));
  }
  return stato;
}

}  // namespace pellak::app
