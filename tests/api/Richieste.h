#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "PellakCore/base/Json.h"
#include "api/Router.h"
#include "fakes/ConMotore.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeFileManager.h"
#include "fakes/ScriptedLauncher.h"
#include "platform/FileReader.h"
#include "platform/Native.h"
#include "trash/OperazioniCestino.h"

namespace pellak::api {

/// A router over a real engine on a home folder of its own; the desktop is made up.
class Richieste : public fakes::ConMotore {
 protected:
  /// What the duplicates section will find; before the first request.
  void trova(Finding finding) {
    tabella.speciali["duplicates"] = {
        "Ricerca", [finding](const ScanContext&) { return std::vector<Finding>{finding}; }};
  }

  Engine& motore() {
    if (!engine_) engine_ = crea();
    return *engine_;
  }

  /// Over the system's own Trash, which HOME tells where to be.
  trash::OperazioniCestino& operazioni() {
    if (!operazioni_) {
      const Platform platform = native_->platform();
      cestino_ = std::make_unique<trash::Cestino>(trash::AmbienteCestino{
          files, *reader_, platform.lister, clock, platform.trash, store, [this] { ++suoni; }});
      operazioni_ =
          std::make_unique<trash::OperazioniCestino>(motore(), *cestino_, applicazioni, *reader_);
    }
    return *operazioni_;
  }

  Router router() {
    comandi_.emplace(launcher, clock, famiglia);
    return Router({motore(), impostazioni, fileManager, applicazioni, files, *comandi_, probe,
                   famiglia, operazioni(), home.percorso()});
  }

  /// The body must be JSON.
  Risposta rispondi(std::string_view rotta, const std::string& corpo = "{}") {
    const auto documento = JsonDocument::parse(corpo);
    if (!documento) throw std::invalid_argument(corpo);
    return router().handle(rotta, documento->radice());
  }

  /// Status, a blank and the reply's text.
  std::string chiedi(std::string_view rotta, const std::string& corpo = "{}") {
    const Risposta risposta = rispondi(rotta, corpo);
    return std::to_string(risposta.stato) + " " + risposta.testo.str();
  }

  void scandisci(const std::string& sezione) {
    ASSERT_EQ(chiedi("/api/scan", R"({"section":")" + sezione + R"("})"), R"(200 {"ok":true})");
    motore().attendiFine();
  }

  fakes::FakeFileManager fileManager;
  fakes::ScriptedLauncher launcher;
  fakes::FakeProbe probe;
  FamigliaStrumenti famiglia = FamigliaStrumenti::linux;
  int suoni = 0;

 private:
  std::optional<Comandi> comandi_;
  const std::unique_ptr<Native> native_ = creaNative();
  const std::unique_ptr<FileReader> reader_ = creaFileReader();
  std::unique_ptr<Engine> engine_;
  std::unique_ptr<trash::Cestino> cestino_;
  std::unique_ptr<trash::OperazioniCestino> operazioni_;
};

}  // namespace pellak::api
