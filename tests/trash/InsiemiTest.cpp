#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

#include "fakes/CartellaTemporanea.h"
#include "platform/Native.h"
#include "trash/Cestino.h"
#include "trash/Insiemi.h"

namespace pellak::trash {
namespace {

namespace fs = std::filesystem;

/// What goes wrong at the n-th rename, counted down to 0.
struct Fault {
  int in = -1;
  bool dies = false;  ///< the process, instead of the one call

  Result<void> strike() {
    if (in < 0 || in-- > 0) return {};
    if (dies) throw std::runtime_error("died");
    return Error{ErrorKind::denied, 1, "injected"};
  }
};

class FaultyBatch : public TrashBatch {
 public:
  FaultyBatch(std::unique_ptr<TrashBatch> real, Fault& fault)
      : real_(std::move(real)), fault_(fault) {}
  Result<TrashPlan> plan(std::string_view percorso) override { return real_->plan(percorso); }
  void announce(std::span<const TrashPlan* const> piani) override { real_->announce(piani); }
  Result<std::string> move(const TrashPlan& piano) override {
    if (auto struck = fault_.strike(); !struck) return struck.error();
    return real_->move(piano);
  }
  std::string locate(const TrashPlan& piano) override { return real_->locate(piano); }
  Result<void> putBack(std::string_view da, std::string_view a) override {
    if (auto struck = fault_.strike(); !struck) return struck;
    return real_->putBack(da, a);
  }
  Result<void> undoPutBack(std::string_view da, std::string_view a) override {
    return real_->undoPutBack(da, a);
  }
  void abandon(const TrashPlan& piano) override { real_->abandon(piano); }
  Result<void> sync() override { return real_->sync(); }

 private:
  const std::unique_ptr<TrashBatch> real_;
  Fault& fault_;
};

class FaultyCan : public TrashCan {
 public:
  explicit FaultyCan(TrashCan& real) : real_(real) {}
  std::unique_ptr<TrashBatch> begin() override {
    return std::make_unique<FaultyBatch>(real_.begin(), fault);
  }
  bool insideTrash(std::string_view percorso) const override { return real_.insideTrash(percorso); }
  void alsoFrom(std::string cartella) override { real_.alsoFrom(std::move(cartella)); }

  Fault fault;

