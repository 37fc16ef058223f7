#pragma once

#include <vector>

#include "PellakCore/ScanContext.h"

namespace pellak::scanners {

/// The heaviest files below the rules' roots ("large-files"), and the heaviest of those that
/// nobody has modified for longer than the rules' age ("large-old"). Only reported; both findings
/// are always there, perhaps without entries.
///
/// The threshold compares logical sizes, while order and entries tell the bytes on disk, so a
/// sparse file may be listed with little. Equal sizes are in byte order of their paths. What is
/// reached through two roots counts once.
///
/// Refusals go to the section's counter. Throws `ScanCancelled`, or what says why the rules could
/// not be read.
std::vector<Finding> scanGrandi(const ScanContext& ctx);

}  // namespace pellak::scanners
