#include "PellakCore/Contatore.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

constexpr std::size_t kMaxSamples = 20'000;

thread_local Contatore* contatoreCorrente = nullptr;

std::string homeFolder() {
  const char* home = std::getenv("HOME");
  return home == nullptr ? std::string() : std::string(home);
}

void increase(std::int64_t& numero) {
  if (__builtin_add_overflow(numero, 1, &numero)) std::abort();
}

}  // namespace

std::string rootKey(std::string_view percorso, std::string_view home) {
  std::string intero(percorso);
  if (!home.empty() && home != "/" && dentroCartella(percorso, home)) {
    intero = "~" + std::string(percorso.substr(home.size()));
  }
  const std::size_t pezzi = intero[0] == '~' ? 3 : 4;
  std::size_t fine = 0;
  for (std::size_t pezzo = 1; pezzo < pezzi; ++pezzo) {
    const std::size_t barra = intero.find('/', fine);
    if (barra == std::string::npos) return intero;
    fine = barra + 1;
  }
  return intero.substr(0, intero.find('/', fine));
}

bool Contatore::campioniRichiesti() {
  static const bool richiesti = [] {
    const char* valore = std::getenv("PELLAK_DENIED");
    return valore != nullptr && std::strcmp(valore, "1") == 0;
  }();
  return richiesti;
}

Contatore::Contatore(std::string home, bool campioni)
    : home_(std::move(home)), campioni_(campioni) {}

void Contatore::add(std::optional<std::string_view> percorso) {
  const MutexLock hold(lock_);
  increase(n_);
  if (!percorso) return;
  increase(perRadice_[rootKey(*percorso, home_)]);
  if (campioni_ && percorsi_.size() < kMaxSamples) percorsi_.emplace_back(*percorso);
}

void Contatore::reset() {
  const MutexLock hold(lock_);
  n_ = 0;
  perRadice_.clear();
  percorsi_.clear();
}

std::int64_t Contatore::n() const {
  const MutexLock hold(lock_);
  return n_;
}

std::map<std::string, std::int64_t> Contatore::perRadice() const {
  const MutexLock hold(lock_);
  return perRadice_;
}

std::vector<std::string> Contatore::percorsi() const {
  const MutexLock hold(lock_);
  return percorsi_;
}

std::vector<RadiceNegata> radiciPeggiori(const Contatore& contatore, std::size_t massimo) {
  std::vector<RadiceNegata> radici;
  for (auto& [cartella, quanti] : contatore.perRadice()) radici.push_back({cartella, quanti});
  std::stable_sort(radici.begin(), radici.end(), [](const RadiceNegata& a, const RadiceNegata& b) {
    return a.quanti > b.quanti;
  });
  if (radici.size() > massimo) radici.resize(massimo);
  return radici;
}

Contatore& Denied::sezione() {
  // Never destroyed: threads may still count while the process ends.
  static Contatore* const condiviso = std::make_unique<Contatore>(homeFolder()).release();
  return *condiviso;
}

void registraDiniego(std::optional<std::string_view> percorso) {
  Contatore& contatore = contatoreCorrente != nullptr ? *contatoreCorrente : Denied::sezione();
  contatore.add(percorso);
}

void withCounter(Contatore& contatore, const std::function<void()>& body) {
  struct Ripristino {
    Contatore* prima = contatoreCorrente;
    ~Ripristino() { contatoreCorrente = prima; }
  } const ripristino;
  contatoreCorrente = &contatore;
  body();
}

}  // namespace pellak
