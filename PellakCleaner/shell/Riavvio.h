#pragma once

#include <string>

namespace pellak::shell {

/// The shell command of a restart: waits until the process `vecchio` has gone, and at most half a
/// minute, then runs `avvio`. Started earlier, the new program would find the old one and only show
/// its window.
std::string comandoRiavvio(long vecchio, const std::string& avvio);

}  // namespace pellak::shell
