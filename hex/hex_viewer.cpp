#include "hex/hex_viewer.h"

#include "records/sector_size.h"

#include <algorithm>
#include <utility>

namespace torvane {

HexViewer::HexViewer(DriveRecord& drive, DriveIo& io, ErrorLog log)
    : drive_(drive), io_(io), log_(std::move(log)), sectorBytes_(sectorSizeOf(drive)),
      // Not the record's count, which is in units of 512 bytes whatever the sector size.
      sectors_(static_cast<std::uint64_t>(std::max<std::int64_t>(drive.sizeBytes, 0)) / sectorBytes_),
      buffer_(hexReadBytes(drive.bytesPerSector)) {}

bool HexViewer::toPrevious() {
    if (sector_ == 0) {
        return false;
    }
    --sector_;
    return true;
}

bool HexViewer::toNext() {
    if (sector_ + 1 >= sectors_) {
        return false;
    }
    ++sector_;
    return true;
}

void HexViewer::toScrollPosition(int position) {
    sector_ = sectorAtScrollPosition(sectors_, position);
}

void HexViewer::toSector(std::uint64_t sector) {
    sector_ = sector;
}

void HexViewer::read() {
    ReadBlock(io_, drive_, buffer_, sector_ * sectorBytes_, log_);
}

} // namespace torvane
