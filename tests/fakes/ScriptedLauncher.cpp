#include "fakes/ScriptedLauncher.h"

#include <condition_variable>

namespace pellak::fakes {

namespace {

/// The line a request is known by.
std::string commandLine(const LaunchRequest& request) {
  std::string riga = request.percorso;
  for (const std::string& argomento : request.argomenti) riga += " " + argomento;
  return riga;
}

}  // namespace

struct ScriptedLauncher::Journal {
  explicit Journal(const Clock* usedClock) : clock(usedClock) {}

  double now() const { return clock == nullptr ? 0.0 : clock->steady(); }
  void note(std::string what) {
    const std::lock_guard hold(lock);
    events.push_back({std::move(what), now()});
  }

  const Clock* clock;
  std::mutex lock;
  std::vector<Event> events;
};

class ScriptedLauncher::Child final : public ChildProcess {
 public:
  Child(ScriptedReply reply, ChildStreams flussi, std::shared_ptr<Journal> journal)
      : reply_(std::move(reply)),
        flussi_(flussi),
        journal_(std::move(journal)),
        endsAt_(journal_->now() + reply_.durata) {}

  ReadEnd readOutput(std::string& testo) override {
    journal_->note("readOutput");
    if (flussi_ == ChildStreams::errorOnly) return ReadEnd::failed;
    testo += reply_.output;
    if (flussi_ == ChildStreams::merged) testo += reply_.error;
    return awaitEnd();
  }

  ReadEnd readError(std::string& testo) override {
    journal_->note("readError");
    if (flussi_ == ChildStreams::merged) return ReadEnd::failed;
    testo += reply_.error;
    return awaitEnd();
  }

  void giveUpReading() override {
    const std::lock_guard hold(lock_);
    givenUp_ = true;
    changed_.notify_all();
  }

  std::optional<ExitStatus> ended() override {
    const std::lock_guard hold(lock_);
    if (!fine_ && (journal_->clock == nullptr || journal_->now() >= endsAt_)) end(reply_.fine);
    return fine_;
  }

  ExitStatus wait() override {
    journal_->note("wait");
    const std::lock_guard hold(lock_);
    if (!fine_) end(reply_.fine);
    return *fine_;
  }

  void terminate() override {
    journal_->note("terminate");
    const std::lock_guard hold(lock_);
    if (!reply_.ignoraTermine) end({true, 15});
  }

  void kill() override {
    journal_->note("kill");
    const std::lock_guard hold(lock_);
    end({true, 9});
  }

 private:
  // With the lock held.
  void end(ExitStatus fine) {
    if (!fine_) fine_ = fine;
    changed_.notify_all();
  }

  // A merged or error-only stream is read before the end is looked for, so there it can't be
  // waited for.
  ReadEnd awaitEnd() {
    std::unique_lock hold(lock_);
    if (flussi_ != ChildStreams::separate) return ReadEnd::endOfFile;
    changed_.wait(hold, [this] { return givenUp_ || (fine_ && !reply_.tieneAperto); });
    return fine_ && !reply_.tieneAperto ? ReadEnd::endOfFile : ReadEnd::givenUp;
  }

  const ScriptedReply reply_;
  const ChildStreams flussi_;
  const std::shared_ptr<Journal> journal_;
  const double endsAt_;
  std::mutex lock_;
  std::condition_variable changed_;
  bool givenUp_ = false;
  std::optional<ExitStatus> fine_;
};

ScriptedLauncher::ScriptedLauncher(const Clock* clock)
    : journal_(std::make_shared<Journal>(clock)) {}

ScriptedLauncher::~ScriptedLauncher() = default;

void ScriptedLauncher::answer(std::string riga, ScriptedReply reply) {
  const std::lock_guard hold(lock_);
  answers_[std::move(riga)].push_back(std::move(reply));
}

void ScriptedLauncher::answerAll(ScriptedReply reply) {
  const std::lock_guard hold(lock_);
  other_ = std::move(reply);
}

std::optional<ScriptedReply> ScriptedLauncher::pick(const std::string& riga) {
  const auto known = answers_.find(riga);
  if (known == answers_.end()) return other_;
  std::vector<ScriptedReply>& replies = known->second;
  ScriptedReply reply = replies.front();
  if (replies.size() > 1) replies.erase(replies.begin());
  return reply;
}

Result<std::unique_ptr<ChildProcess>> ScriptedLauncher::start(const LaunchRequest& request) {
  journal_->note("start");
  const std::lock_guard hold(lock_);
  requests_.push_back(request);
  auto reply = pick(commandLine(request));
  if (!reply) return Error{ErrorKind::missing, 2, "not in the script"};
  return std::unique_ptr<ChildProcess>(
      std::make_unique<Child>(std::move(*reply), request.flussi, journal_));
}

std::vector<LaunchRequest> ScriptedLauncher::requests() const {
  const std::lock_guard hold(lock_);
  return requests_;
}

std::vector<std::string> ScriptedLauncher::lines() const {
  std::vector<std::string> lines;
  for (const LaunchRequest& request : requests()) lines.push_back(commandLine(request));
  return lines;
}

std::vector<ScriptedLauncher::Event> ScriptedLauncher::events() const {
  const std::lock_guard hold(journal_->lock);
  return journal_->events;
}

std::vector<std::string> ScriptedLauncher::eventNames() const {
  std::vector<std::string> names;
  for (Event& event : events()) names.push_back(std::move(event.what));
  return names;
}

}  // namespace pellak::fakes
