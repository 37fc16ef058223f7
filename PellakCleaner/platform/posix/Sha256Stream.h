#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/Sha256.h"

namespace pellak::posix {

/// One SHA-256 computation between whole blocks: state, the bytes that wait for their block to
/// become full, and the length so far. What compresses the blocks is the caller's.
class Sha256Stream {
 public:
  static constexpr std::size_t kBlock = 64;
  using State = std::array<std::uint32_t, 8>;

  State state = kInitial;

  bool onBlockBoundary() const { return waiting_ == 0; }
  void count(std::size_t bytes) { length_ += bytes; }

  /// `compress(state, data, blocks)`
  template <class Compress>
  void update(std::span<const std::byte> data, const Compress& compress) {
    count(data.size());
    if (waiting_ > 0) {
      data = data.subspan(keep(data));
      if (waiting_ < kBlock) return;
      compress(state, buffer_.data(), 1);
      waiting_ = 0;
    }
    compress(state, data.data(), data.size() / kBlock);
    keep(data.last(data.size() % kBlock));
  }

  template <class Compress>
  Sha256Digest finish(const Compress& compress) {
    const std::uint64_t bits = length_ * 8;
    std::array<std::byte, kBlock> padding{std::byte{0x80}};
    const std::size_t zeros = (kBlock + 56 - 1 - waiting_) % kBlock;
    update(std::span(padding).first(1 + zeros), compress);
    std::array<std::byte, 8> end{};
    for (std::size_t i = 0; i < end.size(); ++i) {
      end[i] = static_cast<std::byte>(bits >> (56 - 8 * i));
    }
    update(end, compress);
    Sha256Digest digest{};
    for (std::size_t i = 0; i < digest.size(); ++i) {
      digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (24 - 8 * (i % 4)));
    }
    *this = Sha256Stream();
    return digest;
  }

 private:
  static constexpr State kInitial = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                     0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

  std::size_t keep(std::span<const std::byte> data) {
    const std::size_t taken = data.size() < kBlock - waiting_ ? data.size() : kBlock - waiting_;
    for (std::size_t i = 0; i < taken; ++i) buffer_[waiting_ + i] = data[i];
    waiting_ += taken;
    return taken;
  }

  std::array<std::byte, kBlock> buffer_{};
  std::size_t waiting_ = 0;
  std::uint64_t length_ = 0;
};

}  // namespace pellak::posix
