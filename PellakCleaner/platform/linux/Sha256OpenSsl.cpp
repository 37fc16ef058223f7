#include "platform/linux/Sha256OpenSsl.h"

#include <openssl/evp.h>
#include <stdexcept>

#include "platform/posix/Sha256Instructions.h"
#include "platform/posix/TwinLanes.h"

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

}  // namespace

std::unique_ptr<TwinSha256> creaSha256OpenSsl() {
  return std::make_unique<posix::TwinLanes<Computation>>();
}

}  // namespace pellak::native

namespace pellak {

std::unique_ptr<TwinSha256> creaTwinSha256() {
  if (auto fastest = posix::creaSha256Instructions()) return fastest;
  return native::creaSha256OpenSsl();
}

}  // namespace pellak
