#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "fakes/CartellaTemporanea.h"
#include "platform/linux/SharedExtents.h"

namespace pellak::native {
namespace {

TEST(SharedExtents, OnlyWhatSurelyIsTheFilesOwnCounts) {
  const auto extent = [](std::uint64_t length, std::uint32_t flags) {
    fiemap_extent one = {};
    one.fe_length = length;
    one.fe_flags = flags;
    return one;
  };
  const std::vector<fiemap_extent> extents = {
      extent(8192, 0),
      extent(4096, FIEMAP_EXTENT_UNWRITTEN | FIEMAP_EXTENT_MERGED),
      extent(1 << 20, FIEMAP_EXTENT_SHARED),
      extent(300, FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_NOT_ALIGNED),
      extent(131'072, FIEMAP_EXTENT_ENCODED),
      extent(131'072, FIEMAP_EXTENT_ENCODED | FIEMAP_EXTENT_SHARED | FIEMAP_EXTENT_LAST)};
  EXPECT_EQ(ownBytes(extents), 8192 + 4096 + 4096);
}

TEST(SharedExtents, AFileOfManyPiecesIsReadToItsEnd) {
  const fakes::CartellaTemporanea folder;
  const std::string path = folder / "a";
  const int file = ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  for (off_t piece = 0; piece < 300; ++piece) {
    ASSERT_EQ(::pwrite(file, "x", 1, piece * 65'536), 1);
  }
  ASSERT_EQ(::fsync(file), 0);
  ::close(file);
  const int parent = ::open(folder.percorso().c_str(), O_RDONLY | O_CLOEXEC);
  const auto own = ownExtents(parent, "a");
  ::close(parent);
  if (!own) GTEST_SKIP() << "the file system tells no extents";
  EXPECT_EQ(own->nlink, 1U);
  struct stat record = {};
  ASSERT_EQ(::stat(path.c_str(), &record), 0);
  // The record may count blocks that only list the pieces.
  EXPECT_GE(own->bytes, 300 * 4096);
  EXPECT_LE(own->bytes, record.st_blocks * 512);
}

}  // namespace
}  // namespace pellak::native
