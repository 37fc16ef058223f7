#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/TrashFolder.h"

namespace pellak::native {

/// Writes the records of items that are about to move on a thread of its own, in their order, so
/// that making a record and moving the item before it overlap. One user thread; the folders
/// outlive it.
class RecordsAhead {
 public:
  struct Record {
    const TrashFolder* cestino = nullptr;
    std::string nome;      ///< in the Trash
    std::string percorso;  ///< where the item comes from
  };

  /// Begins. Where the system gives no thread, nothing is written ahead.
  RecordsAhead(std::vector<Record> records, std::string date);
  /// Stops, and takes away the records that nobody took.
  ~RecordsAhead();
  RecordsAhead(const RecordsAhead&) = delete;
  RecordsAhead& operator=(const RecordsAhead&) = delete;

  /// Hands a record over, waiting until it is written: what came of it. Nothing when it is not one
  /// of those written ahead. Records are taken in their order; those passed over are lost to the
  /// destructor.
  std::optional<Result<void>> take(const TrashFolder& cestino, const std::string& nome);

 private:
  void write();
  void tell(std::size_t written);

  const std::vector<Record> records_;
  const std::string date_;
  std::vector<std::optional<Error>> failures_;  ///< of a record once it counts as written
  std::vector<bool> taken_;
  std::size_t next_ = 0;  ///< where the next one is looked for
  std::atomic<std::size_t> written_{0};
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace pellak::native
