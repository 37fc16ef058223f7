#pragma once

#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <type_traits>
#include <utility>
#include <vector>

#include "PellakCore/base/ScanCancelled.h"
#include "platform/DirectoryLister.h"
#include "scanners/walker/Confini.h"
#include "scanners/walker/Esclusioni.h"

/// Lists, measures and walks folders for every scanner.
///
/// Paths are bytes, absolute, of any length, without a trailing slash ("/" excepted); a child's
/// path is parent + "/" + name. No symbolic link is followed, entered or reported, not even a
/// root. What cannot be read makes the result smaller and nothing else; a refusal (EPERM or
/// EACCES) also goes to `Ambiente::diniego`, once for each attempt, so that a folder that cannot
/// be opened is told twice: for the bulk listing and for the name listing after it.
///
/// Sizes are bytes. A sum that leaves 64 bits stops the process.
namespace pellak::walker {

/// Asked once for each folder before it is listed; true ends the operation with `ScanCancelled`
/// and discards what was found. Empty: never. Calls are one at a time, from any worker.
using Stop = std::function<bool()>;

/// Told every refused path. Called from any worker, several at once; empty: not told.
using Diniego = std::function<void(std::string_view percorso)>;

/// What every operation works with. The lister outlives the call, `confini` too.
struct Ambiente {
  DirectoryLister& lister;
  Diniego diniego;
  /// What walks and measures do not enter below their roots; none: everything is entered.
  Confini* confini = nullptr;
};

/// What a walk leaves out.
struct Filtro {
  /// Folder names never entered. Files and the roots themselves are not affected.
  Esclusioni esclusioni;
  /// Regular files of a smaller logical size never reach the visitor.
  std::int64_t minBytes = 0;
  /// Asked for each folder (roots too) with its full path before it is listed; false keeps the
  /// folder out with everything below. Empty: all enter, and no path is built. Any worker.
  std::function<bool(std::string_view percorso)> entra = {};
};

/// At most so many folders are listed at once.
inline constexpr std::size_t kMaxListings = 8;

/// The entries of one folder with their attributes, in listing order; absent when the folder
/// cannot be opened or its listing fails half-way.
std::optional<std::vector<BulkEntry>> bulkList(const Ambiente& ambiente, std::string_view percorso);

/// The entries of one folder with their attributes, in listing order, by the bulk listing or else
/// by names. Folders that the listing tells as such carry no further attributes. A large folder's
/// attributes are asked for by several threads. An entry whose record can't be had is left out.
/// Errors: those of opening or reading the folder.
Result<std::vector<BulkEntry>> listFolder(const Ambiente& ambiente, std::string_view percorso);

/// The names in one folder by the ordinary directory stream, in the order read.
std::optional<std::vector<std::string>> nameList(const Ambiente& ambiente,
                                                 std::string_view percorso);

/// The path's own record: type and permissions, links, owner, device, inode, size, blocks, times of
/// modification and status change and flags; other fields are 0.
std::optional<struct stat> statNoFollow(const Ambiente& ambiente, std::string_view percorso);

/// The path with every link on the way and at its end followed; absent when nothing is there or
/// the way is refused.
std::optional<std::string> realPath(const Ambiente& ambiente, std::string_view percorso);

/// Bytes on disk of a file, or of everything below a folder: hard links count each time, folders
/// and symbolic links themselves not; a root that is a link or missing is 0. Runs on the calling
/// thread. Throws `ScanCancelled`.
std::int64_t treeSize(const Ambiente& ambiente, std::string_view percorso, const Stop& stop = {});

class FolderNotes;

/// Told one root's size as soon as it is known; absent when the root has no record (missing or
/// refused). One call at a time, from any worker, in any order.
using Misurata = std::function<void(std::size_t indice, std::optional<std::int64_t> byte)>;

/// `treeSize` of many roots at once over the walk's workers, a single huge root spread over all
/// of them. Throws `ScanCancelled`; sizes told before that are right. `cartelle`, when given, takes
/// down every folder on the way with its size (FolderSizes.h).
void measureTrees(const Ambiente& ambiente, std::span<const std::string> percorsi, const Stop& stop,
                  const Misurata& misurata, FolderNotes* cartelle = nullptr);

/// The same, answered at the end, in the order of `percorsi`.
std::vector<std::optional<std::int64_t>> measureTrees(const Ambiente& ambiente,
                                                      std::span<const std::string> percorsi,
                                                      const Stop& stop = {});

/// A tree on its way to the Trash.
struct Misura {
  std::int64_t byte = 0;    ///< as `treeSize` counts
  std::int64_t libera = 0;  ///< what the disk surely gets back once the tree is deleted

