#include <gtest/gtest.h>

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

}  // namespace
}  // namespace pellak::trash
