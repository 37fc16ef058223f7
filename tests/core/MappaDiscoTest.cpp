#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "PellakCore/MappaDisco.h"
#include "fakes/MemoryLister.h"

namespace pellak {
namespace {

using namespace std::chrono_literals;
using MappaPtr = std::shared_ptr<const Mappa>;

/// Counts which paths a measure begins at, by the records it asks for, and can hold it up there.
class ListerContato {
 public:
  ListerContato() {
    albero.perRecord = [this](const std::string& percorso) -> Result<void> {
      {
        const std::lock_guard<std::mutex> hold(lock_);
        ++misurati_[percorso];
      }
      if (quando) quando(percorso);
      return {};
    };
  }
  int misurato(const std::string& percorso) {
    const std::lock_guard<std::mutex> hold(lock_);
    return misurati_[percorso];
  }

  fakes::MemoryLister albero;
  std::function<void(const std::string&)> quando;  ///< set while nothing runs

 private:
  std::mutex lock_;
  std::map<std::string, int> misurati_;
};

class MappaDiscoTest : public testing::Test {
 protected:
  MappaPtr chiedi(const std::string& percorso, bool forza = false, Livelli livelli = Livelli::uno) {
    const auto risposta = mappa.richiedi(percorso, forza, livelli);
    if (!risposta) throw std::runtime_error("not listed: " + percorso);
    return *risposta;
  }

  MappaPtr finita(const std::string& percorso, bool forza = false) {
    MappaPtr trovata = chiedi(percorso, forza);
    while (trovata->misurando()) {
      if (!mappa.attendi(percorso, 10s)) throw std::runtime_error("still measuring " + percorso);
      trovata = chiedi(percorso);
    }
    return trovata;
  }

  static std::string testo(const Mappa& trovata) {
    JsonWriter uscita;
    scriviMappa(uscita, trovata);
    return uscita.take();
  }

  static std::int64_t quanto(const Mappa& trovata, const std::string& nome) {
    for (const VoceMappa& voce : trovata.voci) {
      if (voce.nome == nome) return voce.size;
    }
    throw std::runtime_error("no entry " + nome);
  }

