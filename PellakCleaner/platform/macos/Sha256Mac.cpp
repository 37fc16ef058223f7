#include <CommonCrypto/CommonDigest.h>
#include <algorithm>
#include <limits>

#include "platform/Sha256.h"
#include "platform/posix/Sha256Instructions.h"
#include "platform/posix/TwinLanes.h"

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

  void continueFrom(const Computation& other) { context_ = other.context_; }

  Sha256Digest finish() {
    Sha256Digest digest{};
    CC_SHA256_Final(digest.data(), &context_);
    CC_SHA256_Init(&context_);
    return digest;
  }

 private:
  CC_SHA256_CTX context_{};
};

}  // namespace

std::unique_ptr<TwinSha256> creaTwinSha256() {
  if (auto fastest = posix::creaSha256Instructions()) return fastest;
  return std::make_unique<posix::TwinLanes<Computation>>();
}

}  // namespace pellak
