#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "PellakCore/Libere.h"
#include "PellakCore/base/Elenco.h"
#include "PellakCore/base/Parte.h"
#include "platform/DirectoryLister.h"
#include "platform/Sha256.h"

namespace pellak {

/// Which file on disk, and which state of it, a scan saw at a path; what lies there later may be
/// compared with it. A field that the scan did not learn is 0.
struct Identita {
  std::uint64_t inode = 0;
  std::int64_t mtimeNs = 0;  ///< last write of the content, nanoseconds since 1970
  std::int64_t ctimeNs = 0;  ///< last change of content or record, which no program can set back
  EntryType type = EntryType::unknown;
  /// Of a copy of a duplicate set: what speaks against it as the one that stays (CopiaTenuta.h).
  std::uint8_t svantaggi = 0;

  /// False: results of an older version, or made up without a file.
  bool nota() const { return type != EntryType::unknown; }

  friend bool operator==(const Identita&, const Identita&) = default;
};

/// What the system's record of a path says of its identity.
Identita identitaDi(const EntryAttributes& attributi);

/// One entry of a finding: a file or a folder.
struct Voce {
  std::string path;
  std::int64_t size = 0;       ///< allocated bytes
  double mtime = 0;            ///< seconds since 1970
  std::int64_t lunghezza = 0;  ///< logical bytes of a file; 0 for a folder
  Identita identita = {};      ///< as the scan found it
  /// Bytes of `size` that the disk may not get back when the entry is deleted: other names or
  /// other files hold them too.
  std::int64_t condivisi = 0;

  /// What emptying the Trash surely frees when the entry is in it.
  std::int64_t libera() const { return size - condivisi; }
};

/// What a group of an application, a startup item or an update tells beside its paths.
struct Scheda {
  std::string name;
  std::string bundle;
  std::string prog;
  std::string url;
  std::string desc;
  std::vector<std::int64_t> pesi;   ///< one size per entry of `paths`
  std::vector<std::string> deboli;  ///< entries weakly tied to the group, shown apart
  std::string label;
  std::string dominio;  ///< "gui/" and the user id, or "system"
  bool spento = false;

  friend bool operator==(const Scheda&, const Scheda&) = default;
};

/// One grouped entry: a duplicate set, an application, a startup item, an update. Duplicate sets
/// come by the hundred thousand, so what they don't use costs them a pointer.
struct Group {
  std::int64_t size = 0;
  std::vector<std::string> paths;
  /// Of a duplicate set: one per entry of `paths`, as the copy was when it was compared. Empty
  /// otherwise, and in results of older versions.
  Elenco<Identita> identita;
  Sha256Digest hash{};      ///< of the content of a duplicate set; zeros where there is none
  bool dallaCache = false;  ///< the content of some copy was not read by the scan but remembered
  Parte<Scheda> scheda;
  Libere libere;

  bool conHash() const { return hash != Sha256Digest{}; }
};

/// Something that a scan came by and held back.
struct Trattenuto {
  std::string percorso;
  std::string perche;  ///< an Italian fragment
};

/// The result of one category inside a section.
struct Finding {
  std::string id;
  std::string categoria;  ///< the category that found it; set by the engine
  std::string name;
  std::string mode;  ///< "delete": the page may move the entries to the Trash; "report": not
  std::string note;
  std::string hint;
  std::string kind;
  bool unmeasured = false;  ///< the size is not known and is not shown
  std::vector<Voce> items;
  std::vector<Group> groups;
  std::vector<Trattenuto> trattenuti;  ///< at most `kMaxTrattenuti`

  static constexpr std::size_t kMaxTrattenuti = 200;
  void trattieni(std::string percorso, std::string perche);

  bool duplicati() const { return id == "duplicates"; }
  /// Whether each of its groups moves to the Trash whole or not at all.
  bool insieme() const { return kind == "cache" || kind == "stato" || kind == "privacy"; }
  bool vuoto() const { return items.empty() && groups.empty(); }
  std::int64_t quante() const { return static_cast<std::int64_t>(items.size() + groups.size()); }
  /// Whether it is there to make room: what can be moved and was measured, but applications and
  /// startup items, which are there to be used.
  bool faSpazio() const;
  /// Bytes that can be freed: all entries, and for duplicates what discarding frees.
  std::int64_t totale() const;
};

/// Bytes that discarding all copies of a duplicate set but one frees.
std::int64_t recuperabili(const Group& gruppo);

/// Sum of byte counts that stays at the largest value instead of wrapping round: the sizes may
/// come from a damaged file.
std::int64_t sommaSicura(std::int64_t a, std::int64_t b);

}  // namespace pellak
