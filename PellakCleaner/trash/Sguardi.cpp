#include "trash/Sguardi.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <thread>

#include "PellakCore/base/BytePath.h"

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
  sguardo.suo = !batch.locate({sguardo.orig, mossa.trash, 0, 0, 0}).empty();
  if (!sguardo.suo) return sguardo;
  sguardo.dentro = lister.attributes(mossa.trash);
  sguardo.fuori = lister.attributes(sguardo.orig);
  return sguardo;
}

}  // namespace

std::vector<Sguardo> guarda(TrashCan& can, DirectoryLister& lister, const std::string& home,
                            std::span<const Mossa> mosse) {
  std::vector<Sguardo> sguardi(mosse.size());
  const auto parte = [&](std::size_t inizio, std::size_t fine) {
    const auto batch = can.begin();
    for (std::size_t i = inizio; i < fine; ++i) {
      sguardi[i] = guardaUno(*batch, lister, home, mosse[i]);
    }
  };
  const std::size_t corsie = std::clamp<std::size_t>(
      std::min<std::size_t>(mosse.size() / kPerCorsia, std::thread::hardware_concurrency()), 1,
      kMaxCorsie);
  const std::size_t quota = mosse.size() / corsie;
  std::vector<std::future<void>> altre;  // joined when they go, also on the way of an exception
  std::size_t inizio = 0;
  try {
    for (; altre.size() + 1 < corsie; inizio += quota) {
      altre.push_back(std::async(std::launch::async, parte, inizio, inizio + quota));
    }
  } catch (const std::system_error&) {
    // No more threads to be had: the rest is done here.
  }
  parte(inizio, mosse.size());
  for (std::future<void>& altra : altre) altra.get();
  return sguardi;
}

}  // namespace pellak::trash
