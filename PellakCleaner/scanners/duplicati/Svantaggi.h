#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "PellakCore/ScanContext.h"
#include "platform/FileReader.h"

namespace pellak::scanners {

/// Finds out what speaks against keeping a copy (PellakCore/CopiaTenuta.h). One thread; context and
/// reader outlive it.
class Svantaggi {
 public:
  Svantaggi(const ScanContext& ctx, FileReader& reader);

  std::uint8_t di(std::string_view percorso, std::int32_t dev);

 private:
  bool scrivibile(std::string_view cartella);

  FileReader& reader_;
  std::vector<std::string> passaggi_;
  std::int32_t devCasa_ = 0;
  /// What was asked lately; emptied when it has grown.
  std::unordered_map<std::string, bool> scrivibili_;
};

}  // namespace pellak::scanners
