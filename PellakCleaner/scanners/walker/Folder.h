#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Guarded.h"
#include "platform/DirectoryLister.h"

namespace pellak::walker {

class Folder;

/// Shared ownership of a folder of the walk. Letting go of the last folder of a chain takes the
/// chain apart step by step, so that its length costs no stack.
class FolderRef {
 public:
  FolderRef() = default;
  explicit FolderRef(Folder* adopted) : folder_(adopted) {}
  FolderRef(const FolderRef& other);
  FolderRef(FolderRef&& other) noexcept : folder_(std::exchange(other.folder_, nullptr)) {}
  FolderRef& operator=(FolderRef other) noexcept {
    std::swap(folder_, other.folder_);
    return *this;
  }
  ~FolderRef();

  Folder* get() const { return folder_; }
  Folder* operator->() const { return folder_; }
  explicit operator bool() const { return folder_ != nullptr; }

 private:
  Folder* folder_ = nullptr;
};

/// A folder that has been read while something below it is still to be visited. Knows its parent
/// and its own name, from which paths are built only when somebody needs one. Any thread.
class Folder {
 public:
  /// A root when `parent` is empty: then `name` is its path.
  static FolderRef make(FolderRef parent, std::string name,
                        std::shared_ptr<DirectoryHandle> handle);

  const FolderRef& parent() const { return parent_; }
  const std::string& name() const { return name_; }
  std::string path() const;

  /// The open folder; empty once dropped.
  std::shared_ptr<DirectoryHandle> handle() const {
    return handle_.with([](const auto& handle) { return handle; });
  }
  bool isOpen() const {
    return handle_.with([](const auto& handle) { return handle != nullptr; });
  }
  void setHandle(std::shared_ptr<DirectoryHandle> handle) {
    handle_.with([&](auto& held) { held.swap(handle); });
  }
  /// Closes the folder as far as this object is concerned. It can be opened again.
  void dropHandle() { setHandle(nullptr); }

  /// Claims are held by work that will use the handle; with the last one it is dropped. A new
  /// folder has one claim.
  void claim() { claims_.fetch_add(1, std::memory_order_relaxed); }
  void release() {
    if (claims_.fetch_sub(1, std::memory_order_acq_rel) == 1) dropHandle();
  }

 private:
  friend class FolderRef;

  Folder(FolderRef parent, std::string name, std::shared_ptr<DirectoryHandle> handle)
      : parent_(std::move(parent)), name_(std::move(name)), handle_(std::move(handle)) {}

  FolderRef parent_;
  const std::string name_;
  Guarded<std::shared_ptr<DirectoryHandle>> handle_;
  std::atomic<int> claims_{1};
  std::atomic<int> owners_{1};
};

}  // namespace pellak::walker
