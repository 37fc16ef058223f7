#include "platform/linux/RecordsAhead.h"

#include <system_error>
#include <utility>

#include "platform/linux/TrashRecord.h"

namespace pellak::native {

RecordsAhead::RecordsAhead(std::vector<Record> records, std::string date, std::string operation)
    : records_(std::move(records)),
      date_(std::move(date)),
      operation_(std::move(operation)),
      done_(records_.size()),
      failures_(records_.size()),
      taken_(records_.size(), false) {
  try {
    thread_ = std::thread([this] {
      while (!stopping_ && writeNext()) {
      }
    });
  } catch (const std::system_error&) {
    // `take` does it all.
  }
}

RecordsAhead::~RecordsAhead() {
  stopping_ = true;
  if (thread_.joinable()) thread_.join();
  for (std::size_t i = 0; i < records_.size(); ++i) {
    if (done_[i] && !taken_[i] && !failures_[i]) {
      removeRecord(*records_[i].cestino, records_[i].nome);
    }
  }
}

/// Whether there was one left to write.
bool RecordsAhead::writeNext() {
  const std::size_t i = begun_++;
  if (i >= records_.size()) return false;
  const Record& record = records_[i];
  auto made = writeRecord(*record.cestino, record.nome, record.percorso, date_, operation_);
  if (!made) failures_[i] = made.error();
  done_[i] = true;
  done_[i].notify_one();
  return true;
}

std::optional<Result<void>> RecordsAhead::take(const TrashFolder& cestino,
                                               const std::string& nome) {
  std::size_t i = next_;
  while (i < records_.size() && (records_[i].cestino != &cestino || records_[i].nome != nome)) ++i;
  if (i == records_.size()) return {};
  next_ = i + 1;
  taken_[i] = true;
  while (!done_[i] && writeNext()) {
  }
  done_[i].wait(false);
  if (failures_[i]) return Result<void>(*failures_[i]);
  return Result<void>();
}

}  // namespace pellak::native
