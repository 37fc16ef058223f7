#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>

#include "platform/Sha256.h"

namespace pellak::posix {

/// Both lanes over a library that computes one at a time. `Computation` has `update`, `finish`,
/// which begins anew, and `continueFrom` another one.
template <class Computation>
class TwinLanes final : public TwinSha256 {
 public:
  void update(std::size_t lane, std::span<const std::byte> data) override {
    lanes_[lane].update(data);
  }
  void updateBoth(std::span<const std::byte> first, std::span<const std::byte> second) override {
    lanes_[0].update(first);
    lanes_[1].update(second);
  }
  std::unique_ptr<TwinSha256> fork(std::size_t lane) const override {
    auto forked = std::make_unique<TwinLanes>();
    forked->lanes_[0].continueFrom(lanes_[lane]);
    return forked;
  }
  Sha256Digest finish(std::size_t lane) override { return lanes_[lane].finish(); }

 private:
  std::array<Computation, kLanes> lanes_;
};

}  // namespace pellak::posix
