#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/SerialQueue.h"
#include "api/Router.h"
#include "shell/Pagina.h"

namespace pellak::shell {

/// Where every message of the page comes in, whatever carries it: a web view's script channel or
/// lines on standard input.
///
/// Requests go to one of two serial queues, so that those of one kind are answered in the order
/// sent and a slow one never holds up the ordinary ones. Every request gets exactly one
/// `apiDone`; messages of another shape are dropped. `receive` may be called from any thread and
/// never waits for an answer.
class Bridge {
 public:
  /// What to do about the words of the channel "pellak"; called on the thread of `receive`.
  using Comando = std::function<void(const std::string& parola)>;

  /// Router and page outlive the bridge.
  Bridge(api::Router& router, Pagina& pagina, Comando comando);

  /// One message. `canale` is "api" (the message is an object with "id", "path" and optionally
  /// "body") or "pellak" (the message is a text); `messaggio` is a place in `documento`, which
  /// the bridge keeps until the request is answered.
  void receive(std::string_view canale, std::shared_ptr<const JsonDocument> documento,
               Json messaggio);

  /// Waits until everything received before the call is answered.
  void attendiRisposte();
  /// The same for at most `attesa`; whether all of it was answered.
  bool attendiRisposte(std::chrono::milliseconds attesa);

  /// Requests received and not yet answered.
  std::size_t inAttesa();

 private:
  void riceviRichiesta(std::shared_ptr<const JsonDocument> documento, Json messaggio);

  api::Router& router_;
  Pagina& pagina_;
  const Comando comando_;
  SerialQueue routeQ_{"pellak.route"};
  SerialQueue lentoQ_{"pellak.lento"};
};

}  // namespace pellak::shell
