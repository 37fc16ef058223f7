#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "PellakCore/base/Rope.h"

namespace pellak::shell {

/// The page's side of the message channel: the calls that go into it. Any thread; calls made by
/// one thread arrive in their order.
class Pagina {
 public:
  virtual ~Pagina() = default;

  /// The reply to request `id`: an HTTP-like status and the reply object's JSON text.
  virtual void apiDone(std::int64_t id, int stato, const Rope& risposta) = 0;

  /// A call of one of the page's functions; every argument is complete JSON text.
  virtual void chiama(std::string_view funzione, std::span<const std::string> argomenti) = 0;
};

}  // namespace pellak::shell
