#include "tests/unit/workbench_drives.h"
#include "workbench/description/bench_state.h"
#include "workbench/devices/drive_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {
namespace {

using testing::drive;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kSector = 512;
constexpr std::size_t kEntry = 144;
constexpr const char* kPlain = R"("removable": false)";

/// What lies on a drive, in memory.
class Content {
  public:
    Content() : bytes_(64 * kSector) {}

    void put(std::size_t offset, std::string_view text) { std::ranges::copy(text, bytes_.begin() + at(offset)); }
    void put32(std::size_t offset, std::uint32_t value) { storeLe(std::span(bytes_), offset, value); }
    void put64(std::size_t offset, std::uint64_t value) { storeLe(std::span(bytes_), offset, value); }

    /// An MBR with its first and third entry in use.
    void putMbr(std::uint8_t type = 7) {
        put32(440, 0xCAFE1234);
        bytes_[446] = 0x80;
        bytes_[446 + 4] = type;
        put32(446 + 8, 2048);
        put32(446 + 12, 4096);
        bytes_[478 + 4] = 12;
        bytes_[510] = 0x55;
        bytes_[511] = 0xAA;
    }
    void putGpt() {
        putMbr(0xEE);
        put(kSector, "EFI PART");
        put64(kSector + 40, 34);
        put64(kSector + 48, 16350);
        put(kSector + 56, "The disk's GUID.");
        put64(kSector + 72, 2);
        put32(kSector + 80, 8);
        put32(kSector + 84, 128);
        const std::size_t third = 2 * kSector + 2 * 128;
        put(third, "The type's GUID.its own GUID...");
        put64(third + 32, 40);
        put64(third + 40, 47);
    }

    [[nodiscard]] Bytes layout(const DriveDescription& drive, const std::vector<VolumeExtent>& extents = {}) const {
        const auto read = [&](std::uint64_t offset, std::size_t length) {
            Bytes out(length);
            const std::size_t here = std::min(length, bytes_.size() - std::min<std::size_t>(offset, bytes_.size()));
            std::copy_n(bytes_.begin() + at(offset), here, out.begin());
            return out;
        };
        return driveLayout(drive, read, extents);
    }

  private:
    static std::ptrdiff_t at(std::uint64_t offset) { return static_cast<std::ptrdiff_t>(offset); }

