#include <cstdint>
#include <cstdlib>
#include <mach-o/dyld.h>
#include <memory>
#include <optional>
#include <string>

#include "platform/Native.h"
#include "platform/macos/ApplicationsMac.h"
#include "platform/macos/DirectoryListerMac.h"
#include "platform/macos/FileManagerMac.h"
#include "platform/macos/MountsMac.h"
#include "platform/macos/SoundPlayerMac.h"
#include "platform/macos/SystemProbeMac.h"
#include "platform/macos/TrashCanMac.h"
#include "platform/posix/ClockPosix.h"
#include "platform/posix/FilesPosix.h"
#include "platform/posix/HomeFolder.h"
#include "platform/posix/ProcessLauncherPosix.h"
#include "platform/posix/StandardStreams.h"

namespace pellak {
namespace {

/// Notices are shown by the system's script runner here, which needs no service of ours.
class NoNotifier final : public Notifier {
 public:
  Result<void> notify(const std::string& /*titolo*/, const std::string& /*messaggio*/) override {
    return Error{ErrorKind::missing, 0, "notices go through the script runner"};
  }
};

class NativeMac : public Native {
 public:
  Platform platform() override {
    return {files_,        clock_, lister_, launcher_, fileManager_,
            applicazioni_, trash_, suono_,  probe_,    mounts_};
  }

  FamigliaStrumenti famiglia() const override { return FamigliaStrumenti::macos; }

  std::string executablePath() const override {
    std::uint32_t lunghezza = 0;
    _NSGetExecutablePath(nullptr, &lunghezza);
    std::string percorso(lunghezza, '\0');
    if (_NSGetExecutablePath(percorso.data(), &lunghezza) != 0) return {};
    percorso.resize(percorso.find('\0'));
    // A start through a link names the link; what belongs to the program lies around the file.
    const std::unique_ptr<char, void (*)(void*)> vero(::realpath(percorso.c_str(), nullptr),
                                                      std::free);
    return vero != nullptr ? std::string(vero.get()) : percorso;
  }

  std::string homeFolder() const override { return posix::homeFolder(); }

  Notifier& notifier() override { return notifier_; }

  std::string otherOwner(const std::string& home) const override { return posix::otherOwner(home); }

  void useReserve(const std::string& cartella) override { riserva_.usa(cartella); }

  std::optional<LoginEntry> loginEntry(const std::string& /*home*/) const override { return {}; }

 private:
  posix::Riserva riserva_;
  posix::FilesPosix files_{&riserva_};
  posix::ClockPosix clock_;
  native::DirectoryListerMac lister_;
  posix::ProcessLauncherPosix launcher_;
  native::FileManagerMac fileManager_;
  native::ApplicationsMac applicazioni_;
  native::TrashCanMac trash_;
  native::SoundPlayerMac suono_{launcher_};
  native::SystemProbeMac probe_;
  native::MountsMac mounts_;
  NoNotifier notifier_;
};

}  // namespace

std::unique_ptr<Native> creaNative() {
  posix::occupyStandardStreams();
  return std::make_unique<NativeMac>();
}

}  // namespace pellak
