#include "platform/posix/BulkRecords.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace pellak::bulk {
namespace {

/// Reads one record from its beginning; remembers whether it ever left it.
class Reader {
 public:
  explicit Reader(std::span<const std::byte> record) : record_(record) {}

  template <class Number>
  Number number() {
    Number value{};
    if (!take(sizeof value)) return value;
    std::memcpy(&value, record_.data() + at_ - sizeof value, sizeof value);
    return value;
  }

  /// The text of an attribute reference; empty when it has none.
  std::string_view text() {
    const std::size_t field = at_;
    const auto offset = number<std::int32_t>();
    const auto length = number<std::uint32_t>();
    if (broken_ || length == 0) return {};
    const std::int64_t begin = static_cast<std::int64_t>(field) + offset;
    if (begin < 0 || begin + length > static_cast<std::int64_t>(record_.size())) {
      broken_ = true;
      return {};
    }
    const char* first = reinterpret_cast<const char*>(record_.data()) + begin;
    const void* nul = std::memchr(first, '\0', length);
    if (nul == nullptr) broken_ = true;
    return broken_ ? std::string_view{} : std::string_view(first);
  }

  bool broken() const { return broken_; }

 private:
  bool take(std::size_t bytes) {
    if (broken_ || record_.size() - at_ < bytes) {
      broken_ = true;
      return false;
    }
    at_ += bytes;
    return true;
  }

  std::span<const std::byte> record_;
  std::size_t at_ = 0;
  bool broken_ = false;
};

/// The vnode types that matter.
EntryType typeOf(std::uint32_t objectType) {
  switch (objectType) {
    case 1:
      return EntryType::regular;
    case 2:
      return EntryType::directory;
    case 5:
      return EntryType::link;
    default:
      return EntryType::other;
  }
}

struct Record {
  std::string_view name;
  EntryAttributes attributes;
};

std::optional<Record> parseRecord(std::span<const std::byte> bytes) {
  Reader reader(bytes);
  reader.number<std::uint32_t>();  // the length
  const auto common = reader.number<std::uint32_t>();
  reader.number<std::uint32_t>();  // volume
  reader.number<std::uint32_t>();  // directory
  const auto file = reader.number<std::uint32_t>();
  reader.number<std::uint32_t>();  // fork

  Record record;
  EntryAttributes& a = record.attributes;
  a.type = EntryType::other;
  if ((common & kName) != 0) record.name = reader.text();
  if ((common & kDevice) != 0) a.dev = reader.number<std::int32_t>();
  if ((common & kObjectType) != 0) a.type = typeOf(reader.number<std::uint32_t>());
  if ((common & kModified) != 0) {
    a.mtime = reader.number<std::int64_t>();
    const auto fraction = reader.number<std::int64_t>();
    // Seconds that leave the range are those of a broken record.
    if (__builtin_mul_overflow(a.mtime, std::int64_t{1'000'000'000}, &a.mtimeNs) ||
        __builtin_add_overflow(a.mtimeNs, fraction, &a.mtimeNs)) {
      a.mtimeNs = 0;
    }
  }
  if ((common & kFlags) != 0) a.flags = reader.number<std::uint32_t>();
  if ((common & kFileId) != 0) a.ino = reader.number<std::uint64_t>();
  if ((file & kTotalSize) != 0) a.size = reader.number<std::int64_t>();
  if ((file & kAllocSize) != 0) a.alloc = reader.number<std::int64_t>();
  if (reader.broken() || record.name.find('/') != std::string_view::npos) return std::nullopt;
  return record;
}

bool isSelfOrParent(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

bool parse(std::span<const std::byte> buffer, std::size_t count, EntryBatch& into) {
  for (; count > 0; --count) {
    std::uint32_t length = 0;
    if (buffer.size() < sizeof length) return false;
    std::memcpy(&length, buffer.data(), sizeof length);
    if (length == 0 || length > buffer.size()) return false;
    const std::optional<Record> record = parseRecord(buffer.first(length));
    if (!record) return false;
    if (!record->name.empty() && !isSelfOrParent(record->name)) {
      into.entries.push_back({record->name, record->attributes.type});
      into.attributes.push_back(record->attributes);
    }
    buffer = buffer.subspan(length);
  }
  return true;
}

}  // namespace pellak::bulk
