#include "copy/engine/block_layout.h"

#include "records/sector_size.h"

#include <algorithm>
#include <string_view>

namespace torvane {

namespace {

constexpr std::string_view kUnreadableMarker = "KVL<->UNREADABLE";
static_assert(kUnreadableMarker.size() == kUnreadableMarkerSize);

} // namespace

BlockSplit SplitIntoBlocks(std::uint64_t byteCount, std::size_t blockSize) {
    return {.fullBlocks = byteCount / blockSize, .remainder = byteCount % blockSize};
}

std::size_t bytesUpTo(std::uint64_t end, const BlockExtent& extent) {
    return static_cast<std::size_t>(std::clamp<std::uint64_t>(end, extent.offset, extent.offset + extent.length) -
                                    extent.offset);
}

BlockExtent BlockOrder::extent(std::uint64_t index) const {
    if (index == split_.fullBlocks) {
        const std::uint64_t offset = reverse_ ? 0 : split_.fullBlocks * blockSize_;
        return {.offset = offset, .length = static_cast<std::size_t>(split_.remainder)};
    }
    const std::uint64_t offset = reverse_ ? byteCount_ - (index + 1) * blockSize_ : index * blockSize_;
    return {.offset = offset, .length = blockSize_};
}

void fillWithUnreadableMarker(std::span<std::byte> block) {
    const auto marker = std::as_bytes(std::span(kUnreadableMarker));
    const std::size_t whole = block.size() - block.size() % marker.size();
    // What is filled is copied behind itself, so that the copies become long ones.
    for (std::size_t filled = 0; filled < whole;) {
        const std::span<const std::byte> filling = filled == 0 ? marker : block.first(std::min(filled, whole - filled));
        std::copy(filling.begin(), filling.end(), block.begin() + static_cast<std::ptrdiff_t>(filled));
        filled += filling.size();
    }
}

std::int64_t sectorOfOffset(std::uint64_t offset, std::int32_t bytesPerSector) {
    // A division of signed numbers: a negative sector size is divided by as it was told.
    if (bytesPerSector == -1) {
        return static_cast<std::int64_t>(0 - offset); // what would overflow wraps around
    }
    return static_cast<std::int64_t>(offset) / (bytesPerSector == 0 ? kUsualSectorSize : bytesPerSector);
}

} // namespace torvane
