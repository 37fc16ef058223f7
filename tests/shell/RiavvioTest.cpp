#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "fakes/CartellaTemporanea.h"
#include "shell/Riavvio.h"

namespace pellak::shell {
namespace {

TEST(RiavvioTest, StartsOnlyWhenTheOldProcessHasGone) {
  const fakes::CartellaTemporanea casa;
  const pid_t vecchio = ::fork();
  if (vecchio == 0) {
    ::sleep(2);
    ::_exit(0);
  }
  std::thread raccolta([vecchio] { ::waitpid(vecchio, nullptr, 0); });
  const std::string avvio = "kill -0 " + std::to_string(vecchio) + " 2>/dev/null && touch '" +
                            (casa / "presto") + "'; touch '" + (casa / "partito") + "'";
  EXPECT_EQ(std::system(comandoRiavvio(vecchio, avvio).c_str()), 0);
  raccolta.join();
  EXPECT_EQ(::access((casa / "partito").c_str(), F_OK), 0);
  EXPECT_NE(::access((casa / "presto").c_str(), F_OK), 0);
}

}  // namespace
}  // namespace pellak::shell
