#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.h"
#include "platform/linux/TrashFolder.h"

namespace pellak::native {

/// The ".trashinfo" file that stands beside every item of a Trash folder: where it came from and
/// when. The freedesktop.org Trash, version 1.0.

/// The file's name for an item's.
std::string recordName(std::string_view nome);

/// The date of records, local time.
std::string recordDate();

/// Makes the record of an item from `percorso`, which thereby has the name for itself. Errors:
/// exists, full, denied, readOnly, failed; then there is no new record. `operazione` is named in a
/// line of our own.
Result<void> writeRecord(const TrashFolder& cestino, const std::string& nome,
                         std::string_view percorso, std::string_view data,
                         std::string_view operazione = {});

/// Where the item came from, absolute; empty when the record is cut short or no record. Nothing
/// when there is no file.
std::optional<std::string> recordedPath(const TrashFolder& cestino, const std::string& nome);

/// The operation that a record names; empty when it names none.
std::string recordedOperation(const TrashFolder& cestino, const std::string& nome);

void removeRecord(const TrashFolder& cestino, const std::string& nome);

/// The records of items that were moved out, unless another item has the name by now. Many at once:
/// where a freed block is told to the device each removal waits for it.
void removeRecords(const TrashFolder& cestino, const std::vector<std::string>& nomi);

/// Bytes as the Trash writes them: everything but unreserved characters and "/" as "%XX".
std::string percentEncoded(std::string_view byte);
std::string percentDecoded(std::string_view testo);

}  // namespace pellak::native
