#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

#include "platform/Result.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/PathParts.h"

namespace pellak::posix {

/// The calls that files of our own are made with. Nothing at a path makes them wait or is written
/// to unless it is a regular file, and what root makes belongs to the owner of its folder: a home
/// folder's user must be able to write it again.

/// Opens a regular file, a final symbolic link not followed; O_CREAT makes it for its user alone.
/// Errors: invalid (no regular file), failed (a link among them), missing, denied, full, readOnly.
Result<Descriptor> openOwn(const std::string& percorso, int flags);

/// The same for a name in an open folder.
Result<Descriptor> openOwnAt(int cartella, const std::string& nome, int flags);

Result<void> writeAll(int file, std::string_view testo);

/// On the disk when it returns, where the file system can tell.
Result<void> syncFile(int file);
Result<void> syncFolder(const std::string& cartella);

/// The folder and the ones above it. Success when it is there already.
Result<void> makeFolders(std::string_view percorso, mode_t modo = 0777);

/// Gives what this process made as root to the owner of the folder it lies in.
void giveToOwner(int file, int cartella);

}  // namespace pellak::posix
