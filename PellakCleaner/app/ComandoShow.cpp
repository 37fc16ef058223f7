#include "app/ComandoShow.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <vector>

#include "PellakCore/Libera.h"
#include "PellakCore/StatoTesto.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/JsonWriter.h"
#include "app/Applicazione.h"
#include "app/Quantita.h"
#include "app/Terminale.h"
#include "app/Trattenuti.h"
#include "app/Uscita.h"

namespace pellak::app {
namespace {

using FindingDiSezione = Engine::FindingDiSezione;

constexpr int kUnread = 1;
constexpr int kUnknownFinding = 2;

std::string quanteVoci(std::int64_t numero) { return quantita(numero, "voce", "voci"); }

std::string senzaIcona(std::string_view /*chiave*/) { return {}; }

/// The entries in the chosen order, at most as many as asked for.
void riduci(Finding& finding, const OpzioniShow& opzioni) {
  const std::size_t tutte = finding.items.size();
  const std::size_t numero =
      opzioni.limite ? std::min(tutte, static_cast<std::size_t>(*opzioni.limite)) : tutte;
  std::vector<Voce> scelte;
  scelte.reserve(numero);
  for (const std::size_t i : paginaOrdinata(finding.items, opzioni.ordine, 0, numero)) {
    scelte.push_back(std::move(finding.items[i]));
  }
  finding.items = std::move(scelte);
  if (opzioni.limite && finding.groups.size() > static_cast<std::size_t>(*opzioni.limite)) {
    finding.groups.resize(static_cast<std::size_t>(*opzioni.limite));
  }
}

void stampaElenco(const std::vector<FindingDiSezione>& findings, const Snapshot& stato) {
  if (findings.empty()) {
    const bool mai = std::all_of(stato.sezioni.begin(), stato.sezioni.end(),
                                 [](const RiassuntoSezione& s) { return s.lastScan <= 0; });
    stampa(mai ? "Nessun risultato salvato: esegui «pellak-cleaner scan».\n"
               : "L'ultima scansione non ha trovato niente da segnalare.\n");
    return;
  }
  Tabella tabella({Allineamento::sinistra, Allineamento::sinistra, Allineamento::sinistra,
                   Allineamento::destra, Allineamento::destra, Allineamento::destra,
                   Allineamento::sinistra});
  tabella.riga({"Sezione", "Id", "Nome", "Voci", "Dimensione", "Libera", "Azione"});
  for (const auto& [sezione, finding] : findings) {
    tabella.riga({sezione, perTerminale(finding.id), perTerminale(finding.name),
                  std::to_string(finding.quante()), dimensione(finding.totale()),
                  dimensione(libera(finding)),
                  finding.mode == "delete" ? "Cestino" : "solo report"});
  }
  stampa(tabella.testo());
}

void stampaVoci(const Finding& finding, const std::string& home) {
  FormatoData date;
  Tabella tabella({Allineamento::destra, Allineamento::sinistra, Allineamento::sinistra});
  tabella.riga({"Dimensione", "Modificato", "Percorso"});
  for (const Voce& voce : finding.items) {
    tabella.riga({dimensione(voce.size), date.testo(voce.mtime),
                  perTerminale(percorsoMostrato(voce.path, home))});
  }
  for (std::size_t i = 0; i < finding.groups.size(); ++i) {
    const Group& gruppo = finding.groups[i];
    tabella.riga({dimensione(gruppo.size), "gruppo " + std::to_string(i),
                  perTerminale(gruppo.scheda->name)});
    for (const std::string& percorso : gruppo.paths) {
      tabella.riga({"", "", "  " + perTerminale(percorsoMostrato(percorso, home))});
    }
  }
  stampa(tabella.testo());
}

void stampaFinding(const Finding& intero, const Finding& ridotto, const std::string& home) {
  stampa(grassetto(perTerminale(intero.name)) + "\n");
  if (!intero.note.empty()) stampa(perTerminale(intero.note) + "\n");
  const std::string parola = intero.mode == "delete"
                                 ? ", libera almeno " + dimensione(libera(intero))
                                 : std::string(" segnalati");
  stampa(quanteVoci(intero.quante()) + ", " + dimensione(intero.totale()) + parola + "\n\n");
  stampaVoci(ridotto, home);
  const std::int64_t nascoste = intero.quante() - ridotto.quante();
  if (nascoste == 1) stampa("… e un'altra voce\n");
  if (nascoste > 1) stampa("… e altre " + quanteVoci(nascoste) + "\n");
  stampaTrattenuti(intero.trattenuti, home);
}

int mostraElenco(const std::vector<FindingDiSezione>& findings, const Snapshot& stato, bool json) {
  if (!json) {
    stampaElenco(findings, stato);
    return chiudiUscita();
  }
  FormatoData date;
  JsonWriter uscita;
  uscita.beginArray();
  for (const auto& [sezione, finding] : findings) {
    JsonWriter oggetto;
    scriviFinding(oggetto, finding, {finding.items, finding.groups}, date, senzaIcona);
    std::string testo = oggetto.take();
    uscita.raw("{\"section\":" + jsonText(sezione) + "," + testo.substr(1));
  }
  uscita.endArray();
  stampa(uscita.take() + "\n");
  return chiudiUscita();
}

}  // namespace

int comandoShow(Applicazione& applicazione, const OpzioniShow& opzioni) {
  // Told on standard error already: without them there is nothing to say about the disk.
  if (!applicazione.engine().nonLetti().empty()) return kUnread;
  const std::vector<FindingDiSezione> findings = applicazione.engine().findings();
  if (opzioni.finding.empty()) {
    return mostraElenco(findings, *applicazione.engine().snapshot(), opzioni.json);
  }
  const auto scelto = std::find_if(
      findings.begin(), findings.end(),
      [&](const FindingDiSezione& voce) { return voce.finding.id == opzioni.finding; });
  if (scelto == findings.end()) {
    fmt::print(stderr, "categoria inesistente: {}\n", perTerminale(opzioni.finding));
    return kUnknownFinding;
  }
  Finding ridotto = scelto->finding;
  riduci(ridotto, opzioni);
  if (opzioni.json) {
    FormatoData date;
    JsonWriter uscita;
    scriviFinding(uscita, scelto->finding, {ridotto.items, ridotto.groups}, date, senzaIcona);
    stampa(uscita.take() + "\n");
  } else {
    stampaFinding(scelto->finding, ridotto, applicazione.home());
  }
  return chiudiUscita();
}

}  // namespace pellak::app
