#include "fakes/MemoryLister.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace pellak::fakes {
namespace {

using Node = MemoryLister::Node;

Error missing() { return {ErrorKind::missing, ENOENT, "missing"}; }
Error denied() { return {ErrorKind::denied, EACCES, "denied"}; }
Error failed() { return {ErrorKind::failed, EIO, "failed"}; }

void raise(std::atomic<int>& most, int now) {
  int before = most.load();
  while (before < now && !most.compare_exchange_weak(before, now)) {
  }
}

class MemoryHandle final : public DirectoryHandle {
 public:
  MemoryHandle(MemoryLister& lister, std::shared_ptr<Node> node)
      : lister_(lister), node_(std::move(node)) {
    ++lister_.opened;
    raise(lister_.mostOpen, ++lister_.openNow);
  }
  ~MemoryHandle() override { --lister_.openNow; }

  Result<void> read(EntryBatch& into) override {
    raise(lister_.mostReads, ++lister_.readsNow);
    if (const int millis = lister_.readMillis) {
      std::this_thread::sleep_for(std::chrono::milliseconds(millis));
    }
    for (const auto& [name, child] : node_->children) append(into, name, child->attributes);
    --lister_.readsNow;
    if (node_->readFails) return failed();
    return {};
  }

  Result<std::vector<std::string>> names() override {
    ++lister_.nameReads;
    std::vector<std::string> found;
    for (const auto& [name, child] : node_->children) found.push_back(name);
    return found;
  }

  Result<EntryAttributes> attributes(const char* name) const override {
    const auto child = node_->children.find(std::string_view(name));
    if (child == node_->children.end()) return missing();
    if (child->second->recordRefused) return denied();
    return child->second->attributes;
  }

  Result<std::shared_ptr<DirectoryHandle>> open(const char* name) const override {
    const auto child = node_->children.find(std::string_view(name));
    if (child == node_->children.end()) return missing();
    return openNode(lister_, child->second);
  }

  bool sharesSpace() const override { return lister_.shares; }

  Result<OwnSpace> ownSpace(const char* name) const override {
    const auto record = attributes(name);
    if (!record) return record.error();
    const std::int64_t own = node_->children.find(name)->second->own.value_or(record->alloc);
    return OwnSpace{own, record->nlink};
  }

  static Result<std::shared_ptr<DirectoryHandle>> openNode(MemoryLister& lister,
                                                           const std::shared_ptr<Node>& node) {
    if (!node || node->attributes.type != EntryType::directory) return missing();
    if (node->refused) return denied();
    return std::shared_ptr<DirectoryHandle>(std::make_shared<MemoryHandle>(lister, node));
  }

 private:
  void append(EntryBatch& into, const std::string& name, EntryAttributes attributes) const {
    char* place = reinterpret_cast<char*>(into.room(name.size() + 1).data());
    std::memcpy(place, name.c_str(), name.size() + 1);
    into.keep(name.size() + 1);
    into.entries.push_back(
        {{place, name.size()}, lister_.tellsTypes ? attributes.type : EntryType::unknown});
    if (!lister_.carriesAttributes) return;
    attributes.mode = attributes.nlink = attributes.uid = attributes.gid = 0;
    into.attributes.push_back(attributes);
  }

  MemoryLister& lister_;
  const std::shared_ptr<Node> node_;
};

std::string_view parentOf(std::string_view percorso) {
  return percorso.substr(0, percorso.rfind('/'));
}

std::string nameOf(std::string_view percorso) {
  return std::string(percorso.substr(percorso.rfind('/') + 1));
}

std::uint32_t modeOf(EntryType type) {
  switch (type) {
    case EntryType::directory:
      return 0040755;
    case EntryType::link:
      return 0120777;
    case EntryType::regular:
      return 0100640;
    default:
      return 0010600;
  }
}

}  // namespace

std::shared_ptr<Node> MemoryLister::find(std::string_view percorso) const {
  std::shared_ptr<Node> node = root_;
  while (node && !percorso.empty()) {
    percorso.remove_prefix(1);
    const std::string_view name = percorso.substr(0, percorso.find('/'));
    percorso.remove_prefix(name.size());
    if (name.empty()) continue;
    const auto child = node->children.find(name);
    node = child == node->children.end() ? nullptr : child->second;
  }
  return node;
}

MemoryLister::Node& MemoryLister::add(std::string_view percorso, EntryType type) {
  if (const auto there = find(percorso)) return *there;
  auto node = std::make_shared<Node>();
  node->attributes.type = type;
  node->attributes.mode = modeOf(type);
  node->attributes.nlink = 1;
  node->attributes.ino = ++lastIno_;
  node->attributes.dev = 7;
  if (type == EntryType::directory) node->attributes.size = node->attributes.alloc = 4096;
  if (type == EntryType::link) node->attributes.alloc = 4096;
  return *add(parentOf(percorso), EntryType::directory)
              .children.emplace(nameOf(percorso), std::move(node))
              .first->second;
}

MemoryLister::Node& MemoryLister::file(std::string_view percorso, std::int64_t size) {
  Node& node = add(percorso, EntryType::regular);
  node.attributes.size = size;
  node.attributes.alloc = (size + 4095) / 4096 * 4096;
  return node;
}

void MemoryLister::hardLink(std::string_view percorso, std::string_view existing) {
  const std::shared_ptr<Node> node = find(existing);
  ++node->attributes.nlink;
  folder(parentOf(percorso)).children.emplace(nameOf(percorso), node);
}

Result<std::shared_ptr<DirectoryHandle>> MemoryLister::open(std::string_view percorso) {
  return MemoryHandle::openNode(*this, find(percorso));
}

MemoryLister::Node& MemoryLister::link(std::string_view percorso, std::string_view meta) {
  if (!meta.empty()) links_[std::string(percorso)] = meta;
  return add(percorso, EntryType::link);
}

Result<std::string> MemoryLister::resolve(std::string_view percorso) {
  std::string real(percorso);
  for (const auto& [link, target] : links_) {
    if (real == link || real.starts_with(link + "/")) real.replace(0, link.size(), target);
  }
  if (find(real) == nullptr) return missing();
  return real;
}

Result<EntryAttributes> MemoryLister::attributes(std::string_view percorso) {
  if (perRecord) {
    if (const auto esito = perRecord(std::string(percorso)); !esito) return esito.error();
  }
  const std::shared_ptr<Node> node = find(percorso);
  if (!node) return missing();
  if (node->recordRefused) return denied();
  return node->attributes;
}

}  // namespace pellak::fakes
