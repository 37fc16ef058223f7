#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/EntryType.h"
#include "platform/Result.h"

namespace pellak {

/// Where one item lies and where in the Trash it is going to lie.
struct TrashPlan {
  std::string percorso;    ///< absolute, bytes
  std::string nelCestino;  ///< absolute; empty when the system chooses it while moving
  std::uint64_t dev = 0;   ///< the item itself, a final symbolic link not followed
  std::uint64_t ino = 0;   ///< 0 when not known
  std::int64_t size = 0;   ///< bytes on disk when somebody measured them; the Trash may show them
  EntryType type = EntryType::unknown;  ///< of the item; unknown when not looked at
  std::int64_t mtimeNs = 0;             ///< its last write, nanoseconds since 1970
  std::int64_t lunghezza = 0;           ///< its logical bytes
};

/// One series of moves to the Trash or out of it. Folders that many items share stay open as long
/// as the batch lives. One thread at a time, and one batch at a time in a home folder: the caller
/// sees to that.
class TrashBatch {
 public:
  virtual ~TrashBatch() = default;

  /// Names the operation that the moves belong to, before the first of them. Where records are
  /// kept they name it too, so that `locate` takes no move of another one for this one's.
  virtual void ofOperation(std::string_view /*id*/) {}

  /// Decides where an item would go. Changes nothing but that the Trash folders are made when
  /// missing. Errors: missing, denied, busy (a volume's root), mounted (a volume is mounted below),
  /// invalid (a symbolic link on the way, no absolute path), failed (a Trash folder that can't be
  /// trusted).
  virtual Result<TrashPlan> plan(std::string_view percorso) = 0;

  /// Tells which moves follow, in their order, so that their records may be made ahead of them:
  /// with the intent to move on disk already. Those of moves that did not come about are gone after
  /// `sync`.
  virtual void announce(std::span<const TrashPlan* const> piani) = 0;

  /// Moves what was planned by one rename within its volume; content is never copied and nothing is
  /// ever replaced. Returns the place in the Trash. A final symbolic link is moved itself. Errors,
  /// the item being where it was: missing, denied, busy, mounted (meanwhile), full, readOnly,
  /// exists (the name in the Trash was taken meanwhile: plan anew), invalid (something else lies at
  /// the path now, or was written to since), failed.
  virtual Result<std::string> move(const TrashPlan& piano) = 0;

  /// Where an item that came from `percorso` lies in the Trash; empty when it does not. Only a
  /// Trash of this user counts, and an item whose record names that path; one whose record is lost
  /// or cut short is known by its number, when the plan holds it. What was moved there with
  /// another operation is another item.
  virtual std::string locate(const TrashPlan& piano) = 0;

  /// Whether nothing found by `locate` means that the item is not in the Trash. Errors, where the
  /// Trash can't be looked into or is not there with its volume: of any kind, `causa` says why.
  virtual Result<void> searchable(const TrashPlan& /*piano*/) { return {}; }

  /// Moves an item of the Trash to `destinazione`; its record leaves the Trash in `sync` at the
  /// latest. Folders above it that are missing are made, never through a link. Nothing is replaced,
  /// nothing copied. Errors: as for `move`.
  virtual Result<void> putBack(std::string_view nelCestino, std::string_view destinazione) = 0;

  /// Takes back what `putBack` did in this batch. Errors: as for `move`.
  virtual Result<void> undoPutBack(std::string_view nelCestino, std::string_view destinazione) = 0;

  /// Takes away what a process that ended too early left of a planned move, or of a way back: the
  /// record without its item.
  virtual void abandon(const TrashPlan& piano) = 0;

  /// Returns when all moves of this batch are on the disk, and nothing is left of moves that were
  /// only announced. Errors: failed.
  virtual Result<void> sync() = 0;
};

/// The Trash of the system. Any thread.
class TrashCan {
 public:
  virtual ~TrashCan() = default;

  virtual std::unique_ptr<TrashBatch> begin() = 0;

  /// Whether the path is a Trash folder, lies in one or holds the user's.
  virtual bool insideTrash(std::string_view percorso) const = 0;

  /// Lets what lies in a folder that keeps no records, as another system's Trash does, be put back
  /// too. At most once, before the first batch.
  virtual void alsoFrom(std::string cartella) = 0;
};

}  // namespace pellak
