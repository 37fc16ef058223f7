#pragma once

#include "platform/FileReader.h"

namespace pellak::posix {

class FileReaderPosix final : public FileReader {
 public:
  Result<std::unique_ptr<OpenFile>> open(std::string_view percorso, ReadPlan plan) override;
  bool writable(std::string_view cartella) override;
};

}  // namespace pellak::posix
