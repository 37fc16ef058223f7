#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Clock.h"
#include "platform/ProcessLauncher.h"

namespace pellak::fakes {

/// What a scripted program does.
struct ScriptedReply {
  std::string output = {};
  std::string error = {};
  ExitStatus fine = {};
  double durata = 0.0;         ///< seconds on the launcher's clock until it ends by itself
  bool ignoraTermine = false;  ///< SIGTERM does not end it
  bool tieneAperto = false;    ///< a grandchild keeps the streams open: no end of file
};

/// A launcher that starts nothing and answers by a script. A command line is the program and its
/// arguments joined by single blanks. Unknown lines are missing programs. Any thread.
class ScriptedLauncher final : public ProcessLauncher {
 public:
  /// Something done with a child, and when by the clock.
  struct Event {
    std::string what;  ///< "start", "readOutput", "readError", "wait", "terminate", "kill"
    double when;
  };

  /// Without a clock every program ends at once and events carry no time.
  explicit ScriptedLauncher(const Clock* clock = nullptr);
  ~ScriptedLauncher() override;

  /// The next answer to exactly this line. Several are given in turn, the last one for ever.
  void answer(std::string riga, ScriptedReply reply);
  /// The answer to every line without one of its own.
  void answerAll(ScriptedReply reply);

  Result<std::unique_ptr<ChildProcess>> start(const LaunchRequest& request) override;

  /// What was asked to start, in order, those that failed to start included.
  std::vector<LaunchRequest> requests() const;
  std::vector<std::string> lines() const;
  std::vector<Event> events() const;
  std::vector<std::string> eventNames() const;

 private:
  struct Journal;
  class Child;

  std::optional<ScriptedReply> pick(const std::string& riga);

  const std::shared_ptr<Journal> journal_;
  mutable std::mutex lock_;
  std::map<std::string, std::vector<ScriptedReply>> answers_;
  std::optional<ScriptedReply> other_;
  std::vector<LaunchRequest> requests_;
};

}  // namespace pellak::fakes
