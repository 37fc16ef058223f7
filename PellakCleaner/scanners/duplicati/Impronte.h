#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/FileReader.h"
#include "platform/Files.h"
#include "scanners/duplicati/Contenuti.h"

namespace pellak::scanners {

/// What earlier scans learned of files, by which file it is and its size and times: what has not
/// changed since is not read again. Kept in one file of ours, bounded; a damaged or foreign one
/// reads as empty. What it says is never enough to move anything: groups that rest on it are
/// marked, and read before that.
///
/// `cerca` is for any thread; everything else for one.
class Impronte {
 public:
  /// `files` outlives it.
  Impronte(Files& files, std::string percorso) : files_(files), percorso_(std::move(percorso)) {}

  /// Reads the file, and notes when this scan began (seconds since 1970): what changed after, or
  /// hardly before, may change again without showing and is not remembered.
  void carica(double adesso);

  /// Whether a file in this state may be remembered, its volume being fit for it.
  bool ricordabile(const FileMark& segno) const;

  /// Fills in what is remembered of a file; false when nothing is.
  bool cerca(const FileMark& segno, Contenuto& contenuto) const;

  /// Takes down what a scan learned by samples: the list is sorted, larger files first.
  void annotaCampioni(const std::vector<Contenuto>& contenuti,
                      const std::vector<Candidato>& candidati);

  /// Takes down what whole contents told, writes the file, and forgets all. Unwritten, the next
  /// scan reads more.
  void concludi(const std::vector<Contenuto>& contenuti, const std::vector<Candidato>& candidati);

 private:
  struct Ricordo {
    std::uint64_t dev = 0;
    std::uint64_t ino = 0;
    std::int64_t size = 0;
    std::int64_t mtimeNs = 0;
    std::int64_t ctimeNs = 0;
    std::uint64_t impronta = 0;
    Sha256Digest digest{};
    std::uint32_t memoria = 0;
    std::uint32_t giri = 0;  ///< scans that did not come by the file
  };
  static_assert(std::is_trivially_copyable_v<Ricordo> && sizeof(Ricordo) == 88);

  static const Ricordo* trova(const std::vector<Ricordo>& ricordi, std::uint64_t dev,
                              std::uint64_t ino);
  static Ricordo ricordoDi(const Contenuto& contenuto, const Candidato& candidato);
  void accodaVecchi();
  void scrivi();

  Files& files_;
  const std::string percorso_;
  std::int64_t inizioNs_ = 0;
  std::vector<Ricordo> vecchi_;  ///< by file
  std::vector<Ricordo> nuovi_;   ///< by file
};

/// One number for which files, in which state, are compared with each other.
std::uint64_t firmaDi(std::span<const Contenuto> contenuti,
                      const std::vector<Candidato>& candidati);

}  // namespace pellak::scanners
