#include "workbench/devices/ata_logs.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>
#include <limits>

namespace torvane::bench {
namespace {

// Log addresses, ATA/ATAPI Command Set, annex "Log Definitions".
constexpr std::uint8_t kDirectory = 0x00;
constexpr std::uint8_t kSummaryErrors = 0x01;
constexpr std::uint8_t kExtendedErrors = 0x03;
constexpr std::uint8_t kSelfTests = 0x06;
constexpr std::uint8_t kExtendedSelfTests = 0x07;
constexpr std::uint8_t kSelectiveSelfTest = 0x09;

using Pages = std::vector<std::uint8_t>;

std::span<std::uint8_t, kAtaBlock> page(Pages& pages, std::size_t index) {
    return std::span<std::uint8_t, kAtaBlock>(pages.data() + index * kAtaBlock, kAtaBlock);
}

Pages emptyPages(std::size_t count) {
    return Pages(count * kAtaBlock);
}

void sealPages(Pages& pages) {
    for (std::size_t i = 0; i < pages.size() / kAtaBlock; ++i) {
        sealBlock(page(pages, i));
    }
}

std::size_t pagesFor(std::size_t entries, std::size_t perPage) {
    return std::max<std::size_t>(1, (entries + perPage - 1) / perPage);
}

std::uint8_t byteOf(std::uint64_t value, unsigned index) {
    return static_cast<std::uint8_t>(value >> (8 * index));
}

std::uint16_t errorCount(const SmartDescription& smart) {
    return static_cast<std::uint16_t>(
        std::min<std::size_t>(smart.errorLog.size(), std::numeric_limits<std::uint16_t>::max()));
}

// --- summary error log: five entries of 90 bytes, each five commands of 12 bytes and an error of 30 ---------------

constexpr std::size_t kSummaryEntries = 5;
constexpr std::size_t kFailedCommand = 4; // of the five: the last

void fillSummaryEntry(std::span<std::uint8_t> entry, const AtaErrorEntry& error) {
    const auto device = static_cast<std::uint8_t>(0xE0U | (byteOf(error.lba, 3) & 0x0FU));
    const std::span<std::uint8_t> command = entry.subspan(kFailedCommand * 12, 12);
    command[2] = static_cast<std::uint8_t>(error.sectors);
    command[3] = byteOf(error.lba, 0);
    command[4] = byteOf(error.lba, 1);
    command[5] = byteOf(error.lba, 2);
    command[6] = device;
    command[7] = error.command;
    const std::span<std::uint8_t> failure = entry.subspan(60, 30);
    failure[1] = error.error;
    failure[2] = static_cast<std::uint8_t>(error.sectors);
    failure[3] = byteOf(error.lba, 0);
    failure[4] = byteOf(error.lba, 1);
    failure[5] = byteOf(error.lba, 2);
    failure[6] = device;
    failure[7] = error.status;
    failure[27] = 0x03; // active or idle
    storeLe<std::uint16_t>(failure, 28, error.hours);
}

Pages summaryErrors(const SmartDescription& smart) {
    Pages pages = emptyPages(1);
    const std::span<std::uint8_t> block = page(pages, 0);
    block[0] = 1;
    const std::size_t count = smart.errorLog.size();
    if (count > 0) {
        block[1] = static_cast<std::uint8_t>((count - 1) % kSummaryEntries + 1);
    }
    // A ring: the newest entries overwrite the oldest.
    for (std::size_t i = count > kSummaryEntries ? count - kSummaryEntries : 0; i < count; ++i) {
        fillSummaryEntry(block.subspan(2 + (i % kSummaryEntries) * 90, 90), smart.errorLog[i]);
    }
    storeLe<std::uint16_t>(block, 452, errorCount(smart));
    sealPages(pages);
    return pages;
}

// --- extended comprehensive error log: four entries of 124 bytes a page, five commands of 18 bytes, an error of 34 ---

constexpr std::size_t kExtendedPerPage = 4;
constexpr std::uint8_t kReadFpdmaQueued = 0x60;

void fillExtendedEntry(std::span<std::uint8_t> entry, const AtaErrorEntry& error) {
    const std::span<std::uint8_t> command = entry.subspan(kFailedCommand * 18, 18);
    // A queued command counts its sectors in the features register and has its tag, 0 here, in the count register.
    storeLe<std::uint16_t>(command, error.command == kReadFpdmaQueued ? 1 : 3, error.sectors);
    const std::span<std::uint8_t> failure = entry.subspan(90, 34);
    failure[1] = error.error;
    storeLe<std::uint16_t>(failure, 2, error.sectors);
    // Each of the three address registers with its previous content: bits 7:0 and 31:24, 15:8 and 39:32, 23:16 and
    // 47:40.
    for (unsigned i = 0; i < 3; ++i) {
        command[5 + 2 * i] = failure[4 + 2 * i] = byteOf(error.lba, i);
        command[6 + 2 * i] = failure[5 + 2 * i] = byteOf(error.lba, i + 3);
    }
    command[11] = failure[10] = 0x40;
    command[12] = error.command;
    failure[11] = error.status;
    failure[31] = 0x03;
    storeLe<std::uint16_t>(failure, 32, error.hours);
}

Pages extendedErrors(const SmartDescription& smart) {
    const std::size_t count = smart.errorLog.size();
    Pages pages = emptyPages(pagesFor(count, kExtendedPerPage));
    for (std::size_t i = 0; i < count; ++i) {
        fillExtendedEntry(page(pages, i / kExtendedPerPage).subspan(4 + (i % kExtendedPerPage) * 124, 124),
                          smart.errorLog[i]);
    }
    const std::span<std::uint8_t> first = page(pages, 0);
    first[0] = 1;
    storeLe<std::uint16_t>(first, 2, errorCount(smart)); // one-based place of the newest entry
    storeLe<std::uint16_t>(first, 500, errorCount(smart));
    sealPages(pages);
    return pages;
}

// --- self-test logs ------------------------------------------------------------------------------------------------

constexpr std::size_t kSelfTestEntries = 21;
constexpr std::size_t kExtendedSelfTestPerPage = 19;

Pages selfTests(const SmartDescription& smart) {
    Pages pages = emptyPages(1);
    const std::span<std::uint8_t> block = page(pages, 0);
    storeLe<std::uint16_t>(block, 0, 1);
    const std::size_t count = smart.selfTestLog.size();
    for (std::size_t i = count > kSelfTestEntries ? count - kSelfTestEntries : 0; i < count; ++i) {
        const AtaSelfTestEntry& test = smart.selfTestLog[i];
        const std::span<std::uint8_t> entry = block.subspan(2 + (i % kSelfTestEntries) * 24, 24);
        entry[0] = test.test;
        entry[1] = test.status;
        storeLe<std::uint16_t>(entry, 2, test.hours);
        storeLe<std::uint32_t>(entry, 5, static_cast<std::uint32_t>(test.lba));
    }
    block[508] = count == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>((count - 1) % kSelfTestEntries + 1);
    sealPages(pages);
    return pages;
}

Pages extendedSelfTests(const SmartDescription& smart) {
    const std::size_t count = smart.selfTestLog.size();
    Pages pages = emptyPages(pagesFor(count, kExtendedSelfTestPerPage));
    for (std::size_t i = 0; i < count; ++i) {
        const AtaSelfTestEntry& test = smart.selfTestLog[i];
        const std::span<std::uint8_t> entry =
            page(pages, i / kExtendedSelfTestPerPage).subspan(4 + (i % kExtendedSelfTestPerPage) * 26, 26);
        entry[0] = test.test;
        entry[1] = test.status;
        storeLe<std::uint16_t>(entry, 2, test.hours);
        for (unsigned byte = 0; byte < 6; ++byte) {
            entry[5 + byte] = byteOf(test.lba, byte);
        }
    }
    const std::span<std::uint8_t> first = page(pages, 0);
    first[0] = 1;
    storeLe<std::uint16_t>(first, 2, static_cast<std::uint16_t>(count));
    sealPages(pages);
    return pages;
}

Pages selectiveSelfTest() {
    Pages pages = emptyPages(1);
    storeLe<std::uint16_t>(page(pages, 0), 0, 1);
    sealPages(pages);
    return pages;
}

// The directory says for each address how many pages its log has.
template <typename PagesOf>
Pages directory(PagesOf pagesOf) {
    Pages pages = emptyPages(1);
    const std::span<std::uint8_t> block = page(pages, 0);
    storeLe<std::uint16_t>(block, 0, 1);
    for (std::size_t address = 1; address < 256; ++address) {
        const std::optional<Pages> log = pagesOf(static_cast<std::uint8_t>(address));
        if (log) {
            storeLe<std::uint16_t>(block, 2 * address, static_cast<std::uint16_t>(log->size() / kAtaBlock));
        }
    }
    return pages; // the directory has no checksum
}

} // namespace

std::optional<std::vector<std::uint8_t>> smartLogPages(const SmartDescription& smart, std::uint8_t address) {
    switch (address) {
    case kDirectory:
        return directory([&](std::uint8_t other) { return smartLogPages(smart, other); });
    case kSummaryErrors:
        return summaryErrors(smart);
    case kSelfTests:
        return selfTests(smart);
    case kSelectiveSelfTest:
        return selectiveSelfTest();
    default:
        return std::nullopt;
    }
}

std::optional<std::vector<std::uint8_t>> generalLogPages(const SmartDescription& smart, std::uint8_t address) {
    switch (address) {
    case kDirectory:
        return directory([&](std::uint8_t other) { return generalLogPages(smart, other); });
    case kExtendedErrors:
        return extendedErrors(smart);
    case kExtendedSelfTests:
        return extendedSelfTests(smart);
    default:
        return std::nullopt;
    }
}

} // namespace torvane::bench
