#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace pellak {

using Sha256Digest = std::array<std::uint8_t, 32>;

/// Two SHA-256 computations side by side, called 0 and 1, because a processor does two
/// independent ones in little more time than one. Used by one thread at a time.
///
/// Throws std::runtime_error when the system's library refuses to work.
class TwinSha256 {
 public:
  static constexpr std::size_t kLanes = 2;

  virtual ~TwinSha256() = default;

  virtual void update(std::size_t lane, std::span<const std::byte> data) = 0;

  /// The same as an `update` of each; fastest with equal lengths that are multiples of 64.
  virtual void updateBoth(std::span<const std::byte> first, std::span<const std::byte> second) = 0;

  /// Another object whose lane 0 goes on from where `lane` is.
  virtual std::unique_ptr<TwinSha256> fork(std::size_t lane) const = 0;

  /// The digest of all that the lane was given; the lane then begins anew.
  virtual Sha256Digest finish(std::size_t lane) = 0;
};

/// The fastest that this processor and this system offer.
std::unique_ptr<TwinSha256> creaTwinSha256();

}  // namespace pellak
