#pragma once

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "fakes/CartellaTemporanea.h"

namespace pellak::native {

/// A user's desktop in a folder of its own: home, shared files and programs, no message bus.
class DesktopLinux : public testing::Test {
 protected:
  DesktopLinux() {
    set("HOME", home.percorso());
    set("XDG_DATA_HOME", home / "dati");
    set("XDG_DATA_DIRS", home / "sistema");
    set("XDG_CONFIG_HOME", home / "config");
    set("XDG_RUNTIME_DIR", home.percorso());
    set("PATH", (home / "bin") + ":/usr/bin:/bin");
    set("LANGUAGE", "");
    set("LC_ALL", "it_IT.UTF-8");
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
  }

  static void set(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

  /// A program of the user's, found by its name.
  std::string script(const std::string& name, const std::string& body) {
    std::string path = home / "bin/" + name;
    fakes::scriviFile(path, "#!/bin/sh\n" + body);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
  }

  fakes::CartellaTemporanea home;
};

}  // namespace pellak::native
