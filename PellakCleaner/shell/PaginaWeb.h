#pragma once

#include "platform/DesktopHost.h"
#include "shell/Pagina.h"

namespace pellak::shell {

/// The page in the window's web view: every call becomes a script that runs on the main thread.
class PaginaWeb final : public Pagina {
 public:
  explicit PaginaWeb(DesktopHost& host) : host_(host) {}

  void apiDone(std::int64_t id, int stato, const Rope& risposta) override;
  void chiama(std::string_view funzione, std::span<const std::string> argomenti) override;

 private:
  void esegui(std::string script);

  DesktopHost& host_;
};

/// A JavaScript string literal that stands for the text, whatever it holds. The text is UTF-8.
std::string letterale(std::string_view testo);

}  // namespace pellak::shell
