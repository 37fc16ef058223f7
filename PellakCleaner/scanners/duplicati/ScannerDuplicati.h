#pragma once

#include "PellakCore/ScanContext.h"
#include "platform/FileReader.h"
#include "scanners/duplicati/Impronte.h"

namespace pellak::scanners {

/// Finds files of equal content below the rules' roots: one group for each set, most recoverable
/// bytes first (then larger files, then the first path).
///
/// Sizes are compared, then samples, then whole contents: byte for byte among files read side by
/// side, which then have one SHA-256, and by that hash otherwise. Only the whole decides. Each file
/// on disk is read once at most, however many names it has, and stands in its group with the first
/// of them. A file that can't be read, vanishes or is written to while it is read is left out.
///
/// With `impronte`, files that it remembers unchanged are not read; their groups carry
/// `dallaCache`. Large files that are one hole each are equal without a hash.
///
/// Refusals go to the section's counter. Throws `ScanCancelled`, within a block of each file being
/// read, or what says why the rules could not be read.
Finding scanDuplicati(const ScanContext& ctx, FileReader& reader, Impronte* impronte = nullptr);

}  // namespace pellak::scanners