    Bytes bytes_;
};

std::uint32_t styleOf(const Bytes& layout) {
    return loadLe32(layout, 0);
}
std::uint32_t countOf(const Bytes& layout) {
    return loadLe32(layout, 4);
}
ByteView entryOf(const Bytes& layout, std::size_t index) {
    return ByteView(layout).subspan(48 + index * kEntry, kEntry);
}

TEST(WorkbenchLayout, AnEmptyDriveIsRaw) {
    const Bytes layout = Content().layout(drive(kPlain));
    EXPECT_EQ(styleOf(layout), 2U);
    EXPECT_EQ(countOf(layout), 0U);
    EXPECT_EQ(layout.size(), 48U);
}

TEST(WorkbenchLayout, AnMbrTellsItsSignatureAndFourEntries) {
    Content content;
    content.putMbr();
    const Bytes layout = content.layout(drive(kPlain), {{.disk = 3, .offset = 0, .length = 512}});
    EXPECT_EQ(styleOf(layout), 0U);
    EXPECT_EQ(loadLe32(layout, 8), 0xCAFE1234U);
    ASSERT_EQ(countOf(layout), 4U);
    ASSERT_EQ(layout.size(), 48 + 4 * kEntry);
    EXPECT_EQ(loadLe64(entryOf(layout, 0), 8), 2048U * 512U);
    EXPECT_EQ(loadLe64(entryOf(layout, 0), 16), 4096U * 512U);
    EXPECT_EQ(loadLe32(entryOf(layout, 0), 24), 1U);
    EXPECT_EQ(entryOf(layout, 0)[32], 7);
    EXPECT_EQ(entryOf(layout, 0)[33], 1) << "active";
    EXPECT_EQ(entryOf(layout, 1)[32], 0);
    EXPECT_EQ(entryOf(layout, 2)[32], 12);
    EXPECT_EQ(entryOf(layout, 3)[32], 0);
}

TEST(WorkbenchLayout, ABootSectorIsNoMbr) {
    Content content;
    content.putMbr();
    content.put(446 + 16, "\x33");
    EXPECT_EQ(styleOf(content.layout(drive(kPlain))), 2U);
}

TEST(WorkbenchLayout, AGptTellsTheDisksIdAndTheEntriesInUse) {
    Content content;
    content.putGpt();
    const Bytes layout = content.layout(drive(kPlain));
    EXPECT_EQ(styleOf(layout), 1U);
    EXPECT_EQ(std::memcmp(layout.data() + 8, "The disk's GUID.", 16), 0);
    EXPECT_EQ(loadLe64(layout, 24), 34U * 512U);
    EXPECT_EQ(loadLe32(layout, 40), 8U);
    ASSERT_EQ(countOf(layout), 1U);
    EXPECT_EQ(loadLe64(entryOf(layout, 0), 8), 40U * 512U);
    EXPECT_EQ(loadLe64(entryOf(layout, 0), 16), 8U * 512U);
    EXPECT_EQ(std::memcmp(entryOf(layout, 0).data() + 32, "The type's GUID.its own GUID...", 31), 0);
}

TEST(WorkbenchLayout, AGptWithoutItsHeaderIsTheMbrThatProtectsIt) {
    Content content;
    content.putGpt();
    content.put(kSector, "        ");
    EXPECT_EQ(styleOf(content.layout(drive(kPlain))), 0U);
}

TEST(WorkbenchLayout, DescribedVolumesArePartitionsWhereNoTableLies) {
    const std::vector<VolumeExtent> extents{{.disk = 3, .offset = 1024, .length = 2048},
                                            {.disk = 3, .offset = 8192, .length = 512}};
    const Bytes layout = Content().layout(drive(kPlain), extents);
    EXPECT_EQ(styleOf(layout), 0U);
    ASSERT_EQ(countOf(layout), 4U);
    EXPECT_EQ(loadLe64(entryOf(layout, 1), 8), 8192U);
    EXPECT_EQ(entryOf(layout, 1)[32], 7);
    EXPECT_EQ(entryOf(layout, 2)[32], 0);
    const Bytes other = Content().layout(drive(R"("backing": {"file": "other.img"})"), extents);
    EXPECT_NE(loadLe32(layout, 8), loadLe32(other, 8)) << "another content, another signature";
    EXPECT_EQ(Content().layout(drive(kPlain), extents), layout) << "the same one each time";
}

// --- what takes a drive's place

TEST(WorkbenchSwap, AnotherDriveOfTheSameMakeTakesADrivesPlace) {
    const DriveDescription other = swappedDrive(drive(R"("identity": {"vendor": "V", "product": "P", "serial": "S"},
                              "ata": {"model": "M", "serial": "S"}, "faults": {"reads": [{"firstSector": 0}]})"));
    EXPECT_EQ(other.number, 3U);
    EXPECT_EQ(other.size, 8U << 20);
    EXPECT_EQ(other.identity.vendor, "V");
    EXPECT_EQ(other.identity.serial, "S-SWAPPED");
    EXPECT_EQ(other.ata.model, "M");
    EXPECT_EQ(other.ata.serial, "S-SWAPPED");
    EXPECT_EQ(other.backing.file, "drive3-swapped.img");
    EXPECT_TRUE(other.faults.reads.empty());
    EXPECT_FALSE(other.swap.keepsHandles);
}

TEST(WorkbenchSwap, ASerialNumberBehindARoadAloneIsAnotherToo) {
    const DriveDescription other = swappedDrive(drive(R"("identity": {"product": "P"}, "ata": {"serial": "A"})"));
    EXPECT_EQ(other.ata.serial, "A-SWAPPED");
    EXPECT_EQ(swappedDrive(drive(R"("ata": {"serial": "A"}, "swap": {"identity": {"serial": "B"}})")).ata.serial, "B");
}

TEST(WorkbenchSwap, OfARemovableDriveTheMediumAloneIsChanged) {
    const DriveDescription other = swappedDrive(
        drive(R"("removable": true, "identity": {"product": "Card reader", "serial": "R"}, "ata": {"serial": "A"})"));
    EXPECT_EQ(other.identity.serial, "R");
    EXPECT_EQ(other.ata.serial, "A");
    EXPECT_TRUE(other.swap.keepsHandles);
}

TEST(WorkbenchSwap, IsAsItIsDescribed) {
    const DriveDescription other =
        swappedDrive(drive(R"("identity": {"serial": "S"}, "swap": {"identity": {"product": "Other", "revision": "2"},
                 "backing": {"pattern": "zero"}, "keepsHandles": true})"));
    EXPECT_EQ(other.identity.product, "Other");
    EXPECT_EQ(other.identity.serial, std::nullopt);
    EXPECT_EQ(other.ata.model, "Other");
    EXPECT_EQ(other.ata.firmware, "2");
    EXPECT_EQ(other.backing.kind, BackingKind::kZero);
    EXPECT_TRUE(other.swap.keepsHandles);
}

TEST(WorkbenchSwap, IsKeptInTheState) {
    const char* const json = R"({"number": 3, "bus": "sata", "size": 512,
        "volumes": [{"letter": "D", "extents": [{"offset": 0, "length": 512}]}]})";
    const BenchReading reading = readBench({"bench.json", "{}"}, {{"a.json", json}});
    ASSERT_EQ(reading.error, "");
    BenchState state = firstState(reading.bench);
    EXPECT_FALSE(state.isSwapped(3));
    EXPECT_TRUE(state.isMounted(reading.bench.volumes.front()));
    swapDrive(state, 3);
    state = stateFromText(stateText(state), reading.bench);
    EXPECT_TRUE(state.isSwapped(3));
    EXPECT_FALSE(state.isMounted(reading.bench.volumes.front())) << "its volumes went with the drive";
    swapDrive(state, 3);
    EXPECT_FALSE(state.isSwapped(3));
    EXPECT_EQ(state.swapsOf(3), 2U);
    EXPECT_TRUE(state.isMounted(reading.bench.volumes.front()));
}

TEST(WorkbenchSwap, ADriveAndTheOtherHaveContentsOfTheirOwn) {
    const BenchReading reading = readBench(
        {"bench.json", "{}"},
        {{"a.json", R"({"number": 3, "bus": "sata", "size": 512, "swap": {"backing": {"file": "drive3.img"}}})"}});
    EXPECT_EQ(reading.error, "a.json: swap.backing.file: is the content of a.json already");
}

} // namespace
} // namespace torvane::bench
