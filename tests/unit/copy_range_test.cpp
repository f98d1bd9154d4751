#include "copy/jobs/copy_range.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace torvane {
namespace {

constexpr std::uint64_t kMebibyte = 1048576;

TEST(CopyRange, OfWholeSectorsIsItself) {
    EXPECT_EQ(copyRange(8192, {.source = 512, .destination = 4096}, kCopyBlockSize),
              (CopyRange{.bytes = 8192, .sourceEnd = 8192, .destinationEnd = 8192, .orderedBytes = 8192}));
    EXPECT_EQ(copyRange(0, {.source = 512, .destination = 4096}, kCopyBlockSize), CopyRange{});
}

TEST(CopyRange, OfAFileEndsWithTheDestinationsSector) {
    const CopyRange range = copyRange(20 * kMebibyte + 100, {.destination = 4096}, kCopyBlockSize);
    EXPECT_EQ(range.sourceEnd, 20 * kMebibyte + 100);
    EXPECT_EQ(range.destinationEnd, 20 * kMebibyte + 4096);
    EXPECT_EQ(range.orderedBytes, 20 * kMebibyte + 4096);
    EXPECT_EQ(range.oddBytes, 100U);
}

TEST(CopyRange, IsReadInTheSourcesSectorsAndWrittenInTheDestinations) {
    EXPECT_EQ(copyRange(4096 + 512, {.source = 4096, .destination = 512}, kCopyBlockSize),
              (CopyRange{.bytes = 4608, .sourceEnd = 8192, .destinationEnd = 4608, .orderedBytes = 8192}));
}

TEST(CopyRange, HeedsNoSectorThatDoesNotDivideTheBlock) {
    EXPECT_EQ(copyRange(100, {.source = 520, .destination = 0}, 65536),
              (CopyRange{.bytes = 100, .sourceEnd = 100, .destinationEnd = 100, .orderedBytes = 100}));
}

TEST(CopyRange, ABlockThatWasNotReadWholeGetsItsZerosAndNoByteTooMany) {
    std::array<std::byte, 24> bytes{};
    bytes.fill(std::byte{7});
    const CopyRange range{.bytes = 36, .sourceEnd = 40, .destinationEnd = 40, .orderedBytes = 40};
    const Block block{.extent = {.offset = 32, .length = 24}, .bytes = bytes, .outcome = TransferOutcome::kNotReached};
    const Block clipped = forDestination(block, range);
    EXPECT_EQ(clipped.extent, (BlockExtent{.offset = 32, .length = 8}));
    EXPECT_EQ(clipped.bytes.size(), 8U);
    EXPECT_EQ(std::ranges::count(clipped.bytes, std::byte{7}), 4);
    EXPECT_EQ(bytes[4], std::byte{0});
}

} // namespace
} // namespace torvane
