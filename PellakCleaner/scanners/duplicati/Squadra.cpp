#include "scanners/duplicati/Squadra.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

#include "PellakCore/base/ScanCancelled.h"
#include "PellakCore/base/ThreadSetting.h"

namespace pellak::scanners {

void Squadra::esegui(const std::function<void()>& lavoro) {
  const std::size_t quanti = std::min(parti_, thread_);
  std::vector<std::thread> altri;
  altri.reserve(quanti);
  try {
    while (altri.size() + 1 < quanti) {
      altri.emplace_back([&, setting = threadSetting()] {
        applyToThread(setting);
        protetto(lavoro);
      });
    }
  } catch (const std::system_error&) {
    // With fewer threads it only takes longer.
  }
  protetto(lavoro);
  for (std::thread& altro : altri) altro.join();
  if (errore_) std::rethrow_exception(errore_);
}

void Squadra::protetto(const std::function<void()>& lavoro) {
  try {
    lavoro();
  } catch (...) {
    const std::lock_guard hold(lock_);
    if (!finita_.exchange(true) || !errore_) errore_ = std::current_exception();
  }
}

std::optional<std::size_t> Squadra::prossima() {
  controlla();
  const std::size_t parte = prese_++;
  if (parte >= parti_) return std::nullopt;
  return parte;
}

std::size_t Squadra::rimaste() const {
  const std::size_t prese = prese_;
  return prese < parti_ ? parti_ - prese : 0;
}

void Squadra::controlla() const {
  if (finita_ || (stop_ && stop_())) throw ScanCancelled();
}

}  // namespace pellak::scanners
