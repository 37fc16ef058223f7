#include "platform/linux/RecordsAhead.h"

#include <system_error>
#include <utility>

#include "platform/linux/TrashRecord.h"

namespace pellak::native {
namespace {

/// One word to the other thread for so many records: waking it for each would cost more than
/// making them.
constexpr std::size_t kRecordsPerWord = 64;

}  // namespace

RecordsAhead::RecordsAhead(std::vector<Record> records, std::string date)
    : records_(std::move(records)),
      date_(std::move(date)),
      failures_(records_.size()),
      taken_(records_.size(), false) {
  try {
    thread_ = std::thread([this] { write(); });
  } catch (const std::system_error&) {
    next_ = records_.size();
  }
}

RecordsAhead::~RecordsAhead() {
  stopping_ = true;
  if (thread_.joinable()) thread_.join();
  for (std::size_t i = 0; i < written_; ++i) {
    if (!taken_[i] && !failures_[i]) removeRecord(*records_[i].cestino, records_[i].nome);
  }
}

void RecordsAhead::write() {
  std::size_t done = 0;
  for (std::size_t i = 0; i < records_.size() && !stopping_; ++i) {
    const Record& record = records_[i];
    if (auto made = writeRecord(*record.cestino, record.nome, record.percorso, date_); !made) {
      failures_[i] = made.error();
    }
    done = i + 1;
    if (done % kRecordsPerWord == 0) tell(done);
  }
  tell(done);
}

void RecordsAhead::tell(std::size_t written) {
  written_ = written;
  written_.notify_one();
}

std::optional<Result<void>> RecordsAhead::take(const TrashFolder& cestino,
                                               const std::string& nome) {
  std::size_t i = next_;
  while (i < records_.size() && (records_[i].cestino != &cestino || records_[i].nome != nome)) ++i;
  if (i == records_.size()) return {};
  next_ = i + 1;
  taken_[i] = true;
  for (std::size_t done = written_; done <= i; done = written_) written_.wait(done);
  if (failures_[i]) return Result<void>(*failures_[i]);
  return Result<void>();
}

}  // namespace pellak::native
