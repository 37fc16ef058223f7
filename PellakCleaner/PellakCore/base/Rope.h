#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pellak {

/// A long text as pieces in order, some of them shared with other texts, so that a reply of many
/// megabytes is put together without copying what did not change. Copies share their pieces;
/// a piece never changes.
class Rope {
 public:
  using Piece = std::shared_ptr<const std::string>;

  Rope() = default;
  explicit Rope(std::string testo) { add(std::move(testo)); }

  void add(Piece pezzo) {
    size_ += pezzo->size();
    pieces_.push_back(std::move(pezzo));
  }
  void add(std::string testo) { add(std::make_shared<const std::string>(std::move(testo))); }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const std::vector<Piece>& pieces() const { return pieces_; }

  /// The whole text in one string.
  std::string str() const {
    std::string testo;
    testo.reserve(size_);
    for (const Piece& pezzo : pieces_) testo += *pezzo;
    return testo;
  }

 private:
  std::vector<Piece> pieces_;
  std::size_t size_ = 0;
};

}  // namespace pellak
