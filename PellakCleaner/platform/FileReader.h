#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/Result.h"

namespace pellak {

/// What tells one state of a file's content from another. Two equal marks of one open file, taken
/// before and after a read, mean that nobody wrote in between.
struct FileMark {
  bool regular = false;
  std::int64_t size = 0;     ///< logical bytes
  std::int64_t mtimeNs = 0;  ///< last write of the content, nanoseconds since 1970
  std::int64_t ctimeNs = 0;  ///< last change of content or record, which no program can set back
  std::uint64_t dev = 0;
  std::uint64_t ino = 0;

  friend bool operator==(const FileMark&, const FileMark&) = default;
};

/// A file held open for reading. Any thread, several at once.
class OpenFile {
 public:
  virtual ~OpenFile() = default;

  /// As the system has it now. Errors: failed.
  virtual Result<FileMark> mark() const = 0;

  /// Reads from `offset` until `into` is full or the file ends, and says how much that was.
  /// Errors: denied, failed.
  virtual Result<std::size_t> readAt(std::int64_t offset, std::span<std::byte> into) const = 0;

  /// Whether it has a length and no data at all. False where the system does not tell.
  virtual bool allHole() const { return false; }

  /// Whether file numbers and times of status changes on its volume are true and lasting, so that
  /// equal marks days apart mean an unchanged file. False for foreign, shared and made-up volumes.
  virtual bool keepsChangeTimes() const { return false; }
};

/// How a file is going to be read, a hint for the system.
enum class ReadPlan {
  samples,  ///< a few places
  whole     ///< from the beginning to the end
};

/// Opens the user's files for reading their content. Any thread.
class FileReader {
 public:
  virtual ~FileReader() = default;

  /// `percorso` is bytes, absolute, of any length. A final symbolic link is not followed, and
  /// nothing at the path makes the call wait (a pipe without a writer opens). Errors: missing,
  /// denied, invalid, failed (a link among them).
  virtual Result<std::unique_ptr<OpenFile>> open(std::string_view percorso, ReadPlan plan) = 0;

  /// Whether entries of a folder may be made and taken away.
  virtual bool writable(std::string_view cartella) = 0;
};

/// The reader of the system the program was built for.
std::unique_ptr<FileReader> creaFileReader();

}  // namespace pellak
