#include "shell/PaginaWeb.h"

#include <utility>

namespace pellak::shell {
namespace {

void appendEscaped(std::string& uscita, std::string_view testo) {
  constexpr std::string_view kCifre = "0123456789abcdef";
  for (const char carattere : testo) {
    const auto byte = static_cast<unsigned char>(carattere);
    if (carattere == '"' || carattere == '\\') {
      uscita += '\\';
      uscita += carattere;
    } else if (byte < 0x20) {
      uscita += "\\u00";
      uscita += kCifre[byte >> 4U];
      uscita += kCifre[byte & 15U];
    } else {
      uscita += carattere;
    }
  }
}

}  // namespace

std::string letterale(std::string_view testo) {
  std::string uscita = "\"";
  uscita.reserve(testo.size() + testo.size() / 8 + 2);
  appendEscaped(uscita, testo);
  uscita += '"';
  return uscita;
}

void PaginaWeb::esegui(std::string script) {
  host_.post([&host = host_, script = std::move(script)] { host.evaluate(script); });
}

void PaginaWeb::apiDone(std::int64_t id, int stato, const Rope& risposta) {
  esegui("__apiDone(" + std::to_string(id) + ", " + std::to_string(stato) + ", " +
         letterale(risposta.str()) + ")");
}

void PaginaWeb::chiama(std::string_view funzione, std::span<const std::string> argomenti) {
  std::string script(funzione);
  script += '(';
  for (std::size_t i = 0; i < argomenti.size(); ++i) {
    if (i > 0) script += ", ";
    script += argomenti[i];
  }
  script += ')';
  esegui(std::move(script));
}

}  // namespace pellak::shell
