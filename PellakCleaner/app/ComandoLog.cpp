#include "app/ComandoLog.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fmt/format.h>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/Json.h"
#include "app/Applicazione.h"
#include "app/Quantita.h"
#include "app/Richiesta.h"
#include "app/Terminale.h"
#include "app/Uscita.h"
#include "trash/Messaggi.h"

namespace pellak::app {
namespace {

constexpr int kFailed = 1;
/// Fixed widths: a row is written as soon as it is known, however many there are.
constexpr const char* kOperazione = "{:<12}  {:<16}  {:>8}  {:>10}  {:>12}  {}\n";
constexpr const char* kElemento = "{:>6}  {:<12}  {}\n";

int nonLeggibile(const std::string& perche) {
  fmt::print(stderr, "{}\n", perTerminale(perche));
  return kFailed;
}

std::ptrdiff_t ripristinati(const trash::Operazione& operazione) {
  return std::count_if(operazione.items.begin(), operazione.items.end(),
                       [](const trash::Mossa& mossa) { return mossa.rip; });
}

std::string titolo(const trash::Operazione& operazione) {
  const std::string nota = operazione.nota.empty() ? std::string() : " (" + operazione.nota + ")";
  return perTerminale(operazione.azione) + tenue(perTerminale(nota));
}

int stampaOperazioni(Applicazione& applicazione) {
  FormatoData date;
  bool prima = true;
  const auto letto = applicazione.operazioni().log([&](const trash::Operazione& operazione) {
    if (uscitaPersa()) return;
    if (prima) {
      stampa(grassetto(fmt::format(kOperazione, "Id", "Data", "Elementi", "Dimensione",
                                   "Ripristinati", "Operazione")));
    }
    prima = false;
    stampa(fmt::format(kOperazione, perTerminale(operazione.id), date.testo(operazione.ts),
                       operazione.items.size(), dimensione(operazione.tot),
                       ripristinati(operazione), titolo(operazione)));
  });
  if (!letto) return nonLeggibile(trash::registroNonLeggibile(letto.error()));
  if (prima) stampa("Nessuna operazione nel registro.\n");
  return chiudiUscita();
}

void stampaElementi(const trash::Operazione& operazione, const std::string& home) {
  stampa(grassetto(titolo(operazione)) + "\n");
  stampa(fmt::format("{}, {}, {}\n\n", FormatoData().testo(operazione.ts),
                     quantiElementi(static_cast<std::int64_t>(operazione.items.size())),
                     dimensione(operazione.tot)));
  stampa(grassetto(fmt::format(kElemento, "Indice", "Ripristinato", "Percorso")));
  for (std::size_t i = 0; i < operazione.items.size(); ++i) {
    const trash::Mossa& mossa = operazione.items[i];
    stampa(fmt::format(kElemento, i, mossa.rip ? "sì" : "",
                       perTerminale(percorsoMostrato(mossa.orig, home))));
  }
}

}  // namespace

int comandoLog(Applicazione& applicazione, const OpzioniLog& opzioni) {
  if (opzioni.json) {
    const api::Risposta risposta = applicazione.router().handle("/api/log", Json());
    stampa(risposta.testo);
    stampa("\n");
    const int stato = chiudiUscita();
    if (risposta.stato == 200) return stato;
    const auto documento = JsonDocument::parse(risposta.testo.str());
    return nonLeggibile(documento ? perche(documento->radice()) : std::string());
  }
  if (opzioni.operazione.empty()) return stampaOperazioni(applicazione);
  const auto operazione = applicazione.operazione(opzioni.operazione);
  if (!operazione) return nonLeggibile(trash::registroNonLeggibile(operazione.error()));
  if (!*operazione) {
    fmt::print(stderr, "operazione non trovata: {}\n", perTerminale(opzioni.operazione));
    return kFailed;
  }
  stampaElementi(**operazione, applicazione.home());
  return chiudiUscita();
}

}  // namespace pellak::app
