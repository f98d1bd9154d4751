#pragma once

#include "base/transfer_outcome.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace torvane {

// Transfers at a place of an open device or file (a Win32 handle, synchronous). Each call brings its place along, so
// that several threads may use one handle: nobody's transfer goes where another thread has just moved the file pointer.
// A span is shorter than 4 GiB.

/// Moves the file pointer, to learn whether the place can be reached at all.
[[nodiscard]] bool canReach(void* handle, std::uint64_t offset);

/// Moves the whole span: whole, failed or gone; a write may be refused, too. Whether the place can be reached is not
/// asked. After a failure `GetLastError` tells why; after a short transfer it tells nothing.
[[nodiscard]] TransferOutcome readAt(void* handle, std::uint64_t offset, std::span<std::byte> bytes);
[[nodiscard]] TransferOutcome writeAt(void* handle, std::uint64_t offset, std::span<const std::byte> bytes);

/// The same from the file pointer on, which moves with it: for a file that one thread goes through from start to end.
[[nodiscard]] TransferOutcome readNext(void* handle, std::span<std::byte> bytes);
[[nodiscard]] TransferOutcome writeNext(void* handle, std::span<const std::byte> bytes);

/// Brings what was written to the file, through whatever handle, onto its medium (FlushFileBuffers): whole, failed or
/// gone. Whole, too, where the request is not known: then nobody tells of anything that is held back.
[[nodiscard]] TransferOutcome flushFile(void* handle);
/// The same of a drive. Whole as well where its handle is none that could be flushed.
[[nodiscard]] TransferOutcome flushDrive(void* handle);

} // namespace torvane