  friend bool operator==(const Misura&, const Misura&) = default;
};

/// Whether files below a folder may hold the same room on disk, so that only `measureForTrash`
/// tells what is a file's own. True where it can't be asked.
bool sharesSpace(const Ambiente& ambiente, std::string_view cartella);

/// `measureTrees` of what may be moved to the Trash. A file counts as free only when all its hard
/// links lie in its tree, and then once, and without the room that it shares with other files.
std::vector<std::optional<Misura>> measureForTrash(const Ambiente& ambiente,
                                                   std::span<const std::string> percorsi,
                                                   const Stop& stop = {});

/// One level of a walk.
template <class T>
struct Livello {
  std::vector<std::string> sottocartelle;  ///< full paths of the folders to enter
  std::vector<T> risultati;                ///< what the visitor kept
};

/// The result type of a visitor `(std::string_view percorso, const struct stat&) ->
/// std::optional<T>`.
template <class Visitor>
using Risultato =
    typename std::invoke_result_t<Visitor&, std::string_view, const struct stat&>::value_type;

namespace detail {

using Visita = std::function<void(std::size_t worker, std::string_view, const struct stat&)>;

void walk(const Ambiente& ambiente, std::span<const std::string> radici, const Filtro& filtro,
          const Stop& stop, const Visita& visita);

std::vector<std::string> walkLevel(const Ambiente& ambiente, std::string_view cartella,
                                   const Filtro& filtro, const Visita& visita);

}  // namespace detail

/// Lists one folder as a walk does, both results in listing order. On the calling thread.
///
/// A file's record is the system's own where files are asked one by one; where the listing
/// carries the attributes it has the permissions 0644, no links and owner 0.
template <class Visitor>
Livello<Risultato<Visitor>> listForWalk(const Ambiente& ambiente, std::string_view cartella,
                                        const Filtro& filtro, Visitor&& visitor) {
  Livello<Risultato<Visitor>> livello;
  livello.sottocartelle =
      detail::walkLevel(ambiente, cartella, filtro,
                        [&](std::size_t, std::string_view percorso, const struct stat& s) {
                          if (auto esito = visitor(percorso, s))
                            livello.risultati.push_back(*std::move(esito));
                        });
  return livello;
}

/// Walks the trees below `radici` and returns what the visitor kept, in no particular order. The
/// visitor runs on the walk's own threads, several at once and without any lock; they carry
/// nothing of the caller's thread. An exception of a visitor ends the walk and reaches the caller.
/// Roots that are no folders yield nothing; nested roots are walked each. Throws `ScanCancelled`.
template <class Visitor>
std::vector<Risultato<Visitor>> parallelWalk(const Ambiente& ambiente,
                                             std::span<const std::string> radici,
                                             const Filtro& filtro, const Stop& stop,
                                             Visitor&& visitor) {
  using T = Risultato<Visitor>;
  struct alignas(64) Parte {
    std::vector<T> risultati;
  };
  std::vector<Parte> parti(kMaxListings);
  detail::walk(ambiente, radici, filtro, stop,
               [&](std::size_t worker, std::string_view percorso, const struct stat& s) {
                 if (auto esito = visitor(percorso, s)) {
                   parti[worker].risultati.push_back(*std::move(esito));
                 }
               });
  std::vector<T> tutti = std::move(parti.front().risultati);
  for (std::size_t i = 1; i < parti.size(); ++i) {
    tutti.insert(tutti.end(), std::make_move_iterator(parti[i].risultati.begin()),
                 std::make_move_iterator(parti[i].risultati.end()));
  }
  return tutti;
}

}  // namespace pellak::walker
