#include "app/Uscita.h"

#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <system_error>

namespace pellak::app {

void stampa(std::string_view testo) { std::fwrite(testo.data(), 1, testo.size(), stdout); }

void stampa(const Rope& testo) {
  for (const Rope::Piece& pezzo : testo.pieces()) stampa(*pezzo);
}

int chiudiUscita() {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return 0;
  const int perche = errno;
  if (perche == EPIPE) return 0;
  fmt::print(stderr, "impossibile scrivere il risultato: {}\n",
             std::generic_category().message(perche));
  return 1;
}

}  // namespace pellak::app
