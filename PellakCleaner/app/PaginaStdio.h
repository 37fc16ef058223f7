#pragma once

#include <mutex>

#include "shell/Pagina.h"

namespace pellak::app {

/// The page at the other end of standard output: every call is one JSON line, written whole.
class PaginaStdio : public shell::Pagina {
 public:
  void apiDone(std::int64_t id, int stato, const Rope& risposta) override;
  void chiama(std::string_view funzione, std::span<const std::string> argomenti) override;

 private:
  std::mutex lock_;
};

}  // namespace pellak::app
