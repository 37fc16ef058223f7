// The state reply with eight sections of 20,000 entries each.
#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Engine.h"
#include "api/Router.h"
#include "fakes/CartellaTemporanea.h"
#include "fakes/FakeApplications.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeFileManager.h"
#include "fakes/MemoryLister.h"
#include "fakes/ScriptedLauncher.h"
#include "platform/FileReader.h"
#include "platform/Native.h"
#include "platform/posix/FilesPosix.h"
#include "trash/OperazioniCestino.h"

namespace pellak {
namespace {

constexpr int kEntries = 20'000;

std::vector<Finding> trovati() {
  Finding finding;
  finding.id = "prova";
  finding.name = "Prova";
  finding.mode = "delete";
  for (int i = 0; i < kEntries; ++i) {
    finding.items.push_back(
        {fmt::format("/home/anna/Progetti/cliente-{:02}/archivio/documenti-{:05}/relazione "
                     "finale.pdf",
                     i % 40, i),
         std::int64_t{1} << (10 + i % 25), 1'500'000'000.0 + i * 8'000.0});
  }
  return {finding};
}

TabellaScanner tabella() {
  TabellaScanner scanner;
  for (const Meta& meta : metas()) {
    scanner.speciali[std::string(meta.specials.front())] = {
        "...", [](const ScanContext&) { return trovati(); }};
  }
  return scanner;
}

/// An engine that has scanned all sections, and a router before it.
struct Banco {
  Banco() {
    engine.start("all");
    engine.attendiFine();
  }

  fakes::CartellaTemporanea home;
  posix::FilesPosix files;
  fakes::FakeClock clock;
  fakes::MemoryLister lister;
  fakes::FakeApplications applicazioni;
  fakes::FakeFileManager fileManager;
  Store store{home.percorso()};
  Impostazioni impostazioni{files, store};
  Engine engine{{files,
                 clock,
                 lister,
                 applicazioni,
                 impostazioni,
                 store,
                 home / "regole.json",
                 {},
                 tabella(),
                 nullptr,
                 nullptr}};
  const std::unique_ptr<Native> native = creaNative();
  const std::unique_ptr<FileReader> reader = creaFileReader();
  trash::Cestino cestino{{files, *reader, lister, clock, native->platform().trash, store, nullptr}};
  trash::OperazioniCestino operazioni{engine, cestino, applicazioni, *reader};
  fakes::ScriptedLauncher launcher;
  Comandi comandi{launcher, clock, FamigliaStrumenti::linux};
  fakes::FakeProbe probe;
  api::Router router{{engine, impostazioni, fileManager, applicazioni, files, comandi, probe,
                      FamigliaStrumenti::linux, operazioni, home.percorso()}};
};

void RepeatedState(benchmark::State& state) {
  Banco banco;
  for (auto _ : state) benchmark::DoNotOptimize(banco.router.handle("/api/state", {}));
}
BENCHMARK(RepeatedState)->Unit(benchmark::kMicrosecond);

void StateAfterStatusChange(benchmark::State& state) {
  Banco banco;
  for (auto _ : state) {
    banco.engine.touch();
    benchmark::DoNotOptimize(banco.router.handle("/api/state", {}));
  }
}
BENCHMARK(StateAfterStatusChange)->Unit(benchmark::kMillisecond);

void FullRebuild(benchmark::State& state) {
  Sec sezione;
  sezione.findings = trovati();
  std::size_t bytes = 0;
  for (auto _ : state) {
    StatoTesto testo;
    Rope uscita;
    for (const Meta& meta : metas()) {
      testo.scriviSezione(uscita, meta, sezione, {}, meta.id == "sviluppo",
                          [](std::string_view) { return std::string(); });
    }
    bytes = uscita.size();
  }
  state.counters["MB"] = static_cast<double>(bytes) / 1e6;
}
BENCHMARK(FullRebuild)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pellak
