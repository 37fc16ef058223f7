#include "PellakCore/Sec.h"

#include <algorithm>

#include "PellakCore/base/Formati.h"

namespace pellak {

std::int64_t Sec::totale() const {
  std::int64_t somma = 0;
  for (const Finding& finding : findings) somma = sommaSicura(somma, finding.totale());
  return somma;
}

bool Sec::haVoci() const {
  return std::any_of(findings.begin(), findings.end(),
                     [](const Finding& finding) { return !finding.vuoto(); });
}

std::string Sec::statoMostrato() const {
  if (scanning || nonSalvata.empty()) return status;
  return status + " Risultati non salvati: " + nonSalvata + ".";
}

std::string statoFinale(const Sec& sezione, const std::string& senzaNulla) {
  if (sezione.haVoci()) return "Recuperabili " + dimensione(sezione.totale()) + ".";
  if (sezione.denied < 1) return senzaNulla;
  return "ATTENZIONE: " + std::to_string(sezione.denied) +
         " percorsi non leggibili. Probabile mancanza di permessi, non disco pulito.";
}

}  // namespace pellak
