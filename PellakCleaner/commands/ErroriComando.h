#pragma once

#include <string>
#include <string_view>

namespace pellak {

/// The sentence for a command that was stopped at its limit of `limite` seconds. It names whole
/// minutes, so a limit under a minute reads as 0.
std::string erroreLimite(double limite);

/// The sentence for a command that failed with `testoErrore` on standard error.
std::string erroreComando(std::string_view testoErrore);

/// What became of a request to pkexec that ended badly.
enum class RispostaPkexec {
  annullata,  ///< the user dismissed the dialog
  negata,     ///< not authorised, or nobody could be asked
  comando     ///< the command ran; the status is its own
};

/// pkexec answers 126 for a dismissed dialog and 127 for a refusal, but passes on the same two
/// statuses from a command that ran. They are told apart by standard error: pkexec's own messages
/// are known, and a shell that ends with one of these statuses says why. So the status is taken
/// for pkexec's own when its words are there or when there are no words at all.
RispostaPkexec rispostaPkexec(int stato, std::string_view testoErrore);

}  // namespace pellak
