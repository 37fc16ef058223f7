#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/Applicazione.h"

namespace pellak::app {

/// `pellak-cleaner` without a command: the application in its window, until the user quits.
/// `avviso` gets a line at a time about what the window does not show. Status 0; 1 without a
/// display or a window, after a line on standard error.
int comandoFinestra(std::unique_ptr<Native> native, Ambiente ambiente,
                    const std::function<void(const std::string&)>& avviso);

}  // namespace pellak::app
