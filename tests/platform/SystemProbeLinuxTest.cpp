#include <gtest/gtest.h>

#include "fakes/CartellaTemporanea.h"
#include "platform/linux/MountsLinux.h"
#include "platform/linux/SystemProbeLinux.h"
#include "platform/posix/FilesPosix.h"

namespace pellak::native {
namespace {

class SystemProbeLinuxTest : public testing::Test {
 protected:
  void file(const std::string& name, const std::string& text) {
    fakes::scriviFile(root / name, text);
  }

  fakes::CartellaTemporanea root;
  SystemProbeLinux probe{root / "proc", root / "sys"};
};

TEST_F(SystemProbeLinuxTest, ReadsCountersOfCoresAndRealInterfaces) {
  file("proc/stat",
       "cpu  30 0 30 100 20 0 0 0 0 0\n"
       "cpu0 10 1 20 50 5 2 3 4 9 0\ncpu1 20 0 10 50 15 0 0 0 0 0\nintr 1 2\ncpufreq 9\n");
  file("proc/net/dev",
       "Inter-|   Receive   |  Transmit\n face |bytes packets errs drop fifo frame compressed\n"
       "    lo: 900 1 0 0 0 0 0 0 900 1 0 0 0 0 0 0\n"
       "  eth0:1000 1 0 0 0 0 0 0 200 1 0 0 0 0 0 0\n"
       " wlan0: 30 1 0 0 0 0 0 0 4 1 0 0 0 0 0 0\n"
       "docker0: 7 1 0 0 0 0 0 0 7 1 0 0 0 0 0 0\n");
  file("sys/class/net/eth0/device/vendor", "");
  file("sys/class/net/wlan0/device/vendor", "");
  file("proc/loadavg", "0.52 0.40 0.30 1/200 4242\n");
  file("proc/meminfo", "MemTotal:       1000 kB\nMemFree: 10 kB\nMemAvailable:    400 kB\n");
  const auto cores = probe.cores();
  ASSERT_EQ(cores.size(), 2U);
  EXPECT_EQ(cores[0].total, 95);
  EXPECT_EQ(cores[0].busy, 40);
  EXPECT_EQ(cores[1].busy, 30);
  EXPECT_EQ(probe.network()->rx, 1030);
  EXPECT_EQ(probe.network()->tx, 204);
  EXPECT_EQ(probe.load(), 0.52);
  EXPECT_EQ(probe.memory()->used, 600 * 1024);
  EXPECT_EQ(probe.memory()->total, 1000 * 1024);
}

TEST_F(SystemProbeLinuxTest, ReadsTheTableOfMounts) {
  file("mountinfo",
       "1 0 8:1 / / rw shared:1 - ext4 /dev/sda1 rw\n"
       "30 1 0:40 / /h/due\\040parole\\134x rw shared:9 master:2 - nfs4 server:/a rw\n"
       "31 1 0:41 / /h/a rw - autofs systemd-1 rw\n32 31 8:2 /sub /h/a rw - btrfs /dev/sdb rw\n"
       "33 1 0:42 / /h/c rw - fuse.sshfs x@y: rw\nboh\n34 1 0:43 / /h/d rw -\n");
  const auto mounts = MountsLinux(root / "mountinfo").list();
  ASSERT_TRUE(mounts.ok());
  std::string found;
  for (const Mount& mount : *mounts) {
    found += mount.path + "," + mount.type + "," + std::to_string(mount.id) +
             (mount.remote ? ",remote;" : ";");
  }
  EXPECT_EQ(found,
            "/,ext4,1;/h/due parole\\x,nfs4,30,remote;/h/a,btrfs,32;/h/c,fuse.sshfs,33,remote;");
  EXPECT_FALSE(MountsLinux(root / "manca").list().ok());
  EXPECT_EQ(MountsLinux().list()->front().path.front(), '/');
}

TEST_F(SystemProbeLinuxTest, TakesTheComputersOwnBattery) {
  EXPECT_FALSE(probe.battery());
  file("sys/class/power_supply/AC/type", "Mains\n");
  file("sys/class/power_supply/A-mouse/type", "Battery\n");
  file("sys/class/power_supply/A-mouse/scope", "Device\n");
  file("sys/class/power_supply/A-mouse/capacity", "9\n");
  EXPECT_FALSE(probe.battery());
  file("sys/class/power_supply/BAT0/type", "Battery\n");
  file("sys/class/power_supply/BAT0/capacity", "80\n");
  file("sys/class/power_supply/BAT0/status", "Charging\n");
  file("sys/class/power_supply/BAT0/charge_now", "4000\n");
  file("sys/class/power_supply/BAT0/charge_full", "5000\n");
  EXPECT_EQ(probe.battery()->fraction, 0.8);
  EXPECT_TRUE(probe.battery()->charging);
  EXPECT_FALSE(probe.battery()->minutesToFull) << "nothing tells how fast";
  file("sys/class/power_supply/BAT0/current_now", "800\n");
  EXPECT_EQ(probe.battery()->minutesToFull, 75);
  file("sys/class/power_supply/BAT0/status", "Discharging\n");
  EXPECT_FALSE(probe.battery()->charging);
  EXPECT_FALSE(probe.battery()->minutesToFull);
}

TEST_F(SystemProbeLinuxTest, AnswersWithNothingWhereNothingIsToldAndWithSenseHere) {
  EXPECT_TRUE(probe.cores().empty());
  EXPECT_FALSE(probe.network() || probe.load() || probe.memory());
  EXPECT_FALSE(probe.disk(root / "manca"));
  file("proc/stat", "cpu0\n");
  file("proc/meminfo", "MemTotal\n");
  EXPECT_EQ(probe.cores().size(), 1U);
  EXPECT_FALSE(probe.memory());

  SystemProbeLinux here;
  ASSERT_FALSE(here.cores().empty());
  EXPECT_GT(here.cores()[0].total, 0);
  const auto disk = here.disk("/");
  EXPECT_GT(disk->total, disk->free);
  EXPECT_GE(disk->total, disk->used + disk->free) << "what is kept for root is neither";
  EXPECT_GT(here.memory()->total, here.memory()->used);
  posix::FilesPosix files;
  EXPECT_EQ(files.readToEnd("/proc/self/stat", 5)->size(), 5U) << "a file that tells no size";
  EXPECT_EQ(files.readToEnd("/proc/self", 5).error().kind, ErrorKind::invalid);
}

}  // namespace
}  // namespace pellak::native
