#pragma once

namespace pellak::app {

/// While it lives, the first Ctrl-C (or SIGTERM) is only noted, so that the program can stop
/// cleanly; a second one ends the process at once. One at a time.
class Interruzione {
 public:
  Interruzione();
  ~Interruzione();
  Interruzione(const Interruzione&) = delete;
  Interruzione& operator=(const Interruzione&) = delete;

  bool chiesta() const;
};

}  // namespace pellak::app
