#include "app/PercorsoRichiesto.h"

#include <filesystem>
#include <system_error>

#include "PellakCore/base/BytePath.h"

namespace pellak::app {

std::string percorsoRichiesto(const std::string& argomento, const std::string& home) {
  if (argomento.empty()) return home;
  if (argomento.starts_with('/') || argomento == "~" || argomento.starts_with("~/")) {
    return standardizza(argomento, home);
  }
  std::error_code errore;
  const std::string corrente = std::filesystem::current_path(errore).string();
  return errore ? std::string() : standardizza(corrente + "/" + argomento, home);
}

}  // namespace pellak::app
