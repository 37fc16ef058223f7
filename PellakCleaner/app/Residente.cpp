#include "app/Residente.h"

#include <cstdlib>
#include <utility>

namespace pellak::app {
namespace {

constexpr double kQuartoDora = 900;

/// Seconds between two checks; the variable is for automated checks.
double intervallo() {
  const char* indicato = std::getenv("PELLAK_CHECK_SECONDS");
  const double secondi = indicato == nullptr ? 0 : std::strtod(indicato, nullptr);
  return secondi > 0 ? secondi : kQuartoDora;
}

}  // namespace

Residente::Residente(std::unique_ptr<Native> native, Ambiente ambiente,
                     std::function<void(const std::string&)> avviso, std::function<void()> concluso)
    : applicazione_(std::move(native), std::move(ambiente), std::move(avviso),
                    [this, concluso = std::move(concluso)](const Snapshot& stato) {
                      if (concluso) concluso();
                      sorveglianza_->concluso(stato);
                    }) {
  notifiche_.emplace(applicazione_.comandi(), applicazione_.notifier(), applicazione_.famiglia());
  sorveglianza_.emplace(applicazione_.engine(), applicazione_.impostazioni(),
                        applicazione_.platform().files, applicazione_.platform().clock,
                        [this](const std::string& messaggio, const std::string& titolo) {
                          notifiche_->mostra(messaggio, titolo);
                        });
}

void Residente::sorveglia() { sorveglianza_->arma(intervallo()); }

}  // namespace pellak::app
