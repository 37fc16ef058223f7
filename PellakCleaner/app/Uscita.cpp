#include "app/Uscita.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fmt/format.h>

#include "PellakCore/base/Motivo.h"
#include "platform/SystemError.h"

namespace pellak::app {
namespace {

/// The first failure of writing; later ones follow from it.
std::atomic<int> primoErrore{0};

void annota(int numero) {
  int nessuno = 0;
  primoErrore.compare_exchange_strong(nessuno, numero == 0 ? EIO : numero);
}

}  // namespace

void stampa(std::string_view testo) {
  errno = 0;
  if (std::fwrite(testo.data(), 1, testo.size(), stdout) < testo.size()) annota(errno);
}

void stampa(const Rope& testo) {
  for (const Rope::Piece& pezzo : testo.pieces()) stampa(*pezzo);
}

void consegna() {
  errno = 0;
  if (std::fflush(stdout) != 0) annota(errno);
}

bool uscitaPersa() { return primoErrore != 0; }

int chiudiUscita() {
  consegna();
  const int perche = primoErrore;
  if (perche == 0 || perche == EPIPE) return 0;
  fmt::print(stderr, "impossibile scrivere il risultato: {}\n", motivo(systemError(perche)));
  return 1;
}

}  // namespace pellak::app
