#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "PellakCore/base/Esadecimale.h"
#include "platform/linux/Sha256OpenSsl.h"
#include "platform/posix/Sha256Instructions.h"

namespace pellak {
namespace {

std::span<const std::byte> bytes(const std::string& text) {
  return std::as_bytes(std::span(text.data(), text.size()));
}

void expectPublishedDigests(TwinSha256& sha) {
  EXPECT_EQ(esadecimale(sha.finish(0)),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  sha.update(1, bytes("abc"));
  EXPECT_EQ(esadecimale(sha.finish(1)),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  const std::string long56 = "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq";
  sha.updateBoth(bytes(long56), bytes("abc"));
  EXPECT_EQ(esadecimale(sha.finish(0)),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(esadecimale(sha.finish(1)),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  const std::string million(1'000'000, 'a');
  sha.updateBoth(bytes(million), bytes(million));
  for (const std::size_t lane : {0U, 1U}) {
    EXPECT_EQ(esadecimale(sha.finish(lane)),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  }
}

TEST(Sha256, GivesThePublishedDigests) {
  expectPublishedDigests(*native::creaSha256OpenSsl());
  expectPublishedDigests(*creaTwinSha256());
}

TEST(Sha256, AForkGoesOnFromWhereTheLaneWas) {
  for (const auto& sha : {native::creaSha256OpenSsl(), creaTwinSha256()}) {
    // Behind a block's end and within one.
    for (const std::size_t common : {64U, 100U}) {
      const std::string begin(common, 'b');
      sha->update(1, bytes(begin));
      const auto forked = sha->fork(1);
      sha->update(1, bytes("one"));
      forked->update(0, bytes("other"));
      const auto alone = creaTwinSha256();
      const std::string one = begin + "one";
      const std::string other = begin + "other";
      alone->updateBoth(bytes(one), bytes(other));
      EXPECT_EQ(esadecimale(sha->finish(1)), esadecimale(alone->finish(0)));
      EXPECT_EQ(esadecimale(forked->finish(0)), esadecimale(alone->finish(1)));
    }
  }
}

TEST(Sha256, TheInstructionsAgreeWithTheLibraryHoweverTheDataArrive) {
  const auto ours = posix::creaSha256Instructions();
  if (!ours) GTEST_SKIP() << "this processor has no SHA instructions";
  expectPublishedDigests(*ours);
  const auto library = native::creaSha256OpenSsl();
  std::mt19937 random(7);
  std::vector<std::byte> data(5'000);
  for (std::byte& byte : data) byte = static_cast<std::byte>(random());
  const auto upTo = [&](std::size_t most) { return std::size_t{random()} % (most + 1); };
  for (std::size_t round = 0; round < 3'000; ++round) {
    for (std::size_t pieces = upTo(5); pieces > 0; --pieces) {
      // Often whole blocks, which go the interleaved way, of equal and of different lengths.
      const std::size_t unit = upTo(1) == 0 ? 64 : 1;
      const std::size_t a = upTo(200) * unit % 2'000;
      const std::size_t b = upTo(2) == 0 ? a : upTo(1'000);
      const auto first = std::span<const std::byte>(data).subspan(upTo(100), a);
      const auto second = std::span<const std::byte>(data).subspan(upTo(100), b);
      if (upTo(3) == 0) {
        ours->update(1, second);
        library->update(1, second);
      } else {
        ours->updateBoth(first, second);
        library->updateBoth(first, second);
      }
    }
    const std::size_t lane = upTo(1);
    ASSERT_EQ(esadecimale(ours->finish(lane)), esadecimale(library->finish(lane))) << round;
  }
  for (const std::size_t lane : {0U, 1U}) EXPECT_EQ(ours->finish(lane), library->finish(lane));
}

}  // namespace
}  // namespace pellak
