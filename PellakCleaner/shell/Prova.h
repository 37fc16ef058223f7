#pragma once

#include <functional>
#include <string>

#include "PellakCore/Engine.h"
#include "api/Router.h"

/// Checks of a built application that print what they find, a line at a time. They block and may
/// run on any thread.
namespace pellak::shell::prova {

using Stampa = std::function<void(const std::string&)>;

/// Scans every section and maps the home folder, and prints how long each took.
void tempi(Engine& engine, const std::string& home, const Stampa& stampa);

/// Whether the engine and the router answer as they must: lines that begin with "SMOKE:", one
/// with "err:" for each fault.
void fumo(Engine& engine, api::Router& router, const Stampa& stampa);

}  // namespace pellak::shell::prova
