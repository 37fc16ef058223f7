#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/FileReader.h"
#include "scanners/duplicati/Contenuti.h"

namespace pellak::scanners {

/// One file on its way from beginning to end, block by block. One thread.
class Corsia {
 public:
  static constexpr std::size_t kBlocco = std::size_t{256} * 1024;

  bool libera() const { return file_ == nullptr; }

  /// Takes a file whose state at opening is `segno`; it must outlive its reading.
  void prendi(std::unique_ptr<OpenFile> file, const FileMark& segno, Contenuto& contenuto);

  /// Reads the next block. Whatever is not what it was at opening makes the file `perso`.
  void avanza();

  /// The block last read.
  std::span<const std::byte> blocco() const { return {memoria_.data(), letti_}; }

  /// Whether nothing is left to be read, or it can't be.
  bool finita() const { return contenuto_->noto == Conoscenza::perso || resto_ == 0; }

  /// Gives the digest to the file unless it is lost or was written to meanwhile, and lets it go.
  void concludi(const Sha256Digest& digest);

 private:
  std::unique_ptr<OpenFile> file_;
  FileMark segno_;
  Contenuto* contenuto_ = nullptr;
  std::int64_t resto_ = 0;
  std::vector<std::byte> memoria_;
  std::size_t letti_ = 0;
};

}  // namespace pellak::scanners
