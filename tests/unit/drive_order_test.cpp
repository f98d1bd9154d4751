#include "records/drive_record.h"
#include "window/drive_order.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace torvane {
namespace {

class DriveOrderTest : public ::testing::Test {
  protected:
    void add(const char* model, std::int64_t sizeBytes, std::int32_t bytesPerSector = 512,
             const char* status = "Idle") {
        DriveRecord& drive = drives_.emplace_back();
        drive.sizeBytes = sizeBytes;
        drive.bytesPerSector = bytesPerSector;
        rows_.push_back({.drive = &drive, .cells = {model, "SN", "1", "1", "SATA", status}});
    }

    [[nodiscard]] std::vector<std::size_t> sorted(DriveColumn column, bool descending = false) const {
        return sortedRows(rows_, {.column = column, .descending = descending});
    }

    using Rows = std::vector<std::size_t>;

    std::deque<DriveRecord> drives_;
    std::vector<DriveRow> rows_;
};

TEST_F(DriveOrderTest, AColumnsHeadingGoesFromAscendingToDescendingToTheScansOrder) {
    DriveOrder order;
    order = orderAfterClick(order, kDriveColumnModel);
    EXPECT_EQ(order, (DriveOrder{kDriveColumnModel, false}));
    order = orderAfterClick(order, kDriveColumnModel);
    EXPECT_EQ(order, (DriveOrder{kDriveColumnModel, true}));
    EXPECT_EQ(orderAfterClick(order, kDriveColumnStatus), (DriveOrder{kDriveColumnStatus, false}));
    order = orderAfterClick(order, kDriveColumnModel);
    EXPECT_EQ(order, DriveOrder{});
}

TEST_F(DriveOrderTest, TextsAreSortedWithoutRegardToCase) {
    add("WDC", 3);
    add("apex", 2);
    add("Borea", 1);
    EXPECT_EQ(sorted(kDriveColumnModel), (Rows{1, 2, 0}));
    EXPECT_EQ(sorted(kDriveColumnModel, true), (Rows{0, 2, 1}));
}

TEST_F(DriveOrderTest, SizesAreSortedByTheirNumber) {
    add("a", 9LL << 30);
    add("b", 10LL << 30, 4096);
    add("c", 2LL << 40);
    EXPECT_EQ(sorted(kDriveColumnSizeGigabytes), (Rows{0, 1, 2}));
    EXPECT_EQ(sorted(kDriveColumnSizeSectors), (Rows{1, 0, 2})) << "its sectors are larger";
}

TEST_F(DriveOrderTest, AnUnknownSectorSizeCountsAsNoSectors) {
    add("a", 512);
    add("b", 1LL << 40, 0);
    EXPECT_EQ(sorted(kDriveColumnSizeSectors), (Rows{1, 0}));
}

TEST_F(DriveOrderTest, EqualRowsStayAsTheScanFoundThem) {
    add("c", 1, 512, "Idle");
    add("a", 1, 512, "COMPLETED");
    add("b", 1, 512, "Idle");
    EXPECT_EQ(sorted(kDriveColumnStatus), (Rows{1, 0, 2}));
    EXPECT_EQ(sorted(kDriveColumnStatus, true), (Rows{0, 2, 1}));
    EXPECT_EQ(sortedRows(rows_, {}), (Rows{0, 1, 2}));
    EXPECT_TRUE(sortedRows({}, {.column = kDriveColumnModel, .descending = true}).empty());
}

} // namespace
} // namespace torvane
