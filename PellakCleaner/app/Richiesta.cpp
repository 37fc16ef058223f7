#include "app/Richiesta.h"

#include <limits>
#include <stdexcept>
#include <utility>

#include "app/Applicazione.h"

namespace pellak::app {

JsonDocument richiedi(Applicazione& applicazione, std::string_view rotta,
                      const std::string& corpo) {
  constexpr std::size_t kNoLimit = std::numeric_limits<std::int64_t>::max();
  const auto richiesta = JsonDocument::parse(corpo);
  const Json radice = richiesta ? richiesta->radice() : Json();
  auto risposta =
      JsonDocument::parse(applicazione.router().handle(rotta, radice).testo.str(), kNoLimit);
  if (!risposta) throw std::runtime_error(risposta.error().text);
  return std::move(*risposta);
}

std::string perche(Json fallito) {
  std::string causa = fallito.testo("causa");
  return causa.empty() ? fallito.testo("err") : causa;
}

}  // namespace pellak::app
