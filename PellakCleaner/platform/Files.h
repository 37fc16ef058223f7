#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace pellak {

/// Held while it lives; dropped by its destructor and by the end of the process.
class FileLock {
 public:
  virtual ~FileLock() = default;
};

/// Our own small files: settings, results, logs. Paths are bytes, absolute. Any thread.
///
/// What is no regular file is neither read nor written (invalid), and a symbolic link that stands
/// in the place of the log or of a lock is not followed. A write that finds the disk full is tried
/// again with the room that is kept for that. Errors of writes name the file.
class Files {
 public:
  virtual ~Files() = default;

  /// The whole content. Errors: missing, denied, invalid (no regular file, or more than
  /// `limite` bytes), failed.
  virtual Result<std::string> read(std::string_view percorso, std::size_t limite) = 0;

  /// What the file gives until its end, at most `massimo` bytes of it: for files of the system,
  /// which tell no size. Errors: missing, denied, invalid (no regular file), failed.
  virtual Result<std::string> readToEnd(std::string_view percorso, std::size_t massimo) = 0;

  /// Puts `pezzi`, joined, in the place of the file or leaves the old file untouched: temporary
  /// file in the same folder, write, sync, rename, sync of the folder. Missing folders are
  /// made. Errors: denied, full, readOnly, failed.
  virtual Result<void> replace(std::string_view percorso,
                               std::span<const std::string_view> pezzi) = 0;

  /// Appends `riga` and a newline with one write and syncs before it returns. Missing folders
  /// are made. Where no room was left for all of it a part may stand there, which the next line
  /// does not continue.
  virtual Result<void> appendLine(std::string_view percorso, std::string_view riga) = 0;

  /// Sees to it that a line of `byte` bytes can be appended: the file is made when missing and,
  /// where the file system can, has that room set aside. Errors as for `appendLine`.
  virtual Result<void> appendable(std::string_view percorso, std::size_t byte) = 0;

  /// The folder and the ones above it. Success when it is there already.
  virtual Result<void> makeFolder(std::string_view percorso) = 0;

  /// Takes away a file that this program itself wrote (settings reset, login item). Never called
  /// with a path of the user's. A missing file is success.
  virtual Result<void> removeOwn(std::string_view percorso) = 0;

  /// Gives a file of our own that can't be understood a name ending in ".guasto" that is free, so
  /// that it is in nobody's way and nothing of it is lost.
  virtual Result<void> setAside(std::string_view percorso) = 0;

  /// Whether a file or folder can be opened for reading (and a folder listed); the error says
  /// why not. Touches nothing.
  virtual Result<void> readable(std::string_view percorso) = 0;

  /// A text that is another one whenever the file was replaced; empty when there is none.
  virtual std::string stamp(std::string_view percorso) = 0;

  /// Whether something is at the path, a dangling link included.
  virtual bool exists(std::string_view percorso) = 0;

  /// Waits for the advisory lock on a file, which is made when missing, against other processes
  /// and other callers here, for a few seconds at most. Where the file system knows no locks it
  /// succeeds without one. Errors: busy (somebody else kept it), denied, readOnly, failed.
  virtual Result<std::unique_ptr<FileLock>> lock(std::string_view percorso) = 0;

  /// The same without waiting.
  virtual Result<std::unique_ptr<FileLock>> tryLock(std::string_view percorso) = 0;
};

}  // namespace pellak
