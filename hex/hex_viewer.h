#pragma once

#include "copy/engine/block_io.h"
#include "hex/hex_panes.h"
#include "records/drive_record.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace torvane {

/// The hex viewer's place on a drive and the sector's first bytes there. It begins at sector 0, with nothing read.
class HexViewer {
  public:
    /// `log` gets the rows about unreadable sectors.
    HexViewer(DriveRecord& drive, DriveIo& io, ErrorLog log);

    /// The current sector, in the drive's own sectors, and how many there are.
    [[nodiscard]] std::uint64_t sector() const { return sector_; }
    [[nodiscard]] std::uint64_t sectors() const { return sectors_; }
    [[nodiscard]] std::uint64_t sectorBytes() const { return sectorBytes_; }

    /// False, and no move, at the first or the last sector.
    bool toPrevious();
    bool toNext();
    void toScrollPosition(int position);
    void toSector(std::uint64_t sector);

    /// Reads the current sector. An unreadable one is counted and logged, and reads as the unreadable marker; where the
    /// drive cannot even be positioned, the bytes stay those of the last read.
    void read();
    [[nodiscard]] std::span<const std::byte, kHexViewBytes> bytes() const {
        return std::span(buffer_).first<kHexViewBytes>();
    }

  private:
    DriveRecord& drive_;
    DriveIo& io_;
    ErrorLog log_;
    std::uint64_t sectorBytes_;
    std::uint64_t sectors_;
    std::uint64_t sector_ = 0;
    std::vector<std::byte> buffer_; ///< whole sectors
};

} // namespace torvane
