#include "scanners/walker/WalkCore.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "PellakCore/base/ThreadSetting.h"
#include "scanners/walker/Crew.h"
#include "scanners/walker/FolderReader.h"
#include "scanners/walker/OpenFolders.h"

namespace pellak::walker {
namespace {

/// Between two looks at whether somebody is out of work.
constexpr std::size_t kSlice = 128;

/// What the workers of one walk share.
struct Walk {
  const Ambiente& ambiente;
  const Stop& stop;
  WalkClient& client;
  Crew* crew = nullptr;  ///< none when a single thread walks
  std::mutex stopLock = {};
  std::atomic<bool> cancelled{false};

  /// Asks the stop predicate, unless a stop is known already.
  bool stopped() {
    if (cancelled.load(std::memory_order_relaxed)) return true;
    if (!stop) return false;
    const std::lock_guard<std::mutex> hold(stopLock);
    if (!cancelled.load(std::memory_order_relaxed) && stop()) {
      cancelled.store(true, std::memory_order_relaxed);
    }
    return cancelled.load(std::memory_order_relaxed);
  }
};

class Worker {
 public:
  Worker(Walk& walk, std::size_t index, std::size_t allowance)
      : walk_(walk), index_(index), folders_(walk.ambiente.lister, allowance) {}

  void run() {
    while (std::optional<Task> task = next()) {
      const auto [root, mark] =
          std::visit([](const auto& t) { return std::pair(t.root, t.mark); }, *task);
      std::visit([this](auto& t) { execute(t); }, *task);
      if (walk_.cancelled.load(std::memory_order_relaxed)) return;
      walk_.client.done(index_, root, mark);
    }
  }

  void push(Task task) { own_.push_back(std::move(task)); }

 private:
  std::optional<Task> next() {
    if (own_.empty()) return walk_.crew != nullptr ? walk_.crew->take() : std::nullopt;
    Task task = std::move(own_.back());
    own_.pop_back();
    return task;
  }

  void execute(FolderTask& task);
  void execute(SliceTask& task);
  bool enters(const FolderTask& task);
  void addFolder(const SliceTask& of, std::string_view name);
  void visitAll(const SliceTask& task);
  void visit(const SliceTask& task, std::size_t begin, std::size_t end);
  bool hungry() const { return walk_.crew != nullptr && walk_.crew->hungry(); }
  void shareFolders(std::size_t kept);
  void shareSlice(const SliceTask& task, std::size_t begin, std::size_t end);

  static std::string pathOf(const FolderTask& task) {
    if (!task.parent) return task.name;
    std::string percorso = task.parent->path();
    appendNome(percorso, task.name);
    return percorso;
  }

