#include <CommonCrypto/CommonDigest.h>
#include <algorithm>
#include <limits>

#include "platform/Sha256.h"
#include "platform/posix/Sha256Instructions.h"

namespace pellak {
namespace {

class Computation {
 public:
  Computation() { CC_SHA256_Init(&context_); }

  void update(std::span<const std::byte> data) {
    constexpr std::size_t kAtOnce = std::numeric_limits<CC_LONG>::max();
    while (!data.empty()) {
      const std::size_t part = std::min(data.size(), kAtOnce);
      CC_SHA256_Update(&context_, data.data(), static_cast<CC_LONG>(part));
      data = data.subspan(part);
    }
  }

  Sha256Digest finish() {
    Sha256Digest digest{};
    CC_SHA256_Final(digest.data(), &context_);
    CC_SHA256_Init(&context_);
    return digest;
  }

 private:
  CC_SHA256_CTX context_{};
};

class Sha256CommonCrypto final : public TwinSha256 {
 public:
  void update(std::size_t lane, std::span<const std::byte> data) override {
    lanes_[lane].update(data);
  }
  void updateBoth(std::span<const std::byte> first, std::span<const std::byte> second) override {
    lanes_[0].update(first);
    lanes_[1].update(second);
  }
  std::unique_ptr<TwinSha256> fork(std::size_t lane) const override {
    auto forked = std::make_unique<Sha256CommonCrypto>();
    forked->lanes_[0] = lanes_[lane];
    return forked;
  }
  Sha256Digest finish(std::size_t lane) override { return lanes_[lane].finish(); }

 private:
  std::array<Computation, kLanes> lanes_;
};

}  // namespace

std::unique_ptr<TwinSha256> creaTwinSha256() {
  if (auto fastest = posix::creaSha256Instructions()) return fastest;
  return std::make_unique<Sha256CommonCrypto>();
}

}  // namespace pellak
