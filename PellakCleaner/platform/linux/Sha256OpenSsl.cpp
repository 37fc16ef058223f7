#include "platform/linux/Sha256OpenSsl.h"

#include <openssl/evp.h>
#include <stdexcept>

#include "platform/posix/Sha256Instructions.h"

namespace pellak::native {
namespace {

struct FreeContext {
  void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

void check(int outcome) {
  if (outcome != 1) throw std::runtime_error("SHA-256");
}

class Computation {
 public:
  Computation() { begin(); }

  void update(std::span<const std::byte> data) {
    check(EVP_DigestUpdate(context_.get(), data.data(), data.size()));
  }

  void continueFrom(const Computation& other) {
    check(EVP_MD_CTX_copy_ex(context_.get(), other.context_.get()));
  }

  Sha256Digest finish() {
    Sha256Digest digest{};
    check(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr));
    begin();
    return digest;
  }

 private:
  void begin() { check(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr)); }

  std::unique_ptr<EVP_MD_CTX, FreeContext> context_{EVP_MD_CTX_new()};
};

class Sha256OpenSsl final : public TwinSha256 {
 public:
  void update(std::size_t lane, std::span<const std::byte> data) override {
    lanes_[lane].update(data);
  }
  void updateBoth(std::span<const std::byte> first, std::span<const std::byte> second) override {
    lanes_[0].update(first);
    lanes_[1].update(second);
  }
  std::unique_ptr<TwinSha256> fork(std::size_t lane) const override {
    auto forked = std::make_unique<Sha256OpenSsl>();
    forked->lanes_[0].continueFrom(lanes_[lane]);
    return forked;
  }
  Sha256Digest finish(std::size_t lane) override { return lanes_[lane].finish(); }

 private:
  std::array<Computation, kLanes> lanes_;
};

}  // namespace

std::unique_ptr<TwinSha256> creaSha256OpenSsl() { return std::make_unique<Sha256OpenSsl>(); }

}  // namespace pellak::native

namespace pellak {

std::unique_ptr<TwinSha256> creaTwinSha256() {
  if (auto fastest = posix::creaSha256Instructions()) return fastest;
  return native::creaSha256OpenSsl();
}

}  // namespace pellak
