#include "app/ComandoApi.h"

#include <chrono>
#include <cstdio>
#include <fmt/format.h>

#include "PellakCore/base/Json.h"
#include "app/Applicazione.h"
#include "app/Interruzione.h"
#include "app/Uscita.h"

namespace pellak::app {
namespace {

constexpr int kMalformed = 2;
constexpr int kInterrupted = 130;
constexpr std::chrono::milliseconds kLook{100};

/// Replies with an error are short; the state with all its findings never is one.
bool conErrore(const api::Risposta& risposta) {
  constexpr std::size_t kMaxErrorBytes = std::size_t{1} << 20U;
  if (risposta.stato != 200) return true;
  if (risposta.testo.size() > kMaxErrorBytes) return false;
  const Result<JsonDocument> letta = JsonDocument::parse(risposta.testo.str());
  return !letta || !letta->radice().testo("err").empty();
}

/// False when a Ctrl-C stopped the scan.
bool attendiScansione(Engine& engine) {
  const Interruzione interruzione;
  while (engine.occupato()) {
    if (interruzione.chiesta()) {
      engine.stop();
      engine.attendiFine();
      return false;
    }
    engine.attendiFine(kLook);
  }
  return true;
}

}  // namespace

int comandoApi(Applicazione& applicazione, const std::string& rotta, const std::string& corpo) {
  const Result<JsonDocument> documento = JsonDocument::parse(corpo);
  if (!documento) {
    fmt::print(stderr, "JSON non valido: {}\n", documento.error().text);
    return kMalformed;
  }
  const api::Risposta risposta = applicazione.router().handle(rotta, documento->radice());
  stampa(risposta.testo);
  stampa("\n");
  const int scritto = chiudiUscita();
  if (!attendiScansione(applicazione.engine())) {
    fmt::print(stderr, "Scansione interrotta.\n");
    return kInterrupted;
  }
  return conErrore(risposta) ? 1 : scritto;
}

}  // namespace pellak::app
