#pragma once

namespace pellak::app {

class Applicazione;

/// The page's message bridge over standard input and output, one JSON object a line. Exit status
/// 0 at the end of the input, after "quit" and after a timed "ready".
int comandoBridge(Applicazione& applicazione);

}  // namespace pellak::app
