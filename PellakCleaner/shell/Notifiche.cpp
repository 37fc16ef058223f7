#include "shell/Notifiche.h"

#include "commands/Apici.h"

namespace pellak::shell {
namespace {

constexpr const char* kOsascript = "/usr/bin/osascript";

}  // namespace

std::string scriptNotifica(std::string_view messaggio, std::string_view titolo) {
  return "display notification " + traVirgolette(messaggio) + " with title " +
         traVirgolette(titolo);
}

std::string Notifiche::mostra(const std::string& messaggio, const std::string& titolo) {
  if (famiglia_ == FamigliaStrumenti::linux) {
    return notifier_.notify(titolo, messaggio) ? std::string() : "notifica non riuscita";
  }
  const EsitoComando esito = comandi_.esegui(kOsascript, {"-e", scriptNotifica(messaggio, titolo)});
  return esito.stato == -1 ? "osascript non eseguibile" : std::string();
}

}  // namespace pellak::shell
