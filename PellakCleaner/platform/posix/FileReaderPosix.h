#pragma once

#include "platform/FileReader.h"

namespace pellak::posix {

class FileReaderPosix final : public FileReader {
 public:
  Result<std::unique_ptr<OpenFile>> open(std::string_view percorso, ReadPlan plan) override;
};

}  // namespace pellak::posix
