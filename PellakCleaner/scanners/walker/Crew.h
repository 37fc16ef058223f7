#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "scanners/walker/Folder.h"
#include "scanners/walker/FolderReader.h"

namespace pellak::walker {

/// A folder to be read. Without a parent it is a root and `name` its path.
struct FolderTask {
  FolderRef parent;
  std::string name;
  std::size_t root = 0;
  std::uint64_t mark = 0;  ///< the client's, see WalkCore.h
};

/// A part of a folder that has been read already.
struct SliceTask {
  FolderRef folder;
  std::shared_ptr<const Listing> listing;
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t root = 0;
  std::uint64_t mark = 0;
};

using Task = std::variant<FolderTask, SliceTask>;

/// The threads of one walk and the stack of work that they hand to each other. A worker does its
/// own work from its own stack and gives some away when `hungry` says that somebody could use it.
/// Threads are started one by one as there is work for them, and joined by `run`.
class Crew {
 public:
  /// What each thread does; it returns when `take` has nothing any more. Must not throw.
  using Body = std::function<void(std::size_t worker)>;

  Crew(std::size_t most, std::vector<Task> first, Body body);

  /// Runs the work and returns when all of it is done or `end` was called. When the system gives
  /// no thread at all the work is done on the calling one.
  void run();

  /// The next task of the shared stack. Waits while others may still give some.
  std::optional<Task> take();

  /// Whether a thread waits for work, or could be started. Cheap.
  bool hungry() const { return hungry_.load(std::memory_order_relaxed); }

  void give(std::vector<Task> tasks);

  /// No more work for anybody; what is on the stack is dropped.
  void end();

 private:
  bool startOne();  // all three: with the lock held
  void finish();
  void updateHunger();

  const Body body_;
  std::mutex lock_;
  std::condition_variable work_;  ///< for workers: a task came, or the end
  std::condition_variable ended_;
  std::vector<Task> stack_;
  std::vector<std::thread> threads_;
  std::size_t
      allowed_;  ///< threads that may exist; fewer than asked for when the system has no more
  std::size_t started_ = 0;
  std::size_t waiting_ = 0;
  bool over_ = false;
  std::atomic<bool> hungry_{false};
};

}  // namespace pellak::walker
