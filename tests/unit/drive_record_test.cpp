#include "records/drive_record.h"

#include <gtest/gtest.h>

#include <vector>

namespace torvane {
namespace {

std::vector<NativeHandle> closed;
void noteClosed(NativeHandle handle) {
    closed.push_back(handle);
}

TEST(DriveRecordPtr, ClosesTheHandleOfARecordThatOwnsOne) {
    closed.clear();
    int device = 0;
    DriveRecordPtr record(new DriveRecord, {.closeHandle = &noteClosed});
    record->handle = &device;
    DriveRecordPtr moved;
    moved = std::move(record);
    EXPECT_TRUE(closed.empty());
    moved.reset();
    EXPECT_EQ(closed, std::vector<NativeHandle>{&device});
}

TEST(DriveRecordPtr, ClosesNothingWhereNothingIsOpenOrOwned) {
    closed.clear();
    int device = 0;
    DriveRecordPtr(new DriveRecord, {.closeHandle = &noteClosed}).reset();
    DriveRecordPtr borrowed(new DriveRecord);
    borrowed->handle = &device;
    borrowed.reset();
    EXPECT_TRUE(closed.empty());
}

} // namespace
} // namespace torvane
