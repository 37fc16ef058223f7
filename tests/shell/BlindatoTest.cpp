#include <gtest/gtest.h>

#include "shell/Blindato.h"

namespace pellak::shell::blindato {
namespace {

constexpr Chiave kChiave = {1, 2, 3, 0xFF, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0x80};
constexpr Chiave kNessuna = {};

TEST(Blindato, GivesBackWhatWasSealed) {
  for (const std::size_t byte : {1U, 2U, 3U, 17U, 100'000U}) {
    std::string testo;
    for (std::size_t i = 0; i < byte; ++i) testo += static_cast<char>(i * i % 251);
    const std::string sigillato = sigilla(testo, kChiave);
    EXPECT_EQ(apri(sigillato, kChiave), testo);
    EXPECT_NE(apri(sigillato, kNessuna), testo);
  }
  EXPECT_EQ(pagina(sigilla("è una pagina", kChiave), kChiave), "è una pagina");
  EXPECT_EQ(pagina(sigilla("\xff", kChiave), kChiave), std::nullopt);
}

/// "ciao" as another program deflates it, so that both directions can't be wrong together.
TEST(Blindato, OpensAStreamOfAnotherProgram) {
  EXPECT_EQ(apri("BAAAAEvOTMwHAA==", kNessuna), "ciao");
}

TEST(Blindato, RejectsEveryOtherForm) {
  for (const char* rotto : {
           "", "A", "AAAA", "BAAAAA==",          // too short
           "BAAAAEvOTMwHA!==", "BAAAAEvOTMwHA",  // not base64
           "AAAAAEvOTMwHAA==",                   // length 0
           "BAAABEvOTMwHAA==",                   // 64 MiB and more
           "AwAAAEvOTMwHAA==",                   // one byte more than stated
           "BQAAAEvOTMwHAA==",                   // one byte less
           "BAAAAEvOTM0=",                       // cut short
           "BAAAA/////8=",                       // no stream
       }) {
    EXPECT_EQ(apri(rotto, kNessuna), std::nullopt) << rotto;
  }
}

}  // namespace
}  // namespace pellak::shell::blindato