  Walk& walk_;
  const std::size_t index_;
  OpenFolders folders_;
  std::vector<Task> own_;
  std::shared_ptr<Listing> listing_;  ///< used again for each folder unless slices were given away
};

bool Worker::enters(const FolderTask& task) {
  if (!task.parent && !walk_.client.entersRoot(index_, task.root, task.name)) return false;
  if (walk_.stopped()) return false;
  return !walk_.client.filtersPaths() || walk_.client.entersPath(pathOf(task));
}

void Worker::execute(FolderTask& task) {
  if (!listing_) listing_ = std::make_shared<Listing>();
  const bool read =
      enters(task) && readFolder(
                          walk_.ambiente, [&] { return folders_.open(task.parent, task.name); },
                          [&] { return pathOf(task); }, *listing_);
  if (task.parent) task.parent->release();
  if (read && !listing_->batch.entries.empty()) {
    SliceTask all;
    all.folder = Folder::make(std::move(task.parent), std::move(task.name), listing_->handle);
    all.listing = listing_;
    all.end = listing_->batch.entries.size();
    all.root = task.root;
    all.mark = task.mark;
    for (const ListedEntry& entry : listing_->batch.entries) {
      if (entry.type == EntryType::directory) addFolder(all, entry.name);
    }
    execute(all);
  }
  if (listing_) listing_->reset();
}

void Worker::execute(SliceTask& task) {
  visitAll(task);
  task.folder->release();
  if (task.folder->isOpen()) folders_.keep(task.folder);
}

void Worker::addFolder(const SliceTask& of, std::string_view name) {
  if (!walk_.client.entersName(name)) return;
  if (staysOut(walk_.ambiente, name, [&] { return of.folder->path(); })) return;
  of.folder->claim();
  walk_.client.added(of.root, 1);
  push(FolderTask{of.folder, std::string(name), of.root, walk_.client.mark(index_, of.mark, name)});
}

void Worker::visitAll(const SliceTask& task) {
  std::size_t end = task.end;
  for (std::size_t begin = task.begin; begin < end; begin += kSlice) {
    if (walk_.cancelled.load(std::memory_order_relaxed)) return;
    if (hungry()) {
      const std::size_t left = end - begin;
      if (!own_.empty()) {
        shareFolders(own_.size() / 2);
      } else if (left > 2 * kSlice) {
        shareSlice(task, begin + left / 2, end);
        end = begin + left / 2;
      }
    }
    visit(task, begin, std::min(end, begin + kSlice));
  }
}

void Worker::visit(const SliceTask& task, std::size_t begin, std::size_t end) {
  visitEntries(
      walk_.ambiente, *task.listing, begin, end, walk_.client.onlyRegular(),
      [&] { return task.folder->path(); },
      [&](const ListedEntry& entry) {
        // Folders known as such were taken when the folder was read.
        if (entry.type == EntryType::unknown) addFolder(task, entry.name);
      },
      [&](std::string_view name, const EntryAttributes& attributes) {
        walk_.client.file({index_, task.root, task.folder, name}, attributes);
      });
}

/// Gives away the oldest folders, which lie nearest to the root; the newest `kept` stay.
void Worker::shareFolders(std::size_t kept) {
  const auto from = own_.begin();
  const auto to = own_.end() - static_cast<std::ptrdiff_t>(kept);
  walk_.crew->give({std::make_move_iterator(from), std::make_move_iterator(to)});
  own_.erase(from, to);
}

void Worker::shareSlice(const SliceTask& task, std::size_t begin, std::size_t end) {
  SliceTask part = task;
  part.begin = begin;
  part.end = end;
  part.folder->claim();
  walk_.client.added(task.root, 1);
  std::vector<Task> parts;
  parts.emplace_back(std::move(part));
  walk_.crew->give(std::move(parts));
  if (listing_ == task.listing) listing_.reset();
}

/// Descriptors for the folders that one of `workers` keeps open.
std::size_t allowanceOf(const Ambiente& ambiente, std::size_t workers) {
  return std::max<std::size_t>(1, ambiente.lister.descriptorBudget() / workers);
}

}  // namespace

void walkAlone(const Ambiente& ambiente, const Stop& stop, WalkClient& client,
               std::string_view radice) {
  Walk walk{ambiente, stop, client};
  Worker worker(walk, 0, allowanceOf(ambiente, 1));
  worker.push(FolderTask{{}, std::string(radice)});
  worker.run();
  if (walk.cancelled) throw ScanCancelled{};
}

void walkTogether(const Ambiente& ambiente, const Stop& stop, WalkClient& client,
                  std::span<const std::string> radici) {
  std::vector<Task> roots;
  roots.reserve(radici.size());
  for (std::size_t i = radici.size(); i-- > 0;) roots.emplace_back(FolderTask{{}, radici[i], i, i});

  Walk walk{ambiente, stop, client};
  std::mutex faultLock;
  std::exception_ptr fault;
  const std::size_t allowance = allowanceOf(ambiente, kMaxListings);
  // Where others come first, one at a time: what the disk has begun for us they wait for.
  const std::size_t most = threadSetting() == nullptr ? kMaxListings : 1;
  Crew crew(most, std::move(roots), [&](std::size_t index) {
    try {
      Worker(walk, index, allowance).run();
    } catch (...) {
      const std::lock_guard<std::mutex> hold(faultLock);
      if (!fault) fault = std::current_exception();
      walk.cancelled = true;
    }
    if (walk.cancelled) walk.crew->end();
  });
  walk.crew = &crew;
  crew.run();
  if (fault) std::rethrow_exception(fault);
  if (walk.cancelled) throw ScanCancelled{};
}

}  // namespace pellak::walker
