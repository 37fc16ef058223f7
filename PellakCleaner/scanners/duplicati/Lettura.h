#pragma once

#include <memory>
#include <vector>

#include "PellakCore/ScanContext.h"
#include "platform/FileReader.h"
#include "scanners/duplicati/Contenuti.h"
#include "scanners/duplicati/Corsia.h"
#include "scanners/duplicati/Insiemi.h"
#include "scanners/duplicati/Squadra.h"

namespace pellak::scanners {

/// Reads files to learn what they hold, several at once. Files that can't be read or that change
/// meanwhile become `perso`; refusals go to the section's counter, for each name once.
class Lettura {
 public:
  /// What is read of every file in the first place.
  static constexpr std::int64_t kTesta = 65'536;

  /// Everything named here outlives the object; `candidati` are those that the files index. Of a
  /// file that is read, the first of them then tells which one on disk it was in the end.
  Lettura(const ScanContext& ctx, FileReader& reader, const Candidati& testi,
          std::vector<Candidato>& candidati)
      : ctx_(ctx), reader_(reader), testi_(testi), candidati_(candidati) {}

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
  void leggiACoppie(Squadra& squadra, const std::vector<Insieme>& insiemi,
                    std::vector<Contenuto>& contenuti);
  void occupa(Corsia& corsia, const Insieme& insieme, std::vector<Contenuto>& contenuti);
  std::unique_ptr<OpenFile> apri(Contenuto& contenuto, ReadPlan plan, FileMark& segno);
  void conContatore(Squadra& squadra, const std::function<void()>& lavoro);

  const ScanContext& ctx_;
  FileReader& reader_;
  const Candidati& testi_;
  std::vector<Candidato>& candidati_;
};

}  // namespace pellak::scanners
