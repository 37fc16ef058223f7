#include "shell/Sveglio.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pellak::shell {
namespace {

constexpr double kMinuto = 60;

}  // namespace

Sveglio::Sveglio(KeepAwake& sistema, MainLoop& loop, const Clock& clock, const TestiSistema& testi,
                 std::function<void()> cambiato)
    : sistema_(sistema),
      loop_(loop),
      clock_(clock),
      testi_(testi),
      cambiato_(std::move(cambiato)) {}

Sveglio::~Sveglio() {
  if (sveglioTimer_) loop_.cancel(*sveglioTimer_);
  if (sveglioID_) sistema_.release(*sveglioID_);
}

void Sveglio::avvia(std::optional<double> durata) {
  ferma();
  sveglioID_ = sistema_.acquire(testi_.motivoSveglio);
  if (!sveglioID_) return;
  if (durata) {
    sveglioScade_ = clock_.now() + *durata;
    sveglioTimer_ = loop_.after(*durata, [this] { ferma(); });
  }
  cambiato_();
}

void Sveglio::ferma() {
  if (!sveglioID_) return;
  sistema_.release(*sveglioID_);
  if (sveglioTimer_) loop_.cancel(*sveglioTimer_);
  sveglioID_.reset();
  sveglioTimer_.reset();
  sveglioScade_.reset();
  cambiato_();
}

TitoloSveglio Sveglio::titolo() const {
  if (!attivo()) return {testi_.tieniSveglio, false};
  if (!sveglioScade_) return {"Tieni sveglio: attivo", true};
  const double minuti = std::max(1.0, (*sveglioScade_ - clock_.now()) / kMinuto);
  return {"Tieni sveglio: attivo — " + std::to_string(std::lround(minuti)) + " min rimasti", true};
}

}  // namespace pellak::shell
