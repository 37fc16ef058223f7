#include "scanners/walker/OpenFolders.h"

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace pellak::walker {
namespace {

constexpr int kTries = 5;

bool descriptorsRanOut(const Error& error) {
  return error.code == static_cast<int>(std::errc::too_many_files_open) ||
         error.code == static_cast<int>(std::errc::too_many_files_open_in_system);
}

}  // namespace

Result<std::shared_ptr<DirectoryHandle>> OpenFolders::open(const FolderRef& parent,
                                                           const std::string& name) {
  Result<Handle> opened = tryOpen(parent, name);
  for (int i = 1; i < kTries && !opened && descriptorsRanOut(opened.error()); ++i) {
    dropAll();
    if (i > 1) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    opened = tryOpen(parent, name);
  }
  return opened;
}

Result<OpenFolders::Handle> OpenFolders::tryOpen(const FolderRef& parent, const std::string& name) {
  if (!parent) return lister_.open(name);
  Result<Handle> folder = handleOf(parent);
  return folder ? (*folder)->open(name.c_str()) : folder;
}

Result<OpenFolders::Handle> OpenFolders::handleOf(const FolderRef& folder) {
  Handle handle = folder->handle();
  if (handle) return handle;
  std::vector<FolderRef> closed;
  for (FolderRef at = folder; at && !(handle = at->handle()); at = at->parent()) {
    closed.push_back(at);
  }
  for (; !closed.empty(); closed.pop_back()) {
    const std::string& name = closed.back()->name();
    Result<Handle> opened = handle ? handle->open(name.c_str()) : lister_.open(name);
    if (!opened) return opened;
    handle = std::move(opened).value();
    closed.back()->setHandle(handle);
    keep(closed.back());
  }
  return handle;
}

void OpenFolders::keep(const FolderRef& folder) {
  while (!kept_.empty() && !kept_.back()->isOpen()) kept_.pop_back();
  kept_.push_back(folder);
  if (kept_.size() <= allowance_) return;
  kept_.front()->dropHandle();
  kept_.pop_front();
}

void OpenFolders::dropAll() {
  for (const FolderRef& folder : kept_) folder->dropHandle();
  kept_.clear();
}

}  // namespace pellak::walker