  ListerContato lister;
  MappaDisco mappa{lister.albero, sfondo};
  BackgroundPool sfondo{2};  // stopped before the map goes
};

TEST_F(MappaDiscoTest, AnswersAtOnceWithWhatIsKnownAndFillsInTheRest) {
  lister.albero.file("/v/piccolo", 1);
  lister.albero.file("/v/grande", 100'000);
  lister.albero.link("/v/link");
  lister.albero.file("/v/foto/a/b/c", 50'000);
  lister.albero.folder("/v/vuota");
  EXPECT_EQ(testo(*chiedi("/v")),
            R"({"path":"/v","tot":110592,"tot_h":"108.0 KiB","items":[)"
            R"({"nome":"grande","dir":false,"size":102400,"size_h":"100.0 KiB"},)"
            R"({"nome":"link","dir":false,"size":4096,"size_h":"4.0 KiB"},)"
            R"({"nome":"piccolo","dir":false,"size":4096,"size_h":"4.0 KiB"},)"
            R"({"nome":"foto","dir":true,"size":-1,"size_h":"…"},)"
            R"({"nome":"vuota","dir":true,"size":-1,"size_h":"…"}],"misurando":true})");
  EXPECT_EQ(testo(*finita("/v")),
            R"({"path":"/v","tot":163840,"tot_h":"160.0 KiB","items":[)"
            R"({"nome":"grande","dir":false,"size":102400,"size_h":"100.0 KiB"},)"
            R"({"nome":"foto","dir":true,"size":53248,"size_h":"52.0 KiB"},)"
            R"({"nome":"link","dir":false,"size":4096,"size_h":"4.0 KiB"},)"
            R"({"nome":"piccolo","dir":false,"size":4096,"size_h":"4.0 KiB"},)"
            R"({"nome":"vuota","dir":true,"size":0,"size_h":"0 B"}],"misurando":false})");
}

TEST_F(MappaDiscoTest, KeepsTheTwoThousandLargestButCountsAll) {
  for (int i = 0; i < 10'000; ++i) {
    const std::string nome = "/v/f" + std::to_string(10'000 + i);
    lister.albero.file(nome, i % 5 == 0 ? 1 : 8192);
  }
  lister.albero.file("/v/z/dentro", 1'000'000);
  const MappaPtr trovata = finita("/v");
  ASSERT_EQ(trovata->voci.size(), 2000U);
  EXPECT_EQ(trovata->figli, 10'001U);
  EXPECT_EQ(trovata->tot, 2000 * 4096 + 8000 * 8192 + 1'003'520);
  EXPECT_EQ(trovata->voci.front().nome, "z");
  EXPECT_EQ(trovata->voci[1].nome, "f10001");
  EXPECT_EQ(trovata->voci[2].nome, "f10002") << "equal sizes in listing order";
  EXPECT_EQ(trovata->voci.back().nome, "f12498") << "the smaller ones fall off the end";
  EXPECT_EQ(trovata->voci.back().size, 8192);
}

TEST_F(MappaDiscoTest, AFinishedMapStaysTheSameUntilForcedOrForgotten) {
  lister.albero.file("/v/a/uno", 4096);
  lister.albero.file("/v/b/due", 4096);
  const MappaPtr prima = finita("/v");
  lister.albero.file("/v/a/tre", 8192);
  EXPECT_EQ(chiedi("/v"), prima);
  EXPECT_EQ(lister.misurato("/v/a"), 1);
  EXPECT_TRUE(chiedi("/v", true)->misurando());
  const MappaPtr forzata = finita("/v");
  EXPECT_EQ(quanto(*forzata, "a"), 12'288);
  lister.albero.file("/v/b/quattro", 8192);
  EXPECT_EQ(chiedi("/v"), forzata);
  mappa.svuota();
  EXPECT_EQ(finita("/v")->tot, 24'576);
  EXPECT_EQ(lister.misurato("/v/b"), 3);
}

TEST_F(MappaDiscoTest, AMapAskedForThroughALinkIsThatOfTheRealFolder) {
  lister.albero.file("/ssd/casa/d/a", 4096);
  lister.albero.link("/h", "/ssd");
  const MappaPtr vera = finita("/ssd/casa");
  EXPECT_EQ(chiedi("/h/casa"), vera);
  EXPECT_EQ(vera->percorso, "/ssd/casa");
  EXPECT_NE(finita("/h/casa", true), vera);
}

TEST_F(MappaDiscoTest, FoldersWithoutFoldersNeedNoJobAndOthersAreErrors) {
  lister.albero.file("/v/solo", 4096);
  lister.albero.folder("/chiusa").refused = true;
  EXPECT_FALSE(chiedi("/v")->misurando());
  EXPECT_TRUE(mappa.attendi("/v", 0ms));
  lister.albero.file("/v/altro", 4096);
  EXPECT_EQ(chiedi("/v")->tot, 8192);
  EXPECT_EQ(mappa.richiedi("/chiusa").error().kind, ErrorKind::denied);
  EXPECT_EQ(mappa.richiedi("/manca").error().kind, ErrorKind::missing);
  EXPECT_EQ(mappa.richiedi("/v/solo").error().kind, ErrorKind::missing);
}

TEST_F(MappaDiscoTest, OneJobAFolderPublishesEachChildAsItIsKnown) {
  for (const char* nome : {"a", "b", "c"}) lister.albero.file("/v/" + std::string(nome) + "/f", 9);
  std::promise<void> avanti;
  const std::shared_future<void> via = avanti.get_future().share();
  lister.quando = [via](const std::string& percorso) {
    if (percorso == "/v/b") via.wait();
  };
  ASSERT_EQ(chiedi("/v")->ignoti, 3U);
  while (chiedi("/v")->ignoti > 1) std::this_thread::sleep_for(1ms);
  const MappaPtr parziale = chiedi("/v");
  EXPECT_EQ(quanto(*parziale, "a"), 4096);
  EXPECT_EQ(quanto(*parziale, "b"), -1);
  EXPECT_EQ(parziale->tot, 8192);
  EXPECT_FALSE(mappa.attendi("/v", 1ms));
  avanti.set_value();
  EXPECT_EQ(finita("/v")->tot, 12'288);
  for (const char* nome : {"/v/a", "/v/b", "/v/c"}) EXPECT_EQ(lister.misurato(nome), 1) << nome;
}

/// What a job found out before the caches were emptied must not pass for fresh.
TEST_F(MappaDiscoTest, WhatAJobFindsAfterItsSizesWereForgottenIsNotKept) {
  for (const bool forza : {false, true}) {
    const std::string cartella = forza ? "/f" : "/v";
    lister.albero.file(cartella + "/a/x", 4096);
    lister.albero.file(cartella + "/b/x", 4096);
    std::promise<void> dentro;
    std::promise<void> avanti;
    const std::shared_future<void> via = avanti.get_future().share();
    std::atomic<bool> prima{true};
    lister.quando = [&, via](const std::string& percorso) {
      if (percorso != cartella + "/b" || !prima.exchange(false)) return;
      dentro.set_value();
      via.wait();
    };
    chiedi(cartella);
    dentro.get_future().wait();
    while (chiedi(cartella)->ignoti > 1) std::this_thread::sleep_for(1ms);
    if (!forza) mappa.svuota();
    EXPECT_EQ(chiedi(cartella, forza)->ignoti, 2U) << "what was known is gone";
    avanti.set_value();
    ASSERT_TRUE(mappa.attendi(cartella, 10s));
    EXPECT_TRUE(chiedi(cartella)->misurando());
    EXPECT_EQ(finita(cartella)->tot, 8192);
    EXPECT_EQ(lister.misurato(cartella + "/a"), 2);
    EXPECT_EQ(lister.misurato(cartella + "/b"), 2);
    lister.quando = nullptr;
  }
}

TEST_F(MappaDiscoTest, RefusedEntriesCountOnceForEachMeasure) {
  lister.albero.file("/v/a/letto", 4096);
  lister.albero.folder("/v/a/x/chiusa").refused = true;
  lister.albero.folder("/v/a/y/chiusa").refused = true;
  lister.albero.file("/v/a/y/segreto", 4096).recordRefused = true;
  lister.albero.folder("/v/chiusa").refused = true;
  lister.albero.file("/v/segreto", 4096).recordRefused = true;
  const MappaPtr trovata = finita("/v");
  EXPECT_EQ(trovata->tot, 4096);
  EXPECT_EQ(trovata->nonLeggibili, 5);
  EXPECT_NE(testo(*trovata).find(R"(],"non_leggibili":5,"misurando":false})"), std::string::npos);
  EXPECT_EQ(chiedi("/v/a/y")->nonLeggibili, 2) << "known from the measure above";
  EXPECT_EQ(finita("/v", true)->nonLeggibili, 5);
  mappa.svuota();
  EXPECT_EQ(finita("/v")->nonLeggibili, 5);
}

TEST_F(MappaDiscoTest, LevelsBelowAMeasuredFolderNeedNoWalk) {
  for (int i = 0; i < 300; ++i) {
    lister.albero.file("/v/a" + std::to_string(i % 3) + "/b" + std::to_string(i) + "/c/d/f", 4096);
  }
  lister.albero.folder("/v/a0/vuota/vuota");
  finita("/v");
  const MappaPtr sotto = chiedi("/v/a0");
  EXPECT_FALSE(sotto->misurando());
  EXPECT_EQ(sotto->tot, 100 * 4096);
  EXPECT_EQ(chiedi("/v/a0"), sotto);
  EXPECT_EQ(chiedi("/v/a1/b4/c")->tot, 4096);
  EXPECT_FALSE(chiedi("/v/a0/vuota")->misurando());
  EXPECT_EQ(lister.misurato("/v/a0/b0"), 0);

  // A folder that came since is measured, alone.
  lister.albero.file("/v/a2/nuova/f", 8192);
  EXPECT_EQ(chiedi("/v/a2")->ignoti, 1U);
  EXPECT_EQ(finita("/v/a2")->tot, 100 * 4096 + 8192);
  EXPECT_EQ(lister.misurato("/v/a2/b2"), 0);

  // Forcing a level measures what lies below it anew and leaves the rest known.
  lister.albero.file("/v/a1/b1/c/e/f", 4096);
  EXPECT_EQ(finita("/v/a1", true)->tot, 101 * 4096);
  EXPECT_EQ(chiedi("/v/a1/b1/c")->tot, 8192);
  EXPECT_FALSE(chiedi("/v/a0/b3")->misurando());
  mappa.svuota();
  EXPECT_TRUE(chiedi("/v/a0/b3")->misurando());
}

TEST_F(MappaDiscoTest, TheSecondLevelShowsTheLargestOfEachLargeFolder) {
  for (int i = 1; i <= 20; ++i) lister.albero.file("/v/a/f" + std::to_string(i), i * 4096);
  lister.albero.file("/v/a/g/x/y", 4096 * 1000);
  lister.albero.file("/v/briciola/f", 4096);
  const auto due = [&](const std::string& percorso) {
    for (;;) {
      const auto risposta = mappa.richiedi(percorso, false, Livelli::due);
      if (!risposta || (*risposta)->conFigli) return *risposta;
      if (!mappa.attendi(percorso, 10s)) throw std::runtime_error("still measuring");
    }
  };
  finita("/v");  // one level first: the second joins without another measure
  const MappaPtr intera = due("/v");
  const VoceMappa& a = intera->voci.at(0);
  ASSERT_EQ(a.figli.size(), MappaDisco::kMaxFigli);
  EXPECT_EQ(a.quanti, 21U);
  EXPECT_EQ(a.figli[0].nome + " " + a.figli[11].nome, "g f10");
  EXPECT_EQ(a.figli[0].size, 4096 * 1000);
  EXPECT_TRUE(intera->voci.at(1).figli.empty()) << "a speck";
  EXPECT_EQ(due("/v/a")->voci.at(0).figli.at(0).nome, "x") << "known from the measure above";
  EXPECT_EQ(std::pair(lister.misurato("/v/a"), lister.misurato("/v/a/g")), std::pair(1, 0));
  EXPECT_EQ(chiedi("/v"), intera);
  EXPECT_EQ(testo(*intera).find("figli"), std::string::npos) << "only where asked for";
  lister.albero.file("/v/a/h/z", 4096 * 5000);
  mappa.svuota();
  EXPECT_EQ(due("/v")->voci.at(0).figli.at(0).nome, "h");
}

TEST_F(MappaDiscoTest, RequestsJobsAndForgettingMayCrossAtWill) {
  for (int i = 0; i < 64; ++i) {
    lister.albero.file("/v/a" + std::to_string(i % 8) + "/b" + std::to_string(i) + "/f", 4096);
  }
  std::vector<std::thread> fili;
  for (int n = 0; n < 4; ++n) {
    fili.emplace_back([this, n] {
      for (int i = 0; i < 150; ++i) {
        const std::string cartella = i % 3 == 0 ? "/v" : "/v/a" + std::to_string(i % 8);
        const MappaPtr trovata =
            chiedi(cartella, n == 1 && i % 7 == 0, n == 2 ? Livelli::due : Livelli::uno);
        EXPECT_LE(trovata->tot, 64 * 4096);
        if (n == 0 && i % 5 == 0) mappa.svuota();
      }
    });
  }
  for (std::thread& filo : fili) filo.join();
  EXPECT_EQ(finita("/v")->tot, 64 * 4096);
  EXPECT_EQ(finita("/v/a3")->tot, 8 * 4096);
}

TEST(MappaDiscoFineTest, TheEndDoesNotWaitForAMeasure) {
  ListerContato lister;
  for (int i = 0; i < 4000; ++i) {
    lister.albero.file("/v/a/" + std::to_string(i % 50) + "/" + std::to_string(i) + "/f", 1);
  }
  lister.albero.readMillis = 20;  // ten seconds in all
  std::chrono::steady_clock::time_point fine;
  {
    BackgroundPool sfondo(1);
    MappaDisco mappa(lister.albero, sfondo);
    ASSERT_TRUE(mappa.richiedi("/v").ok());
    while (lister.misurato("/v/a") == 0) std::this_thread::sleep_for(1ms);
    fine = std::chrono::steady_clock::now();
    sfondo.stop();
    const auto dopo = mappa.richiedi("/v");
    EXPECT_TRUE(dopo.ok() && (*dopo)->misurando()) << "a stopped pool is no error";
  }
  EXPECT_LT(std::chrono::steady_clock::now() - fine, 5s);
}

}  // namespace
}  // namespace pellak
