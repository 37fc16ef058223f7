#pragma once

#include <span>
#include <string_view>

#include "PellakCore/base/Json.h"
#include "api/Risposta.h"

namespace pellak::api {

struct Servizi;

/// Serial queue on which a request waits for its turn: one never holds up the other.
enum class Coda { ordinaria, lenta };

/// Answers one request. `corpo` is an object or absent; values are read leniently. May throw: the
/// router turns it into an error reply.
using Gestore = Risposta (*)(Servizi& servizi, Json corpo);

/// One row of the route table.
struct Rotta {
  std::string_view percorso;  ///< compared whole, case counts
  Gestore gestore;
  Coda coda = Coda::ordinaria;
  /// Changes findings or what lies on the disk: derived caches are dropped before it and results
  /// saved after it.
  bool mutating = false;
};

/// All routes, each path once.
std::span<const Rotta> rotte();

/// The row of a path; nullptr when there is none.
const Rotta* cercaRotta(std::string_view percorso);

}  // namespace pellak::api
