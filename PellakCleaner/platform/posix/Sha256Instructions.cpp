// Two SHA-256 computations interleaved: the rounds of one fill the waiting times of the other.
#include "platform/posix/Sha256Instructions.h"

#include <algorithm>

#include "platform/posix/Sha256Stream.h"

#if defined(__x86_64__)

#include <cpuid.h>
#include <cstddef>
#include <immintrin.h>

#define PELLAK_SHA __attribute__((target("sha,sse4.1,ssse3")))
#define PELLAK_SHA_INLINE __attribute__((target("sha,sse4.1,ssse3"), always_inline)) inline

namespace pellak::posix {
namespace {

using State = Sha256Stream::State;
constexpr std::size_t kBlock = Sha256Stream::kBlock;

alignas(16) constexpr std::uint32_t kRound[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

/// One computation in registers: the state in the order the instructions want, and the last
/// sixteen words of the message schedule.
struct Lane {
  __m128i abef;
  __m128i cdgh;
  __m128i w[4];
};

PELLAK_SHA_INLINE __m128i words(const void* from) {
  return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

PELLAK_SHA_INLINE void load(Lane& lane, const State& state) {
  const __m128i badc = _mm_shuffle_epi32(words(state.data()), 0xB1);
  const __m128i hgfe = _mm_shuffle_epi32(words(state.data() + 4), 0x1B);
  lane.abef = _mm_alignr_epi8(badc, hgfe, 8);
  lane.cdgh = _mm_blend_epi16(hgfe, badc, 0xF0);
}

PELLAK_SHA_INLINE void store(const Lane& lane, State& state) {
  const __m128i feba = _mm_shuffle_epi32(lane.abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(lane.cdgh, 0xB1);
  auto* to = reinterpret_cast<__m128i*>(state.data());
  _mm_storeu_si128(to, _mm_blend_epi16(feba, dchg, 0xF0));
  _mm_storeu_si128(to + 1, _mm_alignr_epi8(dchg, feba, 8));
}

/// Four rounds with the schedule words `w` and the round constants from `k` on.
PELLAK_SHA_INLINE void rounds(Lane& lane, __m128i w, const std::uint32_t* k) {
  const __m128i sum = _mm_add_epi32(w, words(k));
  lane.cdgh = _mm_sha256rnds2_epu32(lane.cdgh, lane.abef, sum);
  lane.abef = _mm_sha256rnds2_epu32(lane.abef, lane.cdgh, _mm_shuffle_epi32(sum, 0x0E));
}

PELLAK_SHA_INLINE void first(Lane& lane, int i, const std::byte* data) {
  const __m128i bigEndian = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  lane.w[i] = _mm_shuffle_epi8(words(data + std::ptrdiff_t{16} * i), bigEndian);
  rounds(lane, lane.w[i], kRound + std::ptrdiff_t{4} * i);
}

PELLAK_SHA_INLINE void next(Lane& lane, int i, const std::uint32_t* k) {
  __m128i& oldest = lane.w[i];
  const __m128i newest = lane.w[(i + 3) % 4];
  const __m128i middle = _mm_alignr_epi8(newest, lane.w[(i + 2) % 4], 4);
  const __m128i part = _mm_add_epi32(_mm_sha256msg1_epu32(oldest, lane.w[(i + 1) % 4]), middle);
  oldest = _mm_sha256msg2_epu32(part, newest);
  rounds(lane, oldest, k);
}

PELLAK_SHA_INLINE void add(Lane& lane, __m128i abef, __m128i cdgh) {
  lane.abef = _mm_add_epi32(lane.abef, abef);
  lane.cdgh = _mm_add_epi32(lane.cdgh, cdgh);
}

PELLAK_SHA_INLINE void compressBlock(Lane& lane, const std::byte* data) {
  const __m128i abef = lane.abef;
  const __m128i cdgh = lane.cdgh;
  for (int i = 0; i < 4; ++i) first(lane, i, data);
  for (int k = 16; k < 64; k += 16) {
    next(lane, 0, kRound + k);
    next(lane, 1, kRound + k + 4);
    next(lane, 2, kRound + k + 8);
    next(lane, 3, kRound + k + 12);
  }
  add(lane, abef, cdgh);
}

PELLAK_SHA_INLINE void nextBoth(Lane& a, Lane& b, int i, const std::uint32_t* k) {
  next(a, i, k);
  next(b, i, k);
}

PELLAK_SHA_INLINE void firstBoth(Lane& a, Lane& b, int i, const std::byte* dataA,
                                 const std::byte* dataB) {
  first(a, i, dataA);
  first(b, i, dataB);
}

PELLAK_SHA void compress(State& state, const std::byte* data, std::size_t blocks) {
  Lane lane;
  load(lane, state);
  for (; blocks > 0; --blocks, data += kBlock) compressBlock(lane, data);
  store(lane, state);
}

PELLAK_SHA void compressBoth(State& stateA, const std::byte* dataA, State& stateB,
                             const std::byte* dataB, std::size_t blocks) {
  Lane a;
  Lane b;
  load(a, stateA);
  load(b, stateB);
  for (; blocks > 0; --blocks, dataA += kBlock, dataB += kBlock) {
    const __m128i abefA = a.abef;
    const __m128i cdghA = a.cdgh;
    const __m128i abefB = b.abef;
    const __m128i cdghB = b.cdgh;
    firstBoth(a, b, 0, dataA, dataB);
    firstBoth(a, b, 1, dataA, dataB);
    firstBoth(a, b, 2, dataA, dataB);
    firstBoth(a, b, 3, dataA, dataB);
    for (int k = 16; k < 64; k += 16) {
      nextBoth(a, b, 0, kRound + k);
      nextBoth(a, b, 1, kRound + k + 4);
      nextBoth(a, b, 2, kRound + k + 8);
      nextBoth(a, b, 3, kRound + k + 12);
    }
    add(a, abefA, cdghA);
    add(b, abefB, cdghB);
  }
  store(a, stateA);
  store(b, stateB);
}

class Instructions final : public TwinSha256 {
 public:
  void update(std::size_t lane, std::span<const std::byte> data) override {
    lanes_[lane].update(data, compress);
  }

  void updateBoth(std::span<const std::byte> a, std::span<const std::byte> b) override {
    if (lanes_[0].onBlockBoundary() && lanes_[1].onBlockBoundary()) {
      const std::size_t blocks = std::min(a.size(), b.size()) / kBlock;
      compressBoth(lanes_[0].state, a.data(), lanes_[1].state, b.data(), blocks);
      for (Sha256Stream& lane : lanes_) lane.count(blocks * kBlock);
      a = a.subspan(blocks * kBlock);
      b = b.subspan(blocks * kBlock);
    }
    update(0, a);
    update(1, b);
  }

  std::unique_ptr<TwinSha256> fork(std::size_t lane) const override {
    auto forked = std::make_unique<Instructions>();
    forked->lanes_[0] = lanes_[lane];
    return forked;
  }

  Sha256Digest finish(std::size_t lane) override { return lanes_[lane].finish(compress); }

 private:
  std::array<Sha256Stream, kLanes> lanes_;
};

bool processorHasThem() {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0) return false;
  if ((ecx & bit_SSSE3) == 0 || (ecx & bit_SSE4_1) == 0) return false;
  if (__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx) == 0) return false;
  return (ebx & bit_SHA) != 0;
}

}  // namespace

std::unique_ptr<TwinSha256> creaSha256Instructions() {
  if (!processorHasThem()) return nullptr;
  return std::make_unique<Instructions>();
}

}  // namespace pellak::posix

#else

namespace pellak::posix {

std::unique_ptr<TwinSha256> creaSha256Instructions() { return nullptr; }

}  // namespace pellak::posix

#endif
