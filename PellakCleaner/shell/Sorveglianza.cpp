#include "shell/Sorveglianza.h"

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string_view>

#include "PellakCore/Config.h"
#include "PellakCore/Finding.h"
#include "PellakCore/base/Formati.h"
#include "PellakCore/base/JsonWriter.h"

namespace pellak::shell {
namespace {

constexpr double kGiorno = 86'400;
constexpr std::size_t kMaxFile = 4096;
constexpr const char* kTitolo = "Pellak Cleaner";

/// The shortest text of a double, with a decimal point.
std::string comeTesto(double secondi) {
  std::string testo;
  appendJsonNumber(testo, secondi);
  if (testo.find_first_of(".e") == std::string::npos) testo += ".0";
  return testo;
}

}  // namespace

void Sorveglianza::arma(double secondi) {
  const auto attesa = std::chrono::milliseconds(static_cast<std::int64_t>(secondi * 1000));
  engine_.dopo(attesa, [this, secondi] {
    controlla();
    arma(secondi);
  });
}

/// When the last check's scan began, seconds since 1970; 0 when the file does not say.
double Sorveglianza::ultima() const {
  const auto testo = files_.read(engine_.store().ultimaScansioneAuto(), kMaxFile);
  if (!testo) return 0;
  std::istringstream parole(*testo);
  parole.imbue(std::locale::classic());
  double letta = 0;
  const bool intera = parole >> letta && parole.peek() == std::istringstream::traits_type::eof();
  return intera && std::isfinite(letta) ? letta : 0;
}

void Sorveglianza::controlla() {
  const std::int64_t giorni = impostazioni_.leggi().intero("auto_days");
  if (giorni < 1) return;
  const double adesso = clock_.now();
  if (adesso - ultima() < static_cast<double>(giorni) * kGiorno) return;
  if (!engine_.start("all", true)) return;
  const std::string testo = comeTesto(adesso);
  const std::array<std::string_view, 1> pezzi = {testo};
  // Unwritten, the next check starts another scan: rather once too often than never.
  static_cast<void>(files_.replace(engine_.store().ultimaScansioneAuto(), pezzi));
}

void Sorveglianza::concluso(const Snapshot& stato) const {
  std::int64_t totale = 0;
  for (const RiassuntoSezione& sezione : stato.sezioni) {
    totale = sommaSicura(totale, sezione.totale);
  }
  notifica_("Controllo periodico completato: puoi liberare " + dimensione(totale) +
                ". Apri Pellak Cleaner per decidere.",
            kTitolo);
}

}  // namespace pellak::shell
