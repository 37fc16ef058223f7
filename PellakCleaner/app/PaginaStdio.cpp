#include "app/PaginaStdio.h"

#include <cstdio>
#include <fmt/format.h>

#include "app/Uscita.h"

namespace pellak::app {

void PaginaStdio::apiDone(std::int64_t id, int stato, const Rope& risposta) {
  const std::lock_guard<std::mutex> hold(lock_);
  stampa(fmt::format(R"({{"call":"__apiDone","id":{},"status":{},"reply":)", id, stato));
  stampa(risposta);
  stampa("}\n");
  consegna();
}

void PaginaStdio::chiama(std::string_view funzione, std::span<const std::string> argomenti) {
  std::string riga = fmt::format(R"({{"call":"{}","args":[)", funzione);
  for (std::size_t i = 0; i < argomenti.size(); ++i) riga += (i > 0 ? "," : "") + argomenti[i];
  riga += "]}\n";
  const std::lock_guard<std::mutex> hold(lock_);
  stampa(riga);
  consegna();
}

}  // namespace pellak::app
