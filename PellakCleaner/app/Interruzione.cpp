#include "app/Interruzione.h"

#include <csignal>
#include <unistd.h>

namespace pellak::app {
namespace {

constexpr int kInterruptedStatus = 130;
volatile std::sig_atomic_t richieste = 0;

extern "C" void annotaSegnale(int /*segnale*/) {
  if (richieste != 0) ::_exit(kInterruptedStatus);
  richieste = 1;
}

}  // namespace

Interruzione::Interruzione() {
  richieste = 0;
  std::signal(SIGINT, annotaSegnale);
  std::signal(SIGTERM, annotaSegnale);
}

Interruzione::~Interruzione() {
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

bool Interruzione::chiesta() const { return richieste != 0; }

}  // namespace pellak::app
