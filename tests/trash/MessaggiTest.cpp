#include <cerrno>
#include <gtest/gtest.h>
#include <system_error>

#include "PellakCore/base/Motivo.h"
#include "platform/SystemError.h"
#include "trash/Messaggi.h"

namespace pellak::trash {
namespace {

TEST(MessaggiTest, TheFirstRuleThatMatchesWins) {
  const std::string protetta =
      "macOS protegge questa cartella: concedi a Pellak Cleaner l'Accesso completo al disco "
      "(pannello Permessi), poi riprova";
  const std::string negata =
      "permesso negato da macOS: concedi l'Accesso completo al disco (pannello Permessi) oppure "
      "rimuovilo dal Finder";
  const auto dice = [](const std::string& percorso, ErrorKind kind, const std::string& testo = {}) {
    return trashMessage(percorso, {kind, 42, testo});
  };
  EXPECT_EQ(dice("/Users/x/Library/Containers/app/a", ErrorKind::denied, "altro"), protetta);
  EXPECT_EQ(dice("/Users/x/Library/Group Containers/a", ErrorKind::denied), protetta);
  EXPECT_EQ(dice("/x/Library/Application Support/com.apple.TCC", ErrorKind::denied), protetta);
  EXPECT_EQ(dice("/Users/x/Library/Application Support/altro", ErrorKind::denied), negata);
  EXPECT_EQ(dice("/Users/x/Library/Containers", ErrorKind::denied), negata);
  EXPECT_EQ(dice("/x/Library/Containers/a", ErrorKind::missing),
            "non esiste piu': era gia' stato rimosso");
  EXPECT_EQ(dice("/a", ErrorKind::exists),
            "nel Cestino c'e' gia' un elemento con questo nome: svuota il Cestino e riprova");
  EXPECT_EQ(dice("/a", ErrorKind::busy), "e' in uso da un programma aperto: chiudilo e riprova");
  EXPECT_EQ(dice("/a", ErrorKind::failed, "parole del sistema"), "parole del sistema");
  EXPECT_NE(dice("/a", ErrorKind::failed).find("42"), std::string::npos);
}

TEST(MessaggiTest, ErrorNumbersNeverSpeakTheSystemsLanguage) {
  EXPECT_EQ(motivo(systemError(EMFILE)),
            "errore di sistema (troppi file aperti: riprova fra poco)");
  EXPECT_EQ(motivo(systemError(EBADF)), "errore di sistema (codice " + std::to_string(EBADF) + ")");
  for (int numero = 1; numero < 140; ++numero) {
    const std::string suo = std::generic_category().message(numero);
    const Error errore = systemError(numero);
    EXPECT_EQ((motivo(errore) + trashMessage("/a", errore)).find(suo), std::string::npos) << suo;
  }
}

}  // namespace
}  // namespace pellak::trash
