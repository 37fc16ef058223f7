#include "commands/ErroriComando.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>

#include "PellakCore/base/Utf8.h"

namespace pellak {

namespace {

constexpr std::size_t kCaratteriErrore = 200;
constexpr double kMinutiMassimi = 1e15;  // whole numbers are exact up to here

bool contiene(std::string_view testo, std::string_view parte) {
  return testo.find(parte) != std::string_view::npos;
}

struct RigaErrore {
  std::string_view parte;
  std::string_view errore;
};

// Tried from the top. The first, sixth and seventh are how the password dialog reports a
// cancellation or a failed authorisation; the second is killall's.
constexpr std::array kRighe = {
    RigaErrore{"-128", "operazione annullata"},
    RigaErrore{"No matching processes", "non era in esecuzione: non c'era niente da riavviare"},
    RigaErrore{"Could not find disk", "non riesco a individuare il disco di questo Mac"},
    RigaErrore{"Operation not permitted", "macOS non lo consente a questo programma"},
    RigaErrore{"Permission denied", "macOS non lo consente a questo programma"},
    RigaErrore{"User canceled", "operazione annullata"},
    RigaErrore{"(-60007)", "operazione annullata"},
};

// How pkexec begins what it says itself.
constexpr std::array<std::string_view, 6> kParolePkexec = {
    "Error executing command as another user",
    "Error checking for authorization",
    "Error getting authority",
    "Error creating textual authentication agent",
    "pkexec must be setuid root",
    "This incident has been reported"};

}  // namespace

std::string erroreLimite(double limite) {
  const double minuti =
      std::isnan(limite) ? 0.0 : std::clamp(limite / 60.0, -kMinutiMassimi, kMinutiMassimi);
  return fmt::format(
      "l'operazione non si è conclusa entro {} minuti: l'ho interrotta, "
      "niente è stato lasciato a metà dal programma",
      static_cast<std::int64_t>(minuti));
}

std::string erroreComando(std::string_view testoErrore) {
  const auto riga = std::find_if(
      kRighe.begin(), kRighe.end(),
      [testoErrore](const auto& candidata) { return contiene(testoErrore, candidata.parte); });
  if (riga != kRighe.end()) return std::string(riga->errore);
  if (testoErrore.empty()) return "errore";
  return std::string(utf8Prefisso(testoErrore, kCaratteriErrore));
}

RispostaPkexec rispostaPkexec(int stato, std::string_view testoErrore) {
  constexpr int kAnnullata = 126;
  constexpr int kNegata = 127;
  if (stato != kAnnullata && stato != kNegata) return RispostaPkexec::comando;
  const bool sue = testoErrore.empty() || std::any_of(kParolePkexec.begin(), kParolePkexec.end(),
                                                      [testoErrore](auto parole) {
                                                        return contiene(testoErrore, parole);
                                                      });
  if (!sue) return RispostaPkexec::comando;
  return stato == kAnnullata ? RispostaPkexec::annullata : RispostaPkexec::negata;
}

}  // namespace pellak
