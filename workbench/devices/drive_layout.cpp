#include "workbench/devices/drive_layout.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace torvane::bench {
namespace {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

enum Style : std::uint32_t { kMbr = 0, kGpt = 1, kRaw = 2 }; // PARTITION_STYLE

// DRIVE_LAYOUT_INFORMATION_EX, then PARTITION_INFORMATION_EX for each entry.
constexpr std::size_t kHeader = 48;
constexpr std::size_t kEntry = 144;
constexpr std::size_t kCountAt = 4;
constexpr std::size_t kNameAt = 8;
constexpr std::size_t kGptUsableAt = 24;
constexpr std::size_t kGptMaximumAt = 40;
constexpr std::size_t kStartAt = 8;
constexpr std::size_t kLengthAt = 16;
constexpr std::size_t kNumberAt = 24;
constexpr std::size_t kOfStyleAt = 32;

constexpr std::size_t kGuid = 16;
constexpr std::uint8_t kTypeNtfs = 0x07;
constexpr std::uint8_t kTypeProtective = 0xEE;
constexpr std::uint8_t kActive = 0x80;

Bytes header(Style style) {
    Bytes layout(kHeader);
    storeLe<std::uint32_t>(layout, 0, style);
    return layout;
}

// Appends an entry that tells its place. Its own part is still zero.
std::span<std::uint8_t> addEntry(Bytes& layout, Style style, std::uint64_t start, std::uint64_t length) {
    const std::size_t at = layout.size();
    layout.resize(at + kEntry);
    const std::uint32_t count = loadLe32(layout, kCountAt) + 1;
    storeLe<std::uint32_t>(layout, kCountAt, count);
    const std::span<std::uint8_t> entry = std::span(layout).subspan(at);
    storeLe<std::uint32_t>(entry, 0, style);
    storeLe<std::uint64_t>(entry, kStartAt, start);
    storeLe<std::uint64_t>(entry, kLengthAt, length);
    storeLe<std::uint32_t>(entry, kNumberAt, length == 0 ? 0 : count);
    return entry;
}

// --- MBR: signature at 440, four entries of 16 bytes at 446 (flag, type at 4, first sector and sectors at 8 and 12)

constexpr std::size_t kMbrSignatureAt = 440;
constexpr std::size_t kMbrTableAt = 446;
constexpr std::size_t kMbrEntry = 16;
constexpr std::size_t kMbrEntries = 4;

View mbrEntry(View sector, std::size_t index) {
    return sector.subspan(kMbrTableAt + index * kMbrEntry, kMbrEntry);
}

// A volume's boot sector ends in the same two bytes; where the table would lie, it has code.
bool holdsMbr(View sector) {
    for (std::size_t i = 0; i < kMbrEntries; ++i) {
        if ((mbrEntry(sector, i)[0] & ~kActive) != 0) {
            return false;
        }
    }
    return sector[510] == 0x55 && sector[511] == 0xAA;
}

Bytes mbrLayout(const DriveDescription& drive, View sector) {
    Bytes layout = header(kMbr);
    storeLe<std::uint32_t>(layout, kNameAt, loadLe32(sector, kMbrSignatureAt));
    for (std::size_t i = 0; i < kMbrEntries; ++i) {
        const View entry = mbrEntry(sector, i);
        const std::uint64_t size = drive.sectorSize;
        const auto told = addEntry(layout, kMbr, loadLe32(entry, 8) * size, loadLe32(entry, 12) * size);
        told[kOfStyleAt] = entry[4];
        told[kOfStyleAt + 1] = (entry[0] & kActive) != 0 ? 1 : 0;
    }
    return layout;
}

// --- GPT (UEFI specification): header in sector 1, entries where it says

bool holdsGpt(View mbr, View gpt) {
    constexpr std::string_view kSignature = "EFI PART";
    const bool isProtected = std::ranges::any_of(std::array{0, 1, 2, 3}, [&](int i) {
        return mbrEntry(mbr, static_cast<std::size_t>(i))[4] == kTypeProtective;
    });
    return isProtected && std::ranges::equal(gpt.first(kSignature.size()), kSignature, {}, {},
                                             [](char c) { return static_cast<std::uint8_t>(c); });
}

Bytes gptLayout(const DriveDescription& drive, View gpt, const ContentReader& read) {
    constexpr std::uint32_t kMostEntries = 1024;
    constexpr std::size_t kSmallestEntry = 128;
    const std::uint64_t size = drive.sectorSize;
    const std::uint64_t firstUsable = loadLe64(gpt, 40);
    const std::uint64_t lastUsable = loadLe64(gpt, 48);
    const std::uint32_t entries = std::min(loadLe32(gpt, 80), kMostEntries);
    const std::size_t entryBytes = std::clamp<std::size_t>(loadLe32(gpt, 84), kSmallestEntry, size);
    Bytes layout = header(kGpt);
    std::ranges::copy(gpt.subspan(56, kGuid), layout.begin() + kNameAt);
    storeLe<std::uint64_t>(layout, kGptUsableAt, firstUsable * size);
    storeLe<std::uint64_t>(layout, kGptUsableAt + 8, (lastUsable - firstUsable + 1) * size);
    storeLe<std::uint32_t>(layout, kGptMaximumAt, entries);
    const Bytes table = read(loadLe64(gpt, 72) * size, entries * entryBytes);
    for (std::uint32_t i = 0; i < entries; ++i) {
        const View entry = View(table).subspan(i * entryBytes, kSmallestEntry);
        if (std::ranges::any_of(entry.first(kGuid), [](std::uint8_t byte) { return byte != 0; })) {
            const std::uint64_t first = loadLe64(entry, 32);
            const auto told = addEntry(layout, kGpt, first * size, (loadLe64(entry, 40) - first + 1) * size);
            // Type, id, attributes and name stand in the same order in both.
            std::ranges::copy(entry.first(112), told.begin() + kOfStyleAt);
        }
    }
    return layout;
}

// --- Described volumes

// FNV-1a over what tells one content from another.
std::uint32_t signatureOf(const DriveDescription& drive) {
    std::uint32_t hash = 0x811C9DC5U;
    const auto add = [&](std::uint64_t value) { hash = (hash ^ static_cast<std::uint8_t>(value)) * 0x01000193U; };
    std::ranges::for_each(drive.backing.file, add);
    add(drive.backing.seed);
    add(drive.number);
    return hash;
}

Bytes volumeLayout(const DriveDescription& drive, const std::vector<VolumeExtent>& extents) {
    Bytes layout = header(kMbr);
    storeLe<std::uint32_t>(layout, kNameAt, signatureOf(drive));
    for (const VolumeExtent& extent : extents) {
        addEntry(layout, kMbr, extent.offset, extent.length)[kOfStyleAt] = kTypeNtfs;
    }
    // Windows tells as many entries as the table has room for.
    while (loadLe32(layout, kCountAt) % kMbrEntries != 0) {
        addEntry(layout, kMbr, 0, 0);
    }
    return layout;
}

} // namespace

Bytes driveLayout(const DriveDescription& drive, const ContentReader& read, const std::vector<VolumeExtent>& extents) {
    const Bytes mbr = read(0, drive.sectorSize);
    const Bytes gpt = read(drive.sectorSize, drive.sectorSize);
    if (holdsMbr(mbr)) {
        return holdsGpt(mbr, gpt) ? gptLayout(drive, gpt, read) : mbrLayout(drive, mbr);
    }
    return extents.empty() ? header(kRaw) : volumeLayout(drive, extents);
}

} // namespace torvane::bench
