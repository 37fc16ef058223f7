#pragma once

#include <cstddef>
#include <string>

#include "platform/Result.h"
#include "platform/posix/Descriptor.h"

namespace pellak::posix {

/// Opens a regular file for reading, links followed and without waiting for anybody. Errors:
/// invalid (no regular file), missing, denied, failed.
Result<Descriptor> openRegular(const std::string& percorso);

/// What an open file gives until its end, at most `massimo` bytes of it. The size that its record
/// tells is not asked: files of the system itself tell none.
Result<std::string> readToEnd(int file, std::size_t massimo);

/// The same of the regular file at a path.
Result<std::string> readToEnd(const std::string& percorso, std::size_t massimo);

}  // namespace pellak::posix
