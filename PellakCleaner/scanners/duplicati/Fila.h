#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace pellak::scanners {

/// A queue of values in pieces of fixed size. Growing it leaves no outgrown copies behind, and a
/// piece that was taken off goes back to the system, which it is large enough for: of a million
/// files each left-over counts.
template <class T>
class Fila {
 public:
  void push_back(T valore) {
    if (messi_ % kPerPezzo == 0) pezzi_.emplace_back().reserve(kPerPezzo);
    pezzi_.back().push_back(std::move(valore));
    ++messi_;
  }

  bool empty() const { return presi_ == messi_; }
  std::size_t size() const { return messi_ - presi_; }

  const T& front() const { return pezzi_[presi_ / kPerPezzo][presi_ % kPerPezzo]; }

  void pop_front() {
    if (++presi_ % kPerPezzo == 0) std::vector<T>().swap(pezzi_[presi_ / kPerPezzo - 1]);
  }

 private:
  static constexpr std::size_t kPerPezzo = 524'288 / sizeof(T);

  std::vector<std::vector<T>> pezzi_;
  std::size_t messi_ = 0;  ///< values that were ever put in
  std::size_t presi_ = 0;  ///< of those, values that were taken off
};

}  // namespace pellak::scanners