 private:
  TrashCan& real_;
};

class InsiemiTest : public testing::Test {
 protected:
  InsiemiTest() {
    ::setenv("HOME", home_.percorso().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    std::vector<Candidato> voci;
    for (const char* nome : {"solo", "db-wal", "db", "db-journal", "altro-wal"}) {
      fakes::scriviFile(home_ / "dati/" + nome, nome);
      voci.push_back({home_ / "dati/" + nome, 1});
    }
    lotti_ = lottiDi(std::move(voci));
  }

  Cestino cestino() {
    const Platform p = native_->platform();
    return Cestino({p.files, *reader_, p.lister, p.clock, can_, Store(home_.percorso()), {}});
  }

  /// How many of the set are where they were. Nothing is lost, and the Trash holds a record for
  /// each item.
  std::size_t rimasti() const {
    const auto quanti = [this](std::initializer_list<const char*> nomi) {
      return static_cast<std::size_t>(std::count_if(
          nomi.begin(), nomi.end(), [&](auto nome) { return fs::exists(home_ / "dati/" + nome); }));
    };
    const std::size_t insieme = quanti({"db-wal", "db", "db-journal"});
    EXPECT_EQ(voci("files"), voci("info"));
    EXPECT_EQ(voci("files") + insieme + quanti({"solo", "altro-wal"}), 5U);
    return insieme;
  }

  std::size_t voci(const std::string& cartella) const {
    return fakes::quanteVoci(home_ / ".local/share/Trash/" + cartella);
  }

  /// One operation of a process that meets the fault, and the next start.
  Esito prova(Fault fault, const std::function<Esito(Cestino&)>& fai) {
    Cestino prima = cestino();
    can_.fault = fault;
    Esito esito;
    try {
      esito = fai(prima);
    } catch (const std::runtime_error&) {
      EXPECT_TRUE(fault.dies);
    }
    can_.fault = {};
    cestino().riprendi();
    return esito;
  }

  void rimettiTutto() {
    std::vector<std::string> ops;
    Cestino ora = cestino();
    ASSERT_TRUE(ora.log([&](const Operazione& operazione) { ops.push_back(operazione.id); }));
    for (const std::string& op : ops) static_cast<void>(ora.restore(op, {}));
    EXPECT_EQ(rimasti(), 3U);
    EXPECT_EQ(voci("files"), 0U);
  }

  const std::function<Esito(Cestino&)> via_ = [this](Cestino& cestino) {
    return cestino.trashWithSound([](std::size_t) { return "x"; }, lotti_);
  };

  fakes::CartellaTemporanea home_;
  const std::unique_ptr<Native> native_ = creaNative();
  const std::unique_ptr<FileReader> reader_ = creaFileReader();
  FaultyCan can_{native_->platform().trash};
  std::vector<Lotto> lotti_;
};

TEST_F(InsiemiTest, ASetMovesWholeOrNotAtAll) {
  ASSERT_EQ(lotti_.size(), 3U);
  for (int in = 0; in < 5; ++in) {
    SCOPED_TRACE(in);
    const bool dentro = in >= 1 && in <= 3;  // "solo" is the first to move, "altro-wal" the last
    const Esito esito = prova({in, false}, via_);
    EXPECT_EQ(rimasti(), dentro ? 3U : 0U);
    EXPECT_EQ(esito.failed.size(), dentro ? 3U : 1U);
    EXPECT_EQ(esito.mosse.size(), dentro ? 2U : 4U);
    rimettiTutto();
    prova({in, true}, via_);
    EXPECT_EQ(rimasti(), in <= 3 ? 3U : 0U);
    rimettiTutto();
  }
  fs::remove(home_ / "dati/db");
  fakes::scriviFile(home_ / "dati/db-shm", "altrui");
  lotti_[1].voci.push_back({home_ / "dati/manca", 1});
  const Esito esito = prova({}, via_);
  EXPECT_EQ(esito.mosse.size(), 2U);
  EXPECT_TRUE(fs::exists(home_ / "dati/db-wal") && fs::exists(home_ / "dati/db-journal"));
}

TEST_F(InsiemiTest, ASetComesBackWholeOrNotAtAll) {
  for (int in = 0; in < 5; ++in) {
    SCOPED_TRACE(in);
    for (const bool dies : {false, true}) {
      const std::string op = prova({}, via_).op;
      EXPECT_EQ(rimasti(), 0U);
      const Esito esito = prova({in, dies}, [&](Cestino& c) { return c.restore(op, {}); });
      // What stands alone goes first; a set that has begun to come back is finished.
      EXPECT_EQ(rimasti(), (dies ? in >= 3 : in <= 1) ? 3U : 0U);
      EXPECT_EQ(esito.errors.size(), dies ? 0U : (in <= 1 ? 1U : 3U));
      rimettiTutto();
    }
  }
}

TEST_F(InsiemiTest, WhereAPlaceIsTakenAllOfASetGetOneNumber) {
  struct Caso {
    std::vector<std::string> presi;
    std::string numero;
  };
  for (const Caso& caso :
       std::vector<Caso>{{{}, ""},
                         {{"db"}, " (ripristinato 1)"},
                         {{"db-journal"}, " (ripristinato 1)"},
                         {{"db-shm"}, " (ripristinato 1)"},
                         {{"db", "db (ripristinato 1)-wal"}, " (ripristinato 2)"},
                         {{"db-wal", "db (ripristinato 1)-lock"}, " (ripristinato 2)"}}) {
    SCOPED_TRACE(caso.presi.empty() ? "" : caso.presi.back());
    const std::string op = prova({}, via_).op;
    for (const std::string& preso : caso.presi) {
      fakes::scriviFile(home_ / "dati/" + preso, "di un altro, più lungo");
    }
    const Esito esito = cestino().restore(op, 2);  // "db" alone is asked for
    EXPECT_EQ(esito.mosse.size(), 3U);
    EXPECT_FALSE(fs::exists(home_ / "dati/solo"));
    for (const std::string& preso : caso.presi) fs::remove(home_ / "dati/" + preso);
    for (const char* coda : {"", "-wal", "-journal"}) {
      const std::string tornato = home_ / "dati/db" + caso.numero + coda;
      EXPECT_EQ(fakes::leggiFile(tornato), std::string("db") + coda);
      fs::rename(tornato, home_ / "dati/db" + coda);
    }
    rimettiTutto();
  }
}

}  // namespace
}  // namespace pellak::trash
