#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <vector>

#include "PellakCore/ScanContext.h"
#include "platform/FileReader.h"
#include "scanners/duplicati/Contenuti.h"
#include "scanners/duplicati/Corsia.h"
#include "scanners/duplicati/Impronte.h"
#include "scanners/duplicati/Insiemi.h"
#include "scanners/duplicati/Squadra.h"

namespace pellak::scanners {

/// Reads files to learn what they hold, several at once. Files that can't be read or that change
/// meanwhile become `perso`; refusals go to the section's counter, for each name once.
class Lettura {
 public:
  /// What is read of every file in the first place.
  static constexpr std::int64_t kTesta = 65'536;

  /// Everything named here outlives the object, `impronte` may be none; `candidati` are those that
  /// the files index. Of a file that is read, the first of them then tells which one on disk it was
  /// in the end.
  Lettura(const ScanContext& ctx, FileReader& reader, const Candidati& testi,
          std::vector<Candidato>& candidati, const Impronte* impronte = nullptr)
      : ctx_(ctx), reader_(reader), testi_(testi), candidati_(candidati), impronte_(impronte) {}

  /// Reads of every file the head, and further samples where there is more than the head; a file
  /// that is all head is then known in whole. Names that can't be opened are taken from their
  /// file. Throws `ScanCancelled`.
  void campioni(std::vector<Contenuto>& contenuti);

  /// Learns the digest of every file that is known by samples: reads those that may be equal side
  /// by side, compares them, and hashes once what is the same. A file that differs from all others
  /// becomes `perso`, often before its end. The list is one as `tieniUguali` leaves it. Throws
  /// `ScanCancelled`.
  void interi(std::vector<Contenuto>& contenuti);

 private:
  void campiona(Contenuto& contenuto, std::vector<std::byte>& memoria, TwinSha256& sha);
  using Corsie = std::array<Corsia, TwinSha256::kLanes>;

  void leggiACoppie(Squadra& squadra, const std::vector<Insieme>& insiemi,
                    std::vector<Contenuto>& contenuti, Corsie& corsie);
  void occupa(Corsia& corsia, const Insieme& insieme, std::vector<Contenuto>& contenuti);
  void ricorda(std::span<Contenuto> simili) const;
  bool volumeAdatto(std::uint64_t dev, const OpenFile& file);
  std::unique_ptr<OpenFile> apri(Contenuto& contenuto, ReadPlan plan, FileMark& segno);
  void conContatore(Squadra& squadra, const std::function<void()>& lavoro);

  const ScanContext& ctx_;
  FileReader& reader_;
  const Candidati& testi_;
  std::vector<Candidato>& candidati_;
  const Impronte* const impronte_;
  std::mutex lock_;
  std::map<std::uint64_t, bool> volumi_;  ///< by device: whether files there may be remembered
};

}  // namespace pellak::scanners
