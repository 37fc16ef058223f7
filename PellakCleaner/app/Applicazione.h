#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/Engine.h"
#include "PellakCore/Impostazioni.h"
#include "api/Router.h"
#include "commands/Comandi.h"
#include "platform/FileReader.h"
#include "platform/Native.h"
#include "trash/OperazioniCestino.h"

namespace pellak::app {

/// What the environment decides about a run.
struct Ambiente {
  std::string home;  ///< home folder, links followed, no trailing slash
  FamigliaStrumenti famiglia;
  std::string rulesPath;                 ///< the rules file in force
  bool regoleIndicate = false;           ///< the user named another rules file
  std::string risorse;                   ///< the resource folder, which holds "engine"
  std::vector<Spostamento> spostamenti;  ///< folders that the desktop's conventions put elsewhere
};

/// Reads HOME, PELLAK_TOOLS, PELLAK_RULES, PELLAK_RESOURCES and, for the Linux tools, the XDG_*
/// variables and "user-dirs.dirs". Errors (invalid, with an Italian
/// text): no usable home folder, a PELLAK_TOOLS that is neither "macos" nor "linux".
Result<Ambiente> leggiAmbiente(Native& native);

/// The program's parts joined: back ends, settings, engine, router. The one place that builds
/// them; window, bridge and terminal commands all start from here.
class Applicazione {
 public:
  /// `avviso` gets one line at a time about what no reply carries; any thread. `controlloFinito`
  /// is told of the end of a scan that the periodic check started, on the engine's queue.
  Applicazione(std::unique_ptr<Native> native, Ambiente ambiente,
               std::function<void(const std::string&)> avviso,
               std::function<void(const Snapshot&)> controlloFinito = nullptr);

  Engine& engine() { return engine_; }
  api::Router& router() { return router_; }
  Impostazioni& impostazioni() { return impostazioni_; }
  Comandi& comandi() { return comandi_; }
  const Platform& platform() const { return platform_; }
  trash::OperazioniCestino& operazioni() { return operazioni_; }
  FileReader& reader() { return *reader_; }
  /// A copy of one operation of the log; nothing when there is none. An error is the log's that
  /// can't be read.
  Result<std::optional<trash::Operazione>> operazione(std::string_view id);
  const std::string& home() const { return ambiente_.home; }
  const std::string& risorse() const { return ambiente_.risorse; }
  FamigliaStrumenti famiglia() const { return ambiente_.famiglia; }
  Notifier& notifier() { return native_->notifier(); }
  /// The running program's own file.
  std::string eseguibile() const { return native_->executablePath(); }

 private:
  const std::unique_ptr<Native> native_;
  const Platform platform_;
  const Ambiente ambiente_;
  Comandi comandi_;
  Impostazioni impostazioni_;
  Engine engine_;
  const std::unique_ptr<FileReader> reader_ = creaFileReader();
  trash::Cestino cestino_;
  trash::OperazioniCestino operazioni_;
  api::Router router_;
};

}  // namespace pellak::app
