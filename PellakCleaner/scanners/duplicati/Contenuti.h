#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/Sha256.h"
#include "scanners/duplicati/Candidati.h"

namespace pellak::scanners {

/// How much is known of a file's content.
enum class Conoscenza : std::uint8_t {
  dimensione,  ///< its size
  campioni,    ///< `impronta`: what it holds in some places
  tutto,       ///< `digest`: all of it
  perso        ///< a duplicate of nothing: it differs, changed or can't be read
};

/// What is known of a file without reading it this time.
enum class Memoria : std::uint8_t {
  niente,
  hash,  ///< `digest`, from an earlier scan
  solo,  ///< it differed from all it was compared with; `digest` begins with which those were
  vuoto  ///< it is one hole
};

/// One file on disk, which may have several names: its candidates are `quanti` from `primo` on, in
/// ascending order of their paths.
struct Contenuto {
  std::int64_t size = 0;
  std::uint64_t impronta = 0;
  std::int64_t mtimeNs = 0;  ///< last write, as it was when the file was opened
  std::int64_t ctimeNs = 0;  ///< last change of its record, likewise
  std::uint32_t primo = 0;
  std::uint32_t quanti = 0;
  Sha256Digest digest{};  ///< counts as content only when `noto` says so
  Conoscenza noto = Conoscenza::dimensione;
  Memoria memoria = Memoria::niente;
  bool ricordabile = false;  ///< whether what is learned may be kept for the next scan
};

/// Sorts the candidates by size (largest first), file and path, and gathers the names of one file.
/// Files with a size of their own are left out.
std::vector<Contenuto> raggruppaPerFile(std::vector<Candidato>& candidati, const Candidati& testi);

/// Drops what is lost, and of the rest every file that differs from all others in size or in what
/// is known of it. The others are sorted: equal ones adjacent, larger ones first.
void tieniUguali(std::vector<Contenuto>& contenuti);

/// Frees the candidates of files that `tieniUguali` dropped.
void lasciaAltri(std::vector<Candidato>& candidati, std::vector<Contenuto>& contenuti);

/// Where the run of files equal to the one at `da` ends, in a list as `tieniUguali` leaves it.
std::size_t fineUguali(const std::vector<Contenuto>& contenuti, std::size_t da);

}  // namespace pellak::scanners
