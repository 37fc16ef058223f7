#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/DirectoryLister.h"

/// The records that getattrlistbulk packs into its buffer.
///
/// A record is its 32-bit length, the set of returned attributes (five 32-bit masks: common,
/// volume, directory, file, fork), then the attributes of those masks in the order of the
/// constants below: a name as 32-bit offset (from that very field) and 32-bit length with its
/// NUL byte, the device, the object type, the modification time as two 64-bit numbers, the
/// flags, the file id, the total and the allocated size. Numbers have the machine's byte order.
namespace pellak::bulk {

inline constexpr std::uint32_t kName = 0x00000001;
inline constexpr std::uint32_t kDevice = 0x00000002;
inline constexpr std::uint32_t kObjectType = 0x00000008;
inline constexpr std::uint32_t kModified = 0x00000400;
inline constexpr std::uint32_t kFlags = 0x00040000;
inline constexpr std::uint32_t kFileId = 0x02000000;
inline constexpr std::uint32_t kReturned = 0x80000000;
inline constexpr std::uint32_t kTotalSize = 0x00000002;  ///< of the file mask
inline constexpr std::uint32_t kAllocSize = 0x00000004;  ///< of the file mask

/// What a listing asks for.
inline constexpr std::uint32_t kCommonMask =
    kReturned | kName | kDevice | kObjectType | kModified | kFlags | kFileId;
inline constexpr std::uint32_t kFileMask = kTotalSize | kAllocSize;

/// Appends the first `count` records of `buffer` to `into`, whose names then point into the
/// buffer; nameless records are left out. False when a record's length is 0 or a record, or
/// something in it, lies outside the buffer: then `into` is worthless.
bool parse(std::span<const std::byte> buffer, std::size_t count, EntryBatch& into);

}  // namespace pellak::bulk
