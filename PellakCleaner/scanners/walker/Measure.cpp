#include <array>
#include <atomic>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

#include "scanners/walker/FolderReader.h"
#include "scanners/walker/FolderSizes.h"
#include "scanners/walker/FreeSpace.h"
#include "scanners/walker/WalkCore.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {
namespace {

std::int64_t sum(std::int64_t a, std::int64_t b) {
  std::int64_t total = 0;
  if (__builtin_add_overflow(a, b, &total)) std::abort();
  return total;
}

/// Sums what lies below each root. Workers add up by themselves and put their part to the root's
/// total at the end of each piece of work.
class MeasureClient final : public WalkClient {
 public:
  /// `notes` and `space` may be none.
  MeasureClient(const Ambiente& ambiente, std::size_t roots, const Misurata& misurata,
                FolderNotes* notes, FreeSpace* space = nullptr)
      : ambiente_(ambiente), misurata_(misurata), notes_(notes), space_(space), roots_(roots) {}

  bool onlyRegular() const override { return false; }
  bool entersName(std::string_view) const override { return true; }
  bool filtersPaths() const override { return false; }
  bool entersPath(const std::string&) override { return true; }

  bool entersRoot(std::size_t worker, std::size_t root, const std::string& percorso) override {
    const auto attributes = ambiente_.lister.attributes(percorso);
    if (!attributes) {
      tellRefusal(ambiente_, attributes.error(), [&] { return percorso; });
      roots_[root].present = false;
      return false;
    }
    if (attributes->type == EntryType::directory) return true;
    if (attributes->type == EntryType::link) return false;
    parts_[worker].bytes = attributes->alloc;
    if (space_ != nullptr) space_->rootFile(worker, root, percorso, *attributes);
    return false;
  }

  FolderMark mark(std::size_t worker, FolderMark parent, std::string_view name) override {
    return notes_ == nullptr ? parent : notes_->folder(worker, parent, name);
  }

  void file(const FileSeen& seen, const EntryAttributes& attributes) override {
    std::int64_t& bytes = parts_[seen.worker].bytes;
    bytes = sum(bytes, attributes.alloc);
    if (space_ != nullptr) askSpace(seen, attributes);
  }

  void added(std::size_t root, std::size_t pieces) override {
    roots_[root].pieces.fetch_add(pieces, std::memory_order_relaxed);
  }

  void done(std::size_t worker, std::size_t root, FolderMark folder) override {
    Root& r = roots_[root];
    const std::int64_t part = std::exchange(parts_[worker].bytes, 0);
    if (notes_ != nullptr) notes_->add(worker, folder, part);
    std::int64_t before = r.bytes.load(std::memory_order_relaxed);
    while (!r.bytes.compare_exchange_weak(before, sum(before, part), std::memory_order_relaxed)) {
    }
    if (r.pieces.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    const std::int64_t bytes = r.bytes.load(std::memory_order_relaxed);
    const std::lock_guard<std::mutex> hold(lock_);
    misurata_(root, r.present ? std::optional(bytes) : std::nullopt);
  }

 private:
  void askSpace(const FileSeen& seen, const EntryAttributes& attributes) {
    const auto folder = space_->plain(seen.worker, attributes) ? nullptr : seen.folder->handle();
    space_->file(seen.worker, seen.root, folder.get(), seen.name, attributes);
  }

  struct Root {
    std::atomic<std::int64_t> bytes{0};
    std::atomic<std::size_t> pieces{1};
    bool present = true;
  };
  struct alignas(64) Part {
    std::int64_t bytes = 0;
  };

  const Ambiente& ambiente_;
  const Misurata& misurata_;
  FolderNotes* const notes_;
  FreeSpace* const space_;
  std::vector<Root> roots_;
  std::array<Part, kMaxListings> parts_;
  std::mutex lock_;
};

}  // namespace

std::int64_t treeSize(const Ambiente& ambiente, std::string_view percorso, const Stop& stop) {
  std::int64_t bytes = 0;
  const Misurata keep = [&](std::size_t, std::optional<std::int64_t> b) { bytes = b.value_or(0); };
  MeasureClient client(ambiente, 1, keep, nullptr);
  walkAlone(ambiente, stop, client, percorso);
  return bytes;
}

void measureTrees(const Ambiente& ambiente, std::span<const std::string> percorsi, const Stop& stop,
                  const Misurata& misurata, FolderNotes* cartelle) {
  MeasureClient client(ambiente, percorsi.size(), misurata, cartelle);
  walkTogether(ambiente, stop, client, percorsi);
}

std::vector<std::optional<std::int64_t>> measureTrees(const Ambiente& ambiente,
                                                      std::span<const std::string> percorsi,
                                                      const Stop& stop) {
  std::vector<std::optional<std::int64_t>> sizes(percorsi.size());
  measureTrees(ambiente, percorsi, stop,
               [&](std::size_t i, std::optional<std::int64_t> bytes) { sizes[i] = bytes; });
  return sizes;
}

bool sharesSpace(const Ambiente& ambiente, std::string_view cartella) {
  const auto folder = ambiente.lister.open(cartella);
  return !folder || (*folder)->sharesSpace();
}

std::vector<std::optional<Misura>> measureForTrash(const Ambiente& ambiente,
                                                   std::span<const std::string> percorsi,
                                                   const Stop& stop) {
  std::vector<std::optional<Misura>> measures(percorsi.size());
  const Misurata keep = [&](std::size_t i, std::optional<std::int64_t> bytes) {
    if (bytes) measures[i] = Misura{*bytes, 0};
  };
  FreeSpace space(ambiente);
  MeasureClient client(ambiente, percorsi.size(), keep, nullptr, &space);
  walkTogether(ambiente, stop, client, percorsi);
  const std::vector<std::int64_t> kept = space.kept(percorsi.size());
  for (std::size_t i = 0; i < measures.size(); ++i) {
    if (measures[i]) measures[i]->libera = measures[i]->byte - kept[i];
  }
  return measures;
}

}  // namespace pellak::walker
