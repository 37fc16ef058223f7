#pragma once

#include <string>

namespace pellak::app {

class Applicazione;

/// One request through the router: prints the reply as one JSON line and waits for a scan that it
/// started. Exit status 0 when the reply's status is 200 and it has no "err", 1 otherwise, 2 when
/// `corpo` is no JSON.
int comandoApi(Applicazione& applicazione, const std::string& rotta, const std::string& corpo);

}  // namespace pellak::app
