#include "workbench/devices/ata_smart.h"

#include "base/bytes.h"

#include <algorithm>

namespace torvane::bench {
namespace {

constexpr std::uint16_t kRevision = 0x0010;
constexpr std::size_t kFirstEntry = 2;
constexpr std::size_t kEntryLength = 12;

} // namespace

AtaBlock smartDataBlock(const SmartDescription& smart) {
    AtaBlock block{};
    storeLe<std::uint16_t>(block, 0, kRevision);
    for (std::size_t i = 0; i < smart.attributes.size(); ++i) {
        const SmartAttribute& attribute = smart.attributes[i];
        const std::size_t at = kFirstEntry + i * kEntryLength;
        block[at] = attribute.id;
        storeLe<std::uint16_t>(block, at + 1, attribute.flags);
        block[at + 3] = attribute.value;
        block[at + 4] = attribute.worst;
        std::copy(attribute.raw.begin(), attribute.raw.end(), block.begin() + static_cast<std::ptrdiff_t>(at + 5));
    }
    block[362] = 0x82; // off-line data collection completed, automatic collection enabled
    block[363] = smart.selfTestStatus;
    storeLe<std::uint16_t>(block, 364, 600);    // seconds to complete off-line data collection
    block[367] = 0x5B;                          // immediate, automatic, suspend, self-test, selective self-test
    storeLe<std::uint16_t>(block, 368, 0x0003); // saves before power saving, autosave
    block[370] = 0x01;                          // error logging
    block[372] = 2;                             // minutes, short self-test
    block[373] = 90;                            // minutes, extended self-test
    sealBlock(block);
    return block;
}

AtaBlock smartThresholdsBlock(const SmartDescription& smart) {
    AtaBlock block{};
    storeLe<std::uint16_t>(block, 0, kRevision);
    for (std::size_t i = 0; i < smart.attributes.size(); ++i) {
        const std::size_t at = kFirstEntry + i * kEntryLength;
        block[at] = smart.attributes[i].id;
        block[at + 1] = smart.attributes[i].threshold;
    }
    sealBlock(block);
    return block;
}

} // namespace torvane::bench
