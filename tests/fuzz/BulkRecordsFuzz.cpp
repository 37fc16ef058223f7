// Arbitrary bytes as the answer of a bulk listing: whatever is accepted must lie inside them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#include "platform/posix/BulkRecords.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t count = data[0];
  const std::span<const std::byte> buffer = std::as_bytes(std::span(data, size)).subspan(1);
  pellak::EntryBatch batch;
  if (!pellak::bulk::parse(buffer, count, batch)) return 0;
  if (batch.entries.size() != batch.attributes.size() || batch.entries.size() > count) std::abort();
  const char* begin = reinterpret_cast<const char*>(buffer.data());
  for (const pellak::ListedEntry& entry : batch.entries) {
    const std::string_view name = entry.name;
    if (name.empty() || name.find('/') != std::string_view::npos) std::abort();
    if (name.data() < begin || name.data() + name.size() >= begin + buffer.size()) std::abort();
    if (name.data()[name.size()] != '\0') std::abort();
  }
  return 0;
}
