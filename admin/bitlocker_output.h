#pragma once

#include "records/bitlocker_entry.h"

#include <span>
#include <string>

namespace torvane {

// What the BitLocker cmdlet printed about one volume, read for its outcome.

enum class BitLockerFinding {
    kNoOutput,     ///< nothing was printed: not encrypted
    kNotEncrypted, ///< something was printed, but no protector
    kKeyRead,
    kLocked,  ///< protectors, none of which tells its recovery password
    kNotTold, ///< an error record of PowerShell in their place
};

struct BitLockerCheck {
    BitLockerFinding finding = BitLockerFinding::kNoOutput;
    BitLockerVolumeEntry entry; ///< zero-filled but for kKeyRead and, its letter alone, kLocked
    std::string error;          ///< of kNotTold: the record's first line
};

/// Room for one line and for one word of the output; what does not fit is not seen.
struct BitLockerScratch {
    std::span<char> line;
    std::span<char> word;
};

/// Reads the NUL-terminated list of the volume's key protectors, its lines ended by CR LF. The first recovery password
/// that is there decides.
[[nodiscard]] BitLockerCheck readKeyProtectors(const char* output, char driveLetter, const BitLockerScratch& scratch);

/// The scan dialog's "Status" and "Key" cells.
[[nodiscard]] const char* bitLockerStatusText(BitLockerFinding finding);
[[nodiscard]] const char* bitLockerKeyText(const BitLockerCheck& check);

} // namespace torvane
