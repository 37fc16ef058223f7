#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/EntryType.h"
#include "platform/Result.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Riserva.h"

namespace pellak::native {

/// One mounted volume, as far as a rename reaches: neither to another file system nor through
/// another mount of the same one.
struct Volume {
  std::uint64_t dev = 0;
  std::uint64_t mount = 0;  ///< 0 where the kernel does not tell

  bool operator==(const Volume&) const = default;
};

/// Whether a rename reaches from one to the other. What a volume shows from others below it, as
/// overlays do, has device numbers of its own: they count only where mounts have none.
inline bool sameMount(const Volume& a, const Volume& b) {
  return a.mount != 0 && b.mount != 0 ? a.mount == b.mount : a.dev == b.dev;
}

/// A file or folder on disk.
struct Item {
  Volume volume;
  std::uint64_t ino = 0;
  EntryType type = EntryType::unknown;
  std::int64_t mtimeNs = 0;
  std::int64_t size = 0;  ///< logical bytes
};

/// An open file, or an entry of an open folder (a link not followed).
Result<Item> itemAt(int file, const char* nome = "");

/// One Trash folder held open: "files", "info" and where they lie.
/// The format is that of the freedesktop.org Trash, version 1.0; a folder of another kind, without
/// records, is its own "files" and has no "info".
struct TrashFolder {
  std::string percorso;  ///< of the Trash folder itself
  std::string cima;      ///< top of the volume for relative records; empty for the home Trash
  Volume volume;
  bool overlay = false;  ///< items may come from a layer below and get other numbers when they move
  posix::Descriptor radice;
  posix::Descriptor files;
  posix::Descriptor info;
  posix::Riserva* riserva = nullptr;  ///< what records may draw on when the disk is full
};

/// Opens a folder with no symbolic link on the way below `fidata`, which may be a link itself (a
/// home folder often is). Paths of any length. Folders that are missing are an error, or made when
/// `crea` says so. Errors: missing, denied, invalid (a link).
Result<posix::Descriptor> openWithoutLinks(std::string_view percorso, std::string_view fidata,
                                           bool crea = false);

/// The folder of the home Trash; only a name.
std::string homeTrashPath();
/// The same, links above it resolved.
std::string realHomeTrashPath();

/// The volume that the home Trash lies on, or would.
Result<Volume> homeTrashVolume();

/// The home Trash, made when missing. Errors: failed when the folder is a link or somebody else's.
Result<TrashFolder> openHomeTrash();

/// The Trash of the volume whose top folder is `cima`: ".Trash/<uid>" when ".Trash" is a real
/// folder with the sticky bit, ".Trash-<uid>" otherwise.
Result<TrashFolder> openVolumeTrash(const std::string& cima);

/// The highest folder above `cartella` on the same volume.
std::string topOfVolume(std::string_view cartella, Volume volume);

/// The top of the volume that a Trash folder of this user's is for, by its name alone; empty when
/// it is none of a volume's.
std::string topOfTrash(std::string_view cestino);

/// The Trash folder that a path "<Trash>/files/<name>" lies in, when it is one of this user's: the
/// home Trash, or ".Trash/<uid>" or ".Trash-<uid>" at the top of a volume. Nothing is made.
/// `fidata` as for openWithoutLinks. Errors: invalid (no such path), missing, failed (a link, or
/// somebody else's).
Result<TrashFolder> openTrashHolding(std::string_view nelCestino, std::string_view fidata);

/// A folder "<folder>/<name>" lies in and that keeps no records.
Result<TrashFolder> openPlainTrash(const std::string& cartella);

/// A folder in the Trash and its bytes on disk.
struct FolderSize {
  std::string nome;
  std::int64_t size = 0;
};

/// Brings a Trash's cache of folder sizes up to date: adds folders that were just moved in and
/// drops what is gone. The cache is a convenience: failures are ignored.
void recordDirectorySizes(const TrashFolder& cestino, const std::vector<FolderSize>& arrivate);

}  // namespace pellak::native
