#include "scanners/walker/Folder.h"

namespace pellak::walker {

FolderRef::FolderRef(const FolderRef& other) : folder_(other.folder_) {
  if (folder_ != nullptr) folder_->owners_.fetch_add(1, std::memory_order_relaxed);
}

FolderRef::~FolderRef() {
  while (folder_ != nullptr && folder_->owners_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    const std::unique_ptr<Folder> last(folder_);
    folder_ = std::exchange(last->parent_.folder_, nullptr);
  }
}

FolderRef Folder::make(FolderRef parent, std::string name,
                       std::shared_ptr<DirectoryHandle> handle) {
  std::unique_ptr<Folder> made(new Folder(std::move(parent), std::move(name), std::move(handle)));
  return FolderRef(made.release());
}

std::string Folder::path() const {
  std::vector<const Folder*> chain;
  std::size_t length = 0;
  for (const Folder* folder = this; folder != nullptr; folder = folder->parent_.get()) {
    chain.push_back(folder);
    length += folder->name_.size() + 1;
  }
  std::string percorso = chain.back()->name_;
  percorso.reserve(length);
  for (std::size_t i = chain.size() - 1; i-- > 0;) appendNome(percorso, chain[i]->name_);
  return percorso;
}

}  // namespace pellak::walker
