#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PellakCore/base/Rope.h"

namespace pellak {

/// What a terminal or a notice needs of one section, without parsing the reply.
struct RiassuntoSezione {
  std::string id;
  std::string name;
  std::string status;
  bool scanning = false;
  bool queued = false;
  std::int64_t voci = 0;
  std::int64_t totale = 0;     ///< bytes
  std::int64_t libera = 0;     ///< bytes that emptying the Trash surely frees
  std::int64_t segnalati = 0;  ///< bytes of what is only reported
  double lastScan = 0;
  bool scandibile = false;   ///< this version has a scanner for something of it
  bool disponibile = false;  ///< and one for every special category
};

/// The state at one version. Immutable; the engine hands out the same object while nothing
/// moved.
struct Snapshot {
  std::int64_t ver = 0;
  bool busy = false;
  std::int64_t libera = 0;  ///< of all sections, each path once
  Rope testo;               ///< the reply of "/api/state"
  std::vector<RiassuntoSezione> sezioni;
};

}  // namespace pellak
