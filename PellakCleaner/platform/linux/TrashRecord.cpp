#include "platform/linux/TrashRecord.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/OwnFile.h"
#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

using posix::Descriptor;
using posix::errnoError;

constexpr mode_t kPrivate = 0600;
/// Far more than any path needs: records are read whole.
constexpr std::size_t kMaxRecord = std::size_t{1} << 20U;
constexpr std::size_t kMaxLanes = 7;  ///< beside the caller's own
constexpr std::size_t kRecordsPerLane = 100;
/// A line of our own, which other readers of records must pass over.
constexpr std::string_view kOperation = "X-Pellak-Op=";

/// Nothing when there is no file.
std::optional<std::string> readRecord(const TrashFolder& cestino, const std::string& nome) {
  const Descriptor file(::openat(cestino.info.get(), recordName(nome).c_str(),
                                 O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  if (!file && errno == ENOENT) return std::nullopt;
  if (!file) return std::string();
  auto testo = posix::readToEnd(file.get(), kMaxRecord);
  return testo ? *testo : std::string();
}

/// The rest of the first whole line that begins with `chiave`.
std::string_view lineOf(std::string_view testo, std::string_view chiave) {
  const std::size_t inizio = testo.find("\n" + std::string(chiave));
  if (inizio == std::string_view::npos) return {};
  const std::size_t da = inizio + 1 + chiave.size();
  const std::size_t fine = testo.find('\n', da);
  return fine == std::string_view::npos ? std::string_view() : testo.substr(da, fine - da);
}

int digit(char carattere) {
  if (carattere >= '0' && carattere <= '9') return carattere - '0';
  if (carattere >= 'A' && carattere <= 'F') return carattere - 'A' + 10;
  if (carattere >= 'a' && carattere <= 'f') return carattere - 'a' + 10;
  return -1;
}

constexpr std::array<bool, 256> unreserved() {
  std::array<bool, 256> liberi{};
  for (const char carattere :
       std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/")) {
    liberi[static_cast<unsigned char>(carattere)] = true;
  }
  return liberi;
}

void appendEncoded(std::string& testo, std::string_view byte) {
  constexpr std::array<bool, 256> kFree = unreserved();
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  for (const char carattere : byte) {
    const auto valore = static_cast<unsigned char>(carattere);
    if (kFree[valore]) {
      testo += carattere;
    } else {
      testo += '%';
      testo += kDigits[valore >> 4U];
      testo += kDigits[valore & 15U];
    }
  }
}

}  // namespace

std::string recordName(std::string_view nome) { return std::string(nome) + ".trashinfo"; }

std::string recordDate() {
  const std::time_t adesso = std::time(nullptr);
  std::tm data{};
  ::localtime_r(&adesso, &data);
  char testo[32];
  const std::size_t lungo = std::strftime(testo, sizeof testo, "%Y-%m-%dT%H:%M:%S", &data);
  return {testo, lungo};
}

Result<void> writeRecord(const TrashFolder& cestino, const std::string& nome,
                         std::string_view percorso, std::string_view data,
                         std::string_view operazione) {
  // Records of a volume's own Trash name the place from its top.
  if (!cestino.cima.empty())
    percorso.remove_prefix(cestino.cima == "/" ? 1 : cestino.cima.size() + 1);
  std::string testo = "[Trash Info]\nPath=";
  appendEncoded(testo, percorso);
  testo.append("\nDeletionDate=").append(data).append("\n");
  if (!operazione.empty()) testo.append(kOperation).append(operazione).append("\n");
  const auto scrivi = [&]() -> Result<void> {
    const Descriptor file(::openat(cestino.info.get(), recordName(nome).c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kPrivate));
    if (!file) return errnoError(errno);
    posix::giveToOwner(file.get(), cestino.info.get());
    auto scritto = posix::writeAll(file.get(), testo);
    if (!scritto) removeRecord(cestino, nome);
    return scritto;
  };
  if (cestino.riserva == nullptr) return scrivi();
  return cestino.riserva->conRiserva(cestino.percorso, scrivi);
}

std::optional<std::string> recordedPath(const TrashFolder& cestino, const std::string& nome) {
  const auto testo = readRecord(cestino, nome);
  if (!testo) return std::nullopt;
  std::string percorso = percentDecoded(lineOf(*testo, "Path="));
  if (percorso.empty() || percorso[0] == '/' || cestino.cima.empty()) return percorso;
  return (cestino.cima == "/" ? std::string() : cestino.cima) + "/" + percorso;
}

std::string recordedOperation(const TrashFolder& cestino, const std::string& nome) {
  const auto testo = readRecord(cestino, nome);
  return testo ? std::string(lineOf(*testo, kOperation)) : std::string();
}

void removeRecord(const TrashFolder& cestino, const std::string& nome) {
  ::unlinkat(cestino.info.get(), recordName(nome).c_str(), 0);
}

void removeRecords(const TrashFolder& cestino, const std::vector<std::string>& nomi) {
  std::atomic<std::size_t> prossimo{0};
  const auto corsia = [&] {
    for (std::size_t i = prossimo++; i < nomi.size(); i = prossimo++) {
      struct stat info {};
      const bool preso =
          ::fstatat(cestino.files.get(), nomi[i].c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
      if (!preso) removeRecord(cestino, nomi[i]);
    }
  };
  std::vector<std::thread> altre;
  altre.reserve(kMaxLanes);
  try {
    while (altre.size() < std::min(kMaxLanes, nomi.size() / kRecordsPerLane)) {
      altre.emplace_back(corsia);
    }
  } catch (const std::system_error&) {
    // The lanes there are do it all.
  }
  corsia();
  for (std::thread& altra : altre) altra.join();
}

std::string percentEncoded(std::string_view byte) {
  std::string testo;
  appendEncoded(testo, byte);
  return testo;
}

std::string percentDecoded(std::string_view testo) {
  std::string byte;
  byte.reserve(testo.size());
  for (std::size_t i = 0; i < testo.size(); ++i) {
    const bool coppia = testo[i] == '%' && i + 3 <= testo.size() && digit(testo[i + 1]) >= 0 &&
                        digit(testo[i + 2]) >= 0;
    if (coppia) {
      byte += static_cast<char>(digit(testo[i + 1]) * 16 + digit(testo[i + 2]));
      i += 2;
    } else {
      byte += testo[i];
    }
  }
  return byte;
}

}  // namespace pellak::native
