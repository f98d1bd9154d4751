#include "discovery/handle_lease.h"

#include <gtest/gtest.h>

#include <optional>

namespace torvane {
namespace {

int closed = 0;
void noteClosed(NativeHandle) {
    ++closed;
}

class HandleLeases : public ::testing::Test {
  protected:
    HandleLeases() { closed = 0; }

    int device_ = 0;
    NativeHandle handle_ = &device_;
};

TEST_F(HandleLeases, AHandleWithoutOneIsClosedAtOnce) {
    closeWhenFree(handle_, noteClosed);
    EXPECT_EQ(closed, 1);
}

TEST_F(HandleLeases, AHandleIsClosedOnceWhenTheLastHasEnded) {
    std::optional<HandleLease> first(std::in_place, handle_);
    std::optional<HandleLease> second(std::in_place, handle_);
    first.reset();
    closeWhenFree(handle_, noteClosed);
    EXPECT_EQ(closed, 0);
    second.reset();
    EXPECT_EQ(closed, 1);
}

TEST_F(HandleLeases, AHandleWhoseRecordStaysIsNotClosed) {
    { const HandleLease lease(handle_); }
    EXPECT_EQ(closed, 0);
    closeWhenFree(handle_, noteClosed);
    EXPECT_EQ(closed, 1);
}

TEST_F(HandleLeases, NoHandleIsLeasedByNobody) {
    const HandleLease lease(nullptr);
    EXPECT_EQ(closed, 0);
}

TEST_F(HandleLeases, ACopyOfARecordKeepsItsHandleOpen) {
    DriveRecordPtr record(new DriveRecord,
                          {.closeHandle = [](NativeHandle handle) { closeWhenFree(handle, noteClosed); }});
    record->handle = handle_;
    record->driveNumber = 3;
    std::optional<LeasedDrive> copy(std::in_place, *record);
    record.reset();
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(copy->record.driveNumber, 3);
    copy.reset();
    EXPECT_EQ(closed, 1);
}

} // namespace
} // namespace torvane
