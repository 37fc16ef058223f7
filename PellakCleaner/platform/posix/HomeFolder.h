#pragma once

#include <string>
#include <sys/types.h>

namespace pellak::posix {

/// The home folder of the user the process runs as, by the system's own records; empty when they
/// don't tell. Any thread.
std::string homeFolder();

/// Whose home folder it is, by name or else by number, when the process is root's and the folder
/// is not; empty otherwise.
std::string otherOwner(const std::string& home);

/// The user for whom things go to the Trash of a home folder: the folder's when the process is
/// root's, the process's own otherwise.
uid_t trashUser(const std::string& home);

}  // namespace pellak::posix
