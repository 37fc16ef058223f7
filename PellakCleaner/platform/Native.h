#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Applications.h"
#include "platform/Clock.h"
#include "platform/DirectoryLister.h"
#include "platform/FileManager.h"
#include "platform/Files.h"
#include "platform/LoginEntry.h"
#include "platform/Mounts.h"
#include "platform/Notifier.h"
#include "platform/ProcessLauncher.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemProbe.h"
#include "platform/ToolFamily.h"
#include "platform/TrashCan.h"

namespace pellak {

/// The back ends of the system the program was built for. They live as long as the `Native` that
/// made them; each may be used from any thread.
struct Platform {
  Files& files;
  Clock& clock;
  DirectoryLister& lister;
  ProcessLauncher& launcher;
  FileManager& fileManager;
  Applications& applicazioni;
  TrashCan& trash;
  SoundPlayer& suono;
  SystemProbe& probe;
  Mounts& mounts;
};

/// Owns the back ends. Making one starts nothing, and opens nothing but the standard streams that
/// the process was started without.
class Native {
 public:
  virtual ~Native() = default;

  virtual Platform platform() = 0;
  /// The tools of the system the program runs on.
  virtual FamigliaStrumenti famiglia() const = 0;
  /// The running program's own file; empty when the system does not tell.
  virtual std::string executablePath() const = 0;
  /// The home folder of the user by the system's own records, for when HOME is not set.
  virtual std::string homeFolder() const = 0;
  /// Shows notices where the tools of this system do not. Lives as long as this.
  virtual Notifier& notifier() = 0;
  /// The name of the user whom the home folder belongs to, when the process may write there only
  /// because it is the administrator's; empty otherwise.
  virtual std::string otherOwner(const std::string& home) const = 0;
  /// Names the folder for what is set aside against a full disk. Before other threads use it.
  virtual void useReserve(const std::string& cartella) = 0;
  /// What starts the program at login on this system, beside the property list that is written on
  /// every one; nothing where that suffices.
  virtual std::optional<LoginEntry> loginEntry(const std::string& home) const = 0;
};

std::unique_ptr<Native> creaNative();

}  // namespace pellak
