#pragma once

namespace pellak {

/// Thrown by the walk operations and the scanners when the stop predicate answers true. It is
/// the only exception that crosses a folder; the engine turns it into a section status.
struct ScanCancelled {};

}  // namespace pellak
