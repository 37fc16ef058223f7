#pragma once

#include <string_view>

#include "PellakCore/base/Json.h"
#include "api/Risposta.h"
#include "api/Rotte.h"
#include "api/Servizi.h"

namespace pellak::api {

/// The one entry of every request: window, terminal bridge, commands and tests.
///
/// Holds no state of its own. Any thread, several requests at once; the caller keeps the requests
/// of one queue in order.
class Router {
 public:
  explicit Router(Servizi servizi);

  /// Runs the request and returns its reply. Never throws: whatever goes wrong is a reply with
  /// "err" (unknown route: status 404; a failure inside: status 500). A body that is not an object
  /// counts as an empty one. May block as long as the route's work takes.
  Risposta handle(std::string_view rotta, Json corpo) noexcept;

  /// Queue a request belongs to; unknown routes go to the ordinary one.
  static Coda codaDi(std::string_view rotta);

 private:
  Risposta esegui(const Rotta& rotta, Json corpo);

  Servizi servizi_;
};

}  // namespace pellak::api
