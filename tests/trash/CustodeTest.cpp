#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Native.h"
#include "trash/Custode.h"

namespace pellak::trash {
namespace {

TEST(CustodeTest, SaysWhereThingsMayComeBackToAndOnlyTheyMayGo) {
  const Store store("/home/u");
  const auto native = creaNative();
  const Custode custode(store, native->platform().trash);
  for (const char* si : {"/home/u/a", "/home/u/Library/x", "/Applications/A.app", "/media/disco/a",
                         "/Library/LaunchAgents/a.plist", "/Library/LaunchDaemons/a.plist",
                         "/usrlocal", "/var/tmp/a"}) {
    EXPECT_TRUE(custode.destinazione(si)) << si;
    EXPECT_EQ(custode.ammesso(si), std::string_view(si).rfind('/') > 0) << si;
  }
  for (const char* no :
       {"", "a", "/home/u/../x", "/bin/a", "/boot/a", "/dev/a", "/etc/cron.d/a", "/lib/a",
        "/lib64/a", "/proc/a", "/sys/a", "/usr", "/usr/local/bin/a", "/usr/include/a", "/System/a",
        "/Library/Fonts/a", "/Library/LaunchAgentsX/a", "/home/u/.Trash/a"}) {
    EXPECT_FALSE(custode.destinazione(no) || custode.ammesso(no)) << no;
  }
  EXPECT_FALSE(custode.destinazione(store.registro()));
  EXPECT_FALSE(custode.destinazione(store.cartella()));
  EXPECT_FALSE(custode.ammesso("/private/var"));
  EXPECT_EQ(custode.causaDelRifiuto("/usr/local/a"), "è un posto del sistema: non lo tocco");
  EXPECT_THAT(custode.causaDelRifiuto("/home/u/Library"), testing::StartsWith("è una cartella"));
}

TEST(CustodeTest, UserFoldersOfOtherNamesStayThemselves) {
  const Store store("/home/u");
  const auto native = creaNative();
  const Custode custode(store, native->platform().trash, {"/home/u/Carte"});
  EXPECT_FALSE(custode.ammesso("/home/u/Carte"));
  EXPECT_TRUE(custode.ammesso("/home/u/Carte/a"));
}

}  // namespace
}  // namespace pellak::trash
