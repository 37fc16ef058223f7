#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/FileReader.h"
#include "platform/Sha256.h"
#include "scanners/duplicati/Contenuti.h"

namespace pellak::scanners {

/// Files of one size that may be equal, on their way from beginning to end side by side, block by
/// block. What is equal byte for byte is hashed once; files part ways where they differ, and a
/// file that parts from the others takes the hash of what they had in common along. One thread.
///
/// The hash of the files that stay with the first is computed by the caller, in a lane of its
/// `TwinSha256` that is given to nobody else meanwhile.
class Corsia {
 public:
  static constexpr std::size_t kBlocco = std::size_t{256} * 1024;

  /// Takes its memory on the thread that makes it.
  Corsia() : prova_(kBlocco) { primo_.blocco.resize(kBlocco); }

  bool libera() const { return !occupata_; }

  /// Begins with no files, of `size` bytes each. `tutti`: no other file can be equal to these, so
  /// that one left alone becomes `perso` and is not read on.
  void comincia(std::int64_t size, bool tutti);

  /// Adds a file whose state at opening is `segno`; `contenuto` must outlive its reading.
  void aggiungi(std::unique_ptr<OpenFile> file, const FileMark& segno, Contenuto& contenuto);

  /// Reads the next block of every file; `sha` holds in `lane` what was read before. A file that
  /// is not what it was at opening becomes `perso`.
  void avanza(const TwinSha256& sha, std::size_t lane);

  /// The block last read, which the lane is to be given.
  std::span<const std::byte> blocco() const;

  /// Whether nothing is left to be read, or nothing worth it.
  bool finita() const;

  /// Gives the files their digests, that of the lane and those of files that parted, and lets
  /// them go. Files written to meanwhile become `perso`.
  void concludi(const Sha256Digest& digest);

 private:
  struct Membro {
    std::unique_ptr<OpenFile> file;
    FileMark segno;
    Contenuto* contenuto = nullptr;
  };

  /// Files that are equal as far as they were read.
  struct Ramo {
    std::vector<Membro> membri;
    std::vector<std::byte> blocco;
    std::unique_ptr<TwinSha256> sha;  ///< none: the caller's lane
  };

  bool leggi(const Membro& membro, std::vector<std::byte>& dove) const;
  void avanza(Ramo& ramo, const TwinSha256& sha, std::size_t lane, std::vector<Ramo>& nuovi);
  void separa(Membro membro, const TwinSha256& sha, std::size_t lane, std::span<Ramo> fratelli,
              std::vector<Ramo>& nuovi);
  void lasciaSoli();

  Ramo primo_;
  std::vector<Ramo> altri_;
  std::vector<std::byte> prova_;
  std::int64_t size_ = 0;
  std::int64_t letti_ = 0;  ///< of each file, before the block
  std::size_t quanti_ = 0;  ///< in the block
  bool tutti_ = false;
  bool occupata_ = false;
};

}  // namespace pellak::scanners
