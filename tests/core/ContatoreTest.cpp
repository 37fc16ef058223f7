#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>
#include <vector>

#include "PellakCore/Contatore.h"

namespace pellak {
namespace {

TEST(RootKey, BucketsByHomeAndByDepth) {
  const std::string home = "/Users/anna";
  EXPECT_EQ(rootKey("/Users/anna", home), "~");
  EXPECT_EQ(rootKey("/Users/anna/Library/Mail/V10/x", home), "~/Library/Mail");
  EXPECT_EQ(rootKey("/Users/annalisa/Library/Mail", home), "/Users/annalisa/Library");
  EXPECT_EQ(rootKey("/private/var/db/x/y", home), "/private/var/db");
  EXPECT_EQ(rootKey("/Volumes", home), "/Volumes");
  EXPECT_EQ(rootKey("/", home), "/");
}

TEST(Contatore, CountsFromManyThreadsAndSamplesOnlyWhenAsked) {
  Contatore conCampioni("/h", true);
  Contatore senza("/h", false);
  std::vector<std::thread> fili;
  for (int filo = 0; filo < 4; ++filo) {
    fili.emplace_back([&] {
      for (int i = 0; i < 6'000; ++i) {
        conCampioni.add("/h/a/b/c");
        senza.add("/var/log/x/y");
      }
    });
  }
  for (std::thread& filo : fili) filo.join();
  senza.add(std::nullopt);
  EXPECT_EQ(conCampioni.n(), 24'000);
  EXPECT_EQ(conCampioni.percorsi().size(), 20'000U);
  EXPECT_EQ(senza.n(), 24'001);
  EXPECT_TRUE(senza.percorsi().empty());
  EXPECT_EQ(senza.perRadice().at("/var/log/x"), 24'000);
  senza.reset();
  EXPECT_EQ(senza.n(), 0);
  EXPECT_TRUE(senza.perRadice().empty());
}

TEST(Contatore, WorstRootsFirstAtMostTen) {
  Contatore contatore("/h", false);
  for (int radice = 0; radice < 12; ++radice) {
    for (int i = 0; i <= radice; ++i) contatore.add("/r" + std::to_string(radice));
  }
  const auto peggiori = radiciPeggiori(contatore);
  ASSERT_EQ(peggiori.size(), 10U);
  EXPECT_EQ(peggiori.front().cartella, "/r11");
  EXPECT_EQ(peggiori.front().quanti, 12);
  EXPECT_EQ(peggiori.back().quanti, 3);
}

TEST(WithCounter, NestsRestoresOnErrorAndIsNotInherited) {
  Denied::resetShared();
  Contatore esterno("/h", false);
  Contatore interno("/h", false);
  withCounter(esterno, [&] {
    registraDiniego("/a");
    EXPECT_THROW(withCounter(interno,
                             [] {
                               registraDiniego("/b");
                               throw std::runtime_error("fuori");
                             }),
                 std::runtime_error);
    registraDiniego("/c");
    std::thread([] { registraDiniego("/d"); }).join();
  });
  registraDiniego("/e");
  EXPECT_EQ(esterno.n(), 2);
  EXPECT_EQ(interno.n(), 1);
  EXPECT_EQ(Denied::sharedCount(), 2);
}

}  // namespace
}  // namespace pellak
