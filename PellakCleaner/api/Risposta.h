#pragma once

#include <string>
#include <string_view>

#include "PellakCore/base/Rope.h"

namespace pellak::api {

/// What a request is answered with: an HTTP-like status and the text of one JSON object. Long
/// texts share their pieces with whoever keeps them; copying a reply copies no text.
struct Risposta {
  int stato = 200;
  Rope testo;
};

/// {"err": testo}, a short Italian sentence for the user. Refusals that belong to normal use keep
/// status 200; 400 is a request that can't be meant, 500 a failure of the system.
Risposta errore(std::string_view testo, int stato = 200);

/// {"ok": true}
Risposta riuscito();

/// A reply from JSON text that is complete.
Risposta conTesto(std::string json);

}  // namespace pellak::api
