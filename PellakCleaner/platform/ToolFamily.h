#pragma once

namespace pellak {

/// Whose system tools are spoken to: which programs are run and how their text is read. A choice
/// made at run time, independent of the system the program was built for.
enum class FamigliaStrumenti { macos, linux };

}  // namespace pellak
