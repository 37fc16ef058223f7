#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

#include "platform/DirectoryLister.h"
#include "platform/Result.h"
#include "platform/posix/Descriptor.h"

/// Folders and path records by the calls that every POSIX system has. Thread-safe.
namespace pellak::posix {

/// Opens a folder for listing, no symbolic link followed at its last component. `traverse` are
/// the open flags for the folders passed on the way of a path that is longer than PATH_MAX.
Result<Descriptor> openFolder(std::string_view percorso, int traverse);

/// The same for a component of an open folder.
Result<Descriptor> openFolderAt(int folder, const char* name);

/// lstat for a path of any length; `flags` are added to those of fstatat.
Result<struct stat> statPath(std::string_view percorso, int traverse, int flags);

/// The path without links, "." and ".."; something has to be there.
Result<std::string> realPath(std::string_view percorso, int traverse);

/// lstat for a component of an open folder.
Result<struct stat> statAt(int folder, const char* name, int flags);

/// What a stat record says, BSD flags excepted.
EntryAttributes attributesOf(const struct stat& record);

/// All names of an open folder from its beginning, by readdir.
Result<std::vector<std::string>> readNames(int folder);

/// A share of the descriptors that the process may open, for folders of one walk.
std::size_t folderBudget();

}  // namespace pellak::posix
