#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/Applicazione.h"

namespace pellak::app {

/// The page's message bridge over standard input and output, one JSON object a line, with the
/// periodic check. `avviso` gets a line at a time about what no reply carries. Exit status 0 at the
/// end of the input, after "quit" and after a timed "ready".
int comandoBridge(std::unique_ptr<Native> native, Ambiente ambiente,
                  const std::function<void(const std::string&)>& avviso);

}  // namespace pellak::app
