#include "trash/Sguardi.h"

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/InShares.h"

namespace pellak::trash {
namespace {

constexpr std::size_t kPerCorsia = 500;  ///< fewer are not worth a thread
constexpr std::size_t kMaxCorsie = 4;

Sguardo guardaUno(TrashBatch& batch, DirectoryLister& lister, const std::string& home,
                  const Mossa& mossa) {
  Sguardo sguardo;
  sguardo.orig = espandiTilde(mossa.orig, home);
  // What was put back once, or was emptied and its name given to a later item, is not there.
  if (mossa.trash.empty() || mossa.rip || mossa.superata) return sguardo;
  const TrashPlan piano = {sguardo.orig, mossa.trash, 0, 0, 0};
  sguardo.suo = !batch.locate(piano).empty();
  if (!sguardo.suo) {
    if (const auto certo = batch.searchable(piano); !certo) sguardo.causa = certo.error().causa;
    return sguardo;
  }
  sguardo.dentro = lister.attributes(mossa.trash);
  sguardo.fuori = lister.attributes(sguardo.orig);
  return sguardo;
}

}  // namespace

std::vector<Sguardo> guarda(TrashCan& can, DirectoryLister& lister, const std::string& home,
                            std::span<const Mossa> mosse) {
  std::vector<Sguardo> sguardi(mosse.size());
  inShares(mosse.size(), kPerCorsia, kMaxCorsie, [&](std::size_t inizio, std::size_t fine) {
    const auto batch = can.begin();
    for (std::size_t i = inizio; i < fine; ++i) {
      sguardi[i] = guardaUno(*batch, lister, home, mosse[i]);
    }
  });
  return sguardi;
}

}  // namespace pellak::trash
