// Arbitrary rules files: read, written over by the settings, and scanned on a disk that has
// something to offer for every place a rule may name.
#include <cstdlib>
#include <set>

#include "PellakCore/Config.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Json.h"
#include "fakes/FakeClock.h"
#include "fakes/MemoryLister.h"
#include "scanners/regole/ScannerRegole.h"

namespace {

using namespace pellak;

constexpr std::size_t kCategories = 4;
constexpr std::size_t kPlaces = 16;

void require(bool condition) {
  if (!condition) std::abort();
}

/// Any folder holds an installer and a folder "x", which holds an installer.
class DiscoFinto final : public DirectoryLister {
 public:
  DiscoFinto() {
    for (const char* file : {"/d/Setup.DMG", "/d/x/Setup.DMG"}) albero_.file(file, 4096);
  }

  Result<std::shared_ptr<DirectoryHandle>> open(std::string_view percorso) override {
    require(!percorso.empty() && percorso.front() == '/');
    return albero_.open(percorso.ends_with("/x") ? "/d/x" : "/d");
  }
  Result<EntryAttributes> attributes(std::string_view percorso) override {
    require(!percorso.empty() && percorso.front() == '/');
    if (percorso.size() % 7 == 6) return Error{ErrorKind::denied, 13, "no"};
    return albero_.attributes(percorso.find('.') == std::string_view::npos ? "/d" : "/d/Setup.DMG");
  }
  bool emptyIsCertain() const override { return true; }
  std::size_t descriptorBudget() const override { return 8; }

 private:
  fakes::MemoryLister albero_;
};

void check(const Finding& finding, const RegolaCategoria& regola) {
  require(finding.id == regola.id && finding.mode == regola.mode && finding.groups.empty());
  std::set<std::string_view> visti;
  for (std::size_t i = 0; i < finding.items.size(); ++i) {
    const Voce& voce = finding.items[i];
    for (const std::string& nome : regola.except) {
      require(nome != "*" && nome != ultimoComponente(voce.path));
    }
    require(voce.size > 0 && voce.path.front() == '/' && visti.insert(voce.path).second);
    require(i == 0 || finding.items[i - 1].size >= voce.size);
  }
}

template <class T>
void shorten(std::vector<T>& elenco, std::size_t massimo) {
  if (elenco.size() > massimo) elenco.resize(massimo);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view testo(reinterpret_cast<const char*>(data), size);
  const auto documento = JsonDocument::parse(testo);
  const Result<Regole> lette = leggiRegole(testo);
  require(lette.ok() == (documento.ok() && documento->radice().oggetto()));
  if (!lette) return 0;

  const Config impostazioni = Config::daJson(documento->radice());
  Regole regole = conImpostazioni(lette.value(), impostazioni);
  require(regole.categorie.size() == lette->categorie.size());
  shorten(regole.categorie, kCategories);

  static DiscoFinto disco;
  fakes::FakeClock clock;
  Contatore contatore("/casa/anna", false);
  const ScanContext ctx{regole, impostazioni, "/casa/anna", {}, {}, contatore, disco, clock};
  for (RegolaCategoria& regola : regole.categorie) {
    shorten(regola.folders, kPlaces);
    shorten(regola.paths, kPlaces);
    shorten(regola.glob, kPlaces);
    shorten(regola.except, kPlaces);
    check(scanners::scanRegola(ctx, regola), regola);
  }
  return 0;
}
