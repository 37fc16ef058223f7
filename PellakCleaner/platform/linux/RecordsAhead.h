#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/TrashFolder.h"

namespace pellak::native {

/// Writes the records of items that are about to move, in their order, on a thread of its own, so
/// that making records and moving the items before them overlap. One user thread, which lends a
/// hand where it would have to wait; the folders outlive it.
class RecordsAhead {
 public:
  struct Record {
    const TrashFolder* cestino = nullptr;
    std::string nome;      ///< in the Trash
    std::string percorso;  ///< where the item comes from
  };

  /// Begins. Where the system gives no thread, the user's writes them all in `take`.
  RecordsAhead(std::vector<Record> records, std::string date, std::string operation);
  /// Stops, and takes away the records that nobody took.
  ~RecordsAhead();
  RecordsAhead(const RecordsAhead&) = delete;
  RecordsAhead& operator=(const RecordsAhead&) = delete;

  /// Hands a record over once it is written: what came of it. Nothing when it is not one of those
  /// written ahead. Records are taken in their order; those passed over are lost to the destructor.
  std::optional<Result<void>> take(const TrashFolder& cestino, const std::string& nome);

 private:
  bool writeNext();

  const std::vector<Record> records_;
  const std::string date_;
  const std::string operation_;
  std::atomic<std::size_t> begun_{0};    ///< records somebody writes or has written
  std::vector<std::atomic<bool>> done_;  ///< of each record; its failure is there to read then
  std::vector<std::optional<Error>> failures_;
  std::vector<bool> taken_;
  std::size_t next_ = 0;  ///< where the next one to be taken is looked for
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

}  // namespace pellak::native
