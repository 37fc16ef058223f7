#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "PellakCore/Engine.h"
#include "PellakCore/Impostazioni.h"
#include "fakes/CartellaTemporanea.h"
#include "fakes/FakeApplications.h"
#include "fakes/FakeClock.h"
#include "fakes/GuardedFiles.h"
#include "fakes/MemoryLister.h"

namespace pellak::fakes {

/// What an engine on a home folder of its own needs.
class ConMotore : public testing::Test {
 protected:
  explicit ConMotore(double adesso = 1'700'000'000) : clock(adesso) {}

  std::unique_ptr<Engine> crea(std::function<void(const std::string&)> avviso = nullptr,
                               std::function<void(const Snapshot&)> controlloFinito = nullptr) {
    AmbienteEngine ambiente{files,
                            clock,
                            lister,
                            applicazioni,
                            impostazioni,
                            store,
                            regole,
                            {},
                            tabella,
                            std::move(avviso),
                            std::move(controlloFinito)};
    ambiente.sfondo = sfondo;
    return std::make_unique<Engine>(std::move(ambiente));
  }

  CartellaTemporanea home;
  GuardedFiles files;
  FakeClock clock;
  MemoryLister lister;
  FakeApplications applicazioni;
  Store store{home.percorso()};
  Impostazioni impostazioni{files, store};
  std::string regole = home / "regole.json";
  TabellaScanner tabella;
  ThreadSetting sfondo = nullptr;
};

}  // namespace pellak::fakes
