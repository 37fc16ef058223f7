#include <array>
#include <climits>
#include <unistd.h>

#include "platform/Native.h"
#include "platform/linux/ApplicationsLinux.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/DirectoryListerLinux.h"
#include "platform/linux/FileManagerLinux.h"
#include "platform/linux/MountsLinux.h"
#include "platform/linux/NotifierLinux.h"
#include "platform/linux/SoundPlayerLinux.h"
#include "platform/linux/SystemProbeLinux.h"
#include "platform/linux/TrashCanLinux.h"
#include "platform/posix/ClockPosix.h"
#include "platform/posix/FilesPosix.h"
#include "platform/posix/HomeFolder.h"
#include "platform/posix/ProcessLauncherPosix.h"
#include "platform/posix/StandardStreams.h"

namespace pellak {
namespace {

class NativeLinux : public Native {
 public:
  Platform platform() override {
    return {files_,        clock_, lister_, launcher_, fileManager_,
            applicazioni_, trash_, suono_,  probe_,    mounts_};
  }

  FamigliaStrumenti famiglia() const override { return FamigliaStrumenti::linux; }

  std::string executablePath() const override {
    std::array<char, PATH_MAX> percorso{};
    const ssize_t lunghezza = ::readlink("/proc/self/exe", percorso.data(), percorso.size());
    return lunghezza <= 0 ? std::string()
                          : std::string(percorso.data(), static_cast<std::size_t>(lunghezza));
  }

  std::string homeFolder() const override { return posix::homeFolder(); }

  Notifier& notifier() override { return notifier_; }

  std::string otherOwner(const std::string& home) const override { return posix::otherOwner(home); }

  void useReserve(const std::string& cartella) override { riserva_.usa(cartella); }

  std::optional<LoginEntry> loginEntry(const std::string& home) const override {
    return native::autostartEntry(executablePath(), home);
  }

 private:
  posix::Riserva riserva_;
  posix::FilesPosix files_{&riserva_};
  posix::ClockPosix clock_;
  native::DirectoryListerLinux lister_;
  posix::ProcessLauncherPosix launcher_;
  native::FileManagerLinux fileManager_{launcher_};
  native::ApplicationsLinux applicazioni_;
  native::TrashCanLinux trash_{&riserva_};
  native::SoundPlayerLinux suono_{launcher_};
  native::SystemProbeLinux probe_;
  native::MountsLinux mounts_;
  native::NotifierLinux notifier_;
};

}  // namespace

std::unique_ptr<Native> creaNative() {
  posix::occupyStandardStreams();
  return std::make_unique<NativeLinux>();
}

}  // namespace pellak
