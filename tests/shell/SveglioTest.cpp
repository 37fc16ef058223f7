#include <gtest/gtest.h>

#include "fakes/FakeDesktop.h"
#include "shell/Sveglio.h"

namespace pellak::shell {
namespace {

class SveglioTest : public testing::Test {
 protected:
  std::string titolo() const { return sveglio.titolo().testo; }

  fakes::FakeClock clock;
  fakes::FakeDesktop loop{clock};
  fakes::FakeKeepAwake sistema;
  int cambi = 0;
  Sveglio sveglio{sistema, loop, clock, testiSistema(FamigliaStrumenti::macos),
                  [this] { ++cambi; }};
};

TEST_F(SveglioTest, CountsDownAndEndsByItself) {
  EXPECT_EQ(sveglio.titolo(), (TitoloSveglio{"Tieni sveglio il Mac", false}));
  sveglio.avvia(Sveglio::kMezzOra);
  EXPECT_EQ(sistema.reason, "Pellak Cleaner: tieni sveglio il Mac");
  EXPECT_EQ(sveglio.titolo(), (TitoloSveglio{"Tieni sveglio: attivo — 30 min rimasti", true}));
  loop.pass(89);
  EXPECT_EQ(titolo(), "Tieni sveglio: attivo — 29 min rimasti");
  loop.pass(1800 - 89 - 5);
  EXPECT_EQ(titolo(), "Tieni sveglio: attivo — 1 min rimasti");
  EXPECT_EQ(sistema.held.size(), 1U);
  loop.pass(5);
  EXPECT_FALSE(sveglio.attivo());
  EXPECT_TRUE(sistema.held.empty());
  EXPECT_EQ(cambi, 2);
}

TEST_F(SveglioTest, AnotherChoiceReplacesTheRequestAndTheTimer) {
  sveglio.avvia(Sveglio::kMezzOra);
  sveglio.avvia(Sveglio::kDueOre);
  EXPECT_EQ(sistema.held.size(), 1U);
  loop.pass(1800);
  EXPECT_EQ(titolo(), "Tieni sveglio: attivo — 90 min rimasti");
  sveglio.avvia({});
  EXPECT_EQ(sveglio.titolo(), (TitoloSveglio{"Tieni sveglio: attivo", true}));
  loop.pass(100'000);
  EXPECT_TRUE(sveglio.attivo());
  sveglio.ferma();
  const int prima = cambi;
  sveglio.ferma();
  EXPECT_EQ(cambi, prima) << "nothing to end";
  EXPECT_TRUE(sistema.held.empty());
  EXPECT_TRUE(loop.timers.empty());
}

TEST_F(SveglioTest, StaysOffWhenTheSystemRefuses) {
  sistema.refuses = true;
  sveglio.avvia(Sveglio::kMezzOra);
  EXPECT_EQ(sveglio.titolo(), (TitoloSveglio{"Tieni sveglio il Mac", false}));
  EXPECT_TRUE(loop.timers.empty());
}

TEST(SveglioEnd, GivesTheRequestBack) {
  fakes::FakeClock clock;
  fakes::FakeDesktop loop(clock);
  fakes::FakeKeepAwake sistema;
  {
    Sveglio sveglio(sistema, loop, clock, testiSistema(FamigliaStrumenti::linux), [] {});
    sveglio.avvia(Sveglio::kMezzOra);
  }
  EXPECT_TRUE(sistema.held.empty() && loop.timers.empty());
}

}  // namespace
}  // namespace pellak::shell
