#include "PellakCore/base/Motivo.h"

namespace pellak {
namespace {

const char* frase(ErrorKind tipo) {
  switch (tipo) {
    case ErrorKind::missing:
      return "non esiste";
    case ErrorKind::denied:
      return "permesso negato";
    case ErrorKind::busy:
      return "in uso da un altro programma";
    case ErrorKind::full:
      return "spazio esaurito";
    case ErrorKind::exists:
      return "il nome è già occupato";
    case ErrorKind::readOnly:
      return "volume in sola lettura";
    case ErrorKind::mounted:
      return "contiene un altro disco";
    case ErrorKind::cancelled:
      return "operazione annullata";
    case ErrorKind::invalid:
      return "contenuto non valido";
    case ErrorKind::failed:
      break;
  }
  return "errore di sistema";
}

}  // namespace

std::string motivo(const Error& errore) {
  const bool generico = errore.kind == ErrorKind::failed || errore.kind == ErrorKind::invalid;
  std::string testo = frase(errore.kind);
  const std::string codice =
      errore.code == 0 ? std::string() : "codice " + std::to_string(errore.code);
  const std::string& altro = errore.text.empty() ? codice : errore.text;
  if (generico && !altro.empty()) testo += " (" + altro + ")";
  return testo;
}

std::string motivoCompleto(const Error& errore) {
  std::string testo = motivo(errore);
  if (!errore.percorso.empty()) testo = errore.percorso + ": " + testo;
  if (errore.kind == ErrorKind::full) testo.append("; ").append(kComeFarePosto);
  return testo;
}

}  // namespace pellak
