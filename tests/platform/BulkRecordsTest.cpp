#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "platform/posix/BulkRecords.h"

namespace pellak::bulk {
namespace {

/// Packs records as the system does.
class Packer {
 public:
  template <class Number>
  Packer& put(Number value) {
    const auto* bytes = reinterpret_cast<const std::byte*>(&value);
    bytes_.insert(bytes_.end(), bytes, bytes + sizeof value);
    return *this;
  }

  /// Length (to be filled in) and the masks of what follows.
  Packer& begin(std::uint32_t common, std::uint32_t file) {
    start_ = bytes_.size();
    return put(std::uint32_t{0}).put(common).put(0U).put(0U).put(file).put(0U);
  }

  /// The reference to a name that `end` puts behind the attributes.
  Packer& name() {
    name_ = bytes_.size();
    return put(std::int32_t{0}).put(std::uint32_t{0});
  }

  Packer& end(const std::string& name = {}) {
    if (!name.empty()) {
      patch(name_, static_cast<std::uint32_t>(bytes_.size() - name_));
      patch(name_ + 4, static_cast<std::uint32_t>(name.size() + 1));
      for (const char c : name) put(c);
      put('\0');
    }
    while (bytes_.size() % 8 != 0) put('\0');
    patch(start_, static_cast<std::uint32_t>(bytes_.size() - start_));
    return *this;
  }

  Packer& whole(const std::string& name, std::uint32_t type, std::int64_t size) {
    begin(kCommonMask, kFileMask).name().put(std::int32_t{-5}).put(type);
    put(std::int64_t{1700000000}).put(std::int64_t{999});
    put(std::uint32_t{0x8000}).put(std::uint64_t{77}).put(size).put(size + 512);
    return end(name);
  }

  void patch(std::size_t at, std::uint32_t value) { std::memcpy(&bytes_[at], &value, 4); }
  std::span<const std::byte> bytes() const { return bytes_; }
  std::size_t size() const { return bytes_.size(); }

 private:
  std::vector<std::byte> bytes_;
  std::size_t start_ = 0;
  std::size_t name_ = 0;
};

TEST(BulkRecordsTest, ReadsWholeRecordsOneAfterTheOther) {
  Packer packed;
  packed.whole("file", 1, 1000).whole("folder\xFF", 2, 0).whole("link", 5, 4).whole("pipe", 7, 0);
  EntryBatch batch;
  ASSERT_TRUE(parse(packed.bytes(), 4, batch));
  ASSERT_EQ(batch.entries.size(), 4U);
  ASSERT_EQ(batch.attributes.size(), 4U);
  EXPECT_EQ(batch.entries[0].name, "file");
  EXPECT_EQ(batch.entries[1].name, "folder\xFF");
  EXPECT_EQ(batch.entries[0].type, EntryType::regular);
  EXPECT_EQ(batch.entries[1].type, EntryType::directory);
  EXPECT_EQ(batch.entries[2].type, EntryType::link);
  EXPECT_EQ(batch.entries[3].type, EntryType::other);
  EXPECT_EQ(batch.entries[3].name.data()[4], '\0');
  const EntryAttributes& a = batch.attributes[0];
  EXPECT_EQ(a.type, EntryType::regular);
  EXPECT_EQ(a.dev, -5);
  EXPECT_EQ(a.mtime, 1700000000);
  EXPECT_EQ(a.flags, 0x8000U);
  EXPECT_EQ(a.ino, 77U);
  EXPECT_EQ(a.size, 1000);
  EXPECT_EQ(a.alloc, 1512);
  EXPECT_EQ(a.mode, 0U);
}

TEST(BulkRecordsTest, TakesWhatAMaskLeavesOutAsNothing) {
  Packer packed;
  packed.begin(kReturned | kName | kFileId, kAllocSize).name();
  packed.put(std::uint64_t{9}).put(std::int64_t{4096}).end("x");
  packed.begin(kReturned | kFileId, 0).put(std::uint64_t{1}).end();  // nameless
  packed.begin(kReturned | kName, 0).name().end();                   // an empty name
  packed.whole("..", 2, 0).whole("last", 1, 1);
  EntryBatch batch;
  ASSERT_TRUE(parse(packed.bytes(), 5, batch));
  ASSERT_EQ(batch.entries.size(), 2U);
  EXPECT_EQ(batch.entries[0].name, "x");
  EXPECT_EQ(batch.entries[0].type, EntryType::other);
  EXPECT_EQ(batch.attributes[0].ino, 9U);
  EXPECT_EQ(batch.attributes[0].alloc, 4096);
  EXPECT_EQ(batch.attributes[0].size, 0);
  EXPECT_EQ(batch.entries[1].name, "last");
}

TEST(BulkRecordsTest, RefusesWhatLiesOutsideTheBuffer) {
  Packer good;
  good.whole("name", 1, 5);
  EntryBatch batch;
  ASSERT_TRUE(parse(good.bytes(), 1, batch));
  EXPECT_FALSE(parse(good.bytes(), 2, batch)) << "a record more than there is";
  for (std::size_t bytes = 0; bytes < good.size(); ++bytes) {
    EXPECT_FALSE(parse(good.bytes().first(bytes), 1, batch)) << bytes;
  }
  const auto refused = [&](std::size_t at, std::uint32_t value) {
    Packer broken = good;
    broken.patch(at, value);
    EntryBatch into;
    return !parse(broken.bytes(), 1, into);
  };
  EXPECT_TRUE(refused(0, 0)) << "no length";
  EXPECT_TRUE(refused(0, 0xFFFFFFFF));
  EXPECT_TRUE(refused(0, 3)) << "shorter than its own length field";
  EXPECT_TRUE(refused(0, 40)) << "attributes beyond the record";
  EXPECT_TRUE(refused(24, 0x7FFFFFFF)) << "name after the record";
  EXPECT_TRUE(refused(24, 0x80000000)) << "name before the record";
  EXPECT_TRUE(refused(28, 0xFFFFFFFF)) << "name too long";
  EXPECT_TRUE(refused(28, 4)) << "name without an end";
  Packer slash;
  slash.whole("../up", 1, 5);
  EXPECT_FALSE(parse(slash.bytes(), 1, batch)) << "a name is one component";
}

}  // namespace
}  // namespace pellak::bulk
