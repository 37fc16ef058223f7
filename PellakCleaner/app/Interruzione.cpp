#include "app/Interruzione.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace pellak::app {
namespace {

constexpr int kInterruptedStatus = 130;
/// Written by whatever thread the signal reaches; without locks, so that a handler may.
std::atomic<int> richieste{0};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void annotaSegnale(int /*segnale*/) {
  if (richieste.exchange(1) != 0) ::_exit(kInterruptedStatus);
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
