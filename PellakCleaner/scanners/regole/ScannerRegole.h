#pragma once

#include "PellakCore/ScanContext.h"

namespace pellak::scanners {

/// Turns one entry of the rules file into its finding: the entry's files and folders that are old
/// enough, with the bytes they take on disk, largest first (equal sizes in the order of the
/// rules).
///
/// Candidates are the children of `childrenOf`, of `folders`, then `paths`, then what `glob`
/// matches, without those whose name `except` matches; one that several of them name counts once.
/// Symbolic links are neither listed nor entered, and a folder that is one contributes nothing;
/// links above such a place, and the folder of a pattern, are followed, and the entries have their
/// real paths. What takes no room is left out. A place that does not begin with "/" once "~" is
/// expanded is ignored. Remote volumes that are candidates, or lie in one, are not read; the
/// finding names them, and the folders it does not offer because another volume is mounted below.
///
/// Refusals, those met while measuring too, go to the section's counter; whatever else can't be
/// read is left out silently. Throws `ScanCancelled`.
Finding scanRegola(const ScanContext& ctx, const RegolaCategoria& regola);

}  // namespace pellak::scanners
