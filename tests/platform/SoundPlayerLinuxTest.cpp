#include "fakes/ScriptedLauncher.h"
#include "platform/DesktopLinux.h"
#include "platform/linux/SoundPlayerLinux.h"

namespace pellak::native {
namespace {

class SoundPlayerLinuxTest : public DesktopLinux {
 protected:
  std::vector<std::string> played() {
    launcher.answerAll({});
    SoundPlayerLinux(launcher).movedToTrash();
    return launcher.lines();
  }

  const std::string sound = home / "sistema/sounds/freedesktop/stereo/trash-empty.oga";
  fakes::ScriptedLauncher launcher;
};

TEST_F(SoundPlayerLinuxTest, PlaysTheThemesSoundWithTheSessionsPlayer) {
  fakes::scriviFile(sound, "suono");
  fakes::scriviFile(home / "pulse/native", "");
  EXPECT_EQ(played(), std::vector<std::string>{"/usr/bin/paplay " + sound});
}

TEST_F(SoundPlayerLinuxTest, StaysSilentWithoutASoundOrAServer) {
  fakes::scriviFile(home / "pipewire-0", "");
  EXPECT_TRUE(played().empty()) << "no sound theme";
  fakes::scriviFile(sound, "suono");
  std::filesystem::remove(home / "pipewire-0");
  EXPECT_TRUE(played().empty()) << "nobody to play it";
}

}  // namespace
}  // namespace pellak::native
