#include "app/Interruzione.h"

#include <unistd.h>

namespace pellak::app {
namespace {

constexpr int kInterruptedStatus = 130;

enum class Stato { nessuno, attende, chiesta };
/// Whether somebody wants to know of a signal, and whether one came.
std::atomic<Stato> stato{Stato::nessuno};

/// What the signal would have done had nobody listened: nothing, or the end of the process.
void lasciaAgire(int segnale, const sigset_t& attesi) {
  ::pthread_sigmask(SIG_UNBLOCK, &attesi, nullptr);
  std::raise(segnale);
  ::pthread_sigmask(SIG_BLOCK, &attesi, nullptr);
}

void accogli(int segnale, const sigset_t& attesi) {
  Stato trovato = Stato::attende;
  if (stato.compare_exchange_strong(trovato, Stato::chiesta)) return;
  if (trovato == Stato::chiesta) ::_exit(kInterruptedStatus);
  lasciaAgire(segnale, attesi);
}

}  // namespace

AscoltoSegnali::AscoltoSegnali() {
  sigemptyset(&attesi_);
  sigaddset(&attesi_, SIGINT);
  sigaddset(&attesi_, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &attesi_, &prima_);
  thread_ = std::thread([this] { ascolta(); });
}

AscoltoSegnali::~AscoltoSegnali() {
  finito_ = true;
  ::pthread_kill(thread_.native_handle(), SIGINT);
  thread_.join();
  ::pthread_sigmask(SIG_SETMASK, &prima_, nullptr);
}

void AscoltoSegnali::ascolta() {
  for (;;) {
    int segnale = 0;
    if (::sigwait(&attesi_, &segnale) != 0) continue;
    if (finito_) return;
    accogli(segnale, attesi_);
  }
}

Interruzione::Interruzione() { stato = Stato::attende; }

Interruzione::~Interruzione() { stato = Stato::nessuno; }

bool Interruzione::chiesta() const { return stato == Stato::chiesta; }

}  // namespace pellak::app
