// How much memory a duplicate search takes for each file that may be a duplicate, on a made-up
// tree of 1,000 folders with 1,000 files each.
//
//   pellak-dup-memory-bench [PERCENT [COPIES]]   so many files (10) are in sets of so many (2)
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>

#include "platform/LargeBlocks.h"
#include "platform/posix/ClockPosix.h"
#include "scanners/duplicati/ScannerDuplicati.h"

namespace {

using namespace pellak;

constexpr std::uint64_t kFolders = 1'000;
constexpr std::uint64_t kFilesEach = 1'000;
constexpr std::uint64_t kFiles = kFolders * kFilesEach;
constexpr std::uint64_t kSizes = 1'000;
constexpr std::int64_t kSmallest = 70'000;  // more than what is read in the first place

std::int64_t sizeOf(std::uint64_t file) {
  return kSmallest + static_cast<std::int64_t>(file % kSizes);
}

/// Which files are equal. Those of one size are numbered in turn; of the first of them, so many
/// one after another make a set.
struct Sets {
  std::uint64_t percent = 10;
  std::uint64_t copies = 2;

  std::uint64_t contentOf(std::uint64_t file) const {
    const std::uint64_t turn = file / kSizes;
    const bool copied = turn < kFiles / kSizes * percent / 100;
    return copied ? turn / copies * copies * kSizes + file % kSizes : file;
  }
};

/// The root holds folders, they hold files.
class MadeFolder final : public DirectoryHandle {
 public:
  explicit MadeFolder(std::int64_t folder) : folder_(folder) {}

  Result<void> read(EntryBatch& into) override {
    const std::uint64_t count = folder_ < 0 ? kFolders : kFilesEach;
    for (std::uint64_t i = 0; i < count; ++i) addTo(into, i);
    return {};
  }
  Result<std::vector<std::string>> names() override { return std::vector<std::string>(); }
  Result<EntryAttributes> attributes(const char*) const override {
    return Error{ErrorKind::missing, 0, {}};
  }
  Result<std::shared_ptr<DirectoryHandle>> open(const char* name) const override {
    return std::shared_ptr<DirectoryHandle>(
        std::make_shared<MadeFolder>(std::strtoll(name + std::strlen("folder "), nullptr, 10)));
  }

 private:
  void addTo(EntryBatch& into, std::uint64_t i) const {
    std::array<char, 64> name{};
    EntryAttributes attributes;
    if (folder_ < 0) {
      std::snprintf(name.data(), name.size(), "folder %06llu", static_cast<unsigned long long>(i));
      attributes.type = EntryType::directory;
    } else {
      const std::uint64_t file = static_cast<std::uint64_t>(folder_) * kFilesEach + i;
      std::snprintf(name.data(), name.size(), "some picture %09llu.jpeg",
                    static_cast<unsigned long long>(file));
      attributes.type = EntryType::regular;
      attributes.size = sizeOf(file);
      attributes.ino = file + 1;
    }
    const std::size_t length = std::strlen(name.data());
    const auto room = into.room(length + 1);
    std::memcpy(room.data(), name.data(), length + 1);
    into.keep(length + 1);
    const auto* text = reinterpret_cast<const char*>(room.data());
    into.entries.push_back({{text, length}, attributes.type});
    into.attributes.push_back(attributes);
  }

  const std::int64_t folder_;  ///< negative: the root
};

class MadeLister final : public DirectoryLister {
 public:
  Result<std::shared_ptr<DirectoryHandle>> open(std::string_view) override {
    return std::shared_ptr<DirectoryHandle>(std::make_shared<MadeFolder>(-1));
  }
  Result<EntryAttributes> attributes(std::string_view percorso) override {
    EntryAttributes entry;
    const bool file = percorso.ends_with(".jpeg");
    entry.type = file ? EntryType::regular : EntryType::directory;
    entry.nlink = 1;
    return entry;
  }
  bool emptyIsCertain() const override { return true; }
  std::size_t descriptorBudget() const override { return 256; }
};

class MadeFile final : public OpenFile {
 public:
  MadeFile(std::uint64_t file, std::uint64_t content) : file_(file), content_(content) {}

  Result<FileMark> mark() const override {
    FileMark mark;
    mark.regular = true;
    mark.size = sizeOf(file_);
    mark.ino = file_ + 1;
    return mark;
  }
  Result<std::size_t> readAt(std::int64_t offset, std::span<std::byte> into) const override {
    const auto left = static_cast<std::size_t>(std::max<std::int64_t>(0, sizeOf(file_) - offset));
    const auto bytes = into.first(std::min(left, into.size()));
    std::memset(bytes.data(), 'x', bytes.size());
    std::memcpy(bytes.data(), &content_, std::min(sizeof content_, bytes.size()));
    return bytes.size();
  }

 private:
  const std::uint64_t file_;
  const std::uint64_t content_;
};

class MadeReader final : public FileReader {
 public:
  explicit MadeReader(Sets sets) : sets_(sets) {}
  Result<std::unique_ptr<OpenFile>> open(std::string_view percorso, ReadPlan) override {
    const std::string number(percorso.substr(percorso.rfind(' ') + 1));
    const std::uint64_t file = std::strtoull(number.c_str(), nullptr, 10);
    return std::unique_ptr<OpenFile>(std::make_unique<MadeFile>(file, sets_.contentOf(file)));
  }
  bool writable(std::string_view) override { return true; }

 private:
  const Sets sets_;
};

/// One of the process's own figures, in bytes.
std::int64_t figure(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::int64_t kibibytes = 0;
    if (word == name && status >> kibibytes) return kibibytes * 1024;
  }
  return 0;
}

}  // namespace

int main(int count, char** values) {
  returnLargeBlocks();  // as the program does
  Sets sets;
  if (count > 1) sets.percent = std::strtoull(values[1], nullptr, 10);
  if (count > 2) sets.copies = std::max(1ULL, std::strtoull(values[2], nullptr, 10));
  Regole regole;
  regole.duplicati.minSizeMb = 0;
  regole.duplicati.roots = {"/home/somebody"};
  const Config impostazioni;
  Contatore contatore("/");
  MadeLister lister;
  posix::ClockPosix clock;
  MadeReader reader(sets);
  const ScanContext ctx{regole, impostazioni, "/", {}, {}, contatore, lister, clock};
  const std::int64_t before = figure("VmRSS:");
  const Finding finding = scanners::scanDuplicati(ctx, reader);
  const std::int64_t peak = figure("VmHWM:") - before;
  std::printf("%llu files, %zu sets: %.0f bytes a file at most\n",
              static_cast<unsigned long long>(kFiles), finding.groups.size(),
              static_cast<double>(peak) / static_cast<double>(kFiles));
  return 0;
}
