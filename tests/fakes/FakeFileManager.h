#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"

namespace pellak::fakes {

/// A file manager that only notes what it is asked for. One thread.
class FakeFileManager : public FileManager {
 public:
  Result<void> show(std::span<const std::string> percorsi) override {
    mostrati.emplace_back(percorsi.begin(), percorsi.end());
    return esito;
  }

  Result<void> open(std::string_view percorso) override {
    aperti.emplace_back(percorso);
    return esito;
  }

  Result<void> openTrash() override { return open("Cestino"); }

  std::vector<std::vector<std::string>> mostrati;  ///< one list per call
  std::vector<std::string> aperti;
  Result<void> esito;  ///< of every call
};

}  // namespace pellak::fakes
