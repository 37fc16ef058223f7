#include "platform/linux/MountsLinux.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{64} << 20U;

/// Served by other computers; whatever begins with "fuse" comes from a program. "autofs" stands
/// where looking would mount something.
constexpr std::array<std::string_view, 19> kRemote = {
    "9p",     "acfs",  "afs", "autofs", "beegfs",   "ceph",  "cifs", "coda",  "glusterfs", "gpfs",
    "lustre", "ncpfs", "nfs", "nfs4",   "orangefs", "pvfs2", "smb3", "smbfs", "virtiofs"};

bool isRemote(std::string_view type) {
  return type.starts_with("fuse") ||
         std::find(kRemote.begin(), kRemote.end(), type) != kRemote.end();
}

bool isOctal(char sign) { return sign >= '0' && sign <= '7'; }

/// Blanks, line ends and backslashes stand in the table as a backslash and three octal digits.
std::string unescaped(std::string_view text) {
  constexpr std::size_t kDigits = 3;
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view digits = text.substr(i + 1, kDigits);
    if (text[i] != '\\' || digits.size() < kDigits ||
        !std::all_of(digits.begin(), digits.end(), isOctal)) {
      plain += text[i];
      continue;
    }
    unsigned value = 0;
    for (const char digit : digits) value = value * 8 + static_cast<unsigned>(digit - '0');
    plain += static_cast<char>(value);
    i += kDigits;
  }
  return plain;
}

/// Number, parent, device, root, place, options, optional fields, "-", type, source, options.
std::optional<Mount> mountOf(const std::string& line) {
  std::istringstream words(line);
  Mount mount;
  std::string skipped;
  std::string place;
  if (!(words >> mount.id >> skipped >> skipped >> skipped >> place >> skipped)) return {};
  while (words >> skipped && skipped != "-") {
  }
  if (!(words >> mount.type) || !place.starts_with('/')) return {};
  mount.path = unescaped(place);
  mount.remote = isRemote(mount.type);
  return mount;
}

}  // namespace

Result<std::vector<Mount>> MountsLinux::list() {
  const auto table = posix::readToEnd(table_, kMaxBytes);
  if (!table) return table.error();
  // A list cut short would show places as free that are not.
  if (table->size() == kMaxBytes) return posix::errnoError(EFBIG);
  std::istringstream input(*table);
  std::vector<Mount> mounts;
  for (std::string line; std::getline(input, line);) {
    std::optional<Mount> mount = mountOf(line);
    if (!mount) continue;
    const auto below = std::find_if(mounts.begin(), mounts.end(),
                                    [&](const Mount& other) { return other.path == mount->path; });
    if (below != mounts.end()) {
      *below = std::move(*mount);
    } else {
      mounts.push_back(std::move(*mount));
    }
  }
  return mounts;
}

}  // namespace pellak::native
