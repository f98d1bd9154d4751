#include "window/main_layout.h"

#include "resources/resource_ids.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <set>

namespace torvane {

void PrintTo(const PixelRect& rect, std::ostream* stream) {
    *stream << "(" << rect.left << "," << rect.top << ")-(" << rect.right << "," << rect.bottom << ")";
}

namespace {

std::vector<int> buttons() {
    std::vector<int> ids{IDC_LOG_TOGGLE};
    for (int id = IDC_LOAD_DRIVES; id <= IDC_QUICK_DISK_VIEW; ++id) {
        ids.push_back(id);
    }
    return ids;
}

bool overlap(const PixelRect& a, const PixelRect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

PixelRect placeOf(int id) {
    for (const PlacedControl& control : layOutMainWindow()) {
        if (control.id == id) {
            return control.place;
        }
    }
    ADD_FAILURE() << "control " << id << " has no place";
    return {};
}

TEST(MainLayoutTest, NothingLiesOutsideTheSmallestClientArea) {
    for (const PlacedControl& control : layOutMainWindow()) {
        EXPECT_GE(control.place.left, 0) << control.id;
        EXPECT_GE(control.place.top, 0) << control.id;
        EXPECT_LE(control.place.right, kLeastClientWidth) << control.id;
        EXPECT_LE(control.place.bottom, kLeastClientHeight) << control.id;
        EXPECT_GT(control.place.width(), 0) << control.id;
        EXPECT_GT(control.place.height(), 0) << control.id;
    }
}

/// The active drive's name gives way to what counts a scan's or a portable drive's progress.
bool takeTurns(int a, int b) {
    const auto counts = [](int id) { return id == IDC_SCAN_STATUS || id == IDC_SCAN_PROGRESS; };
    return (a == IDC_ACTIVE_DRIVE && counts(b)) || (b == IDC_ACTIVE_DRIVE && counts(a));
}

TEST(MainLayoutTest, NothingOverlaps) {
    std::vector<PlacedControl> all = layOutMainWindow();
    all.push_back({IDC_DRIVE_LIST, kDriveListPlace});
    all.push_back({IDC_HEALTH_PANEL, kHealthPanelPlace});
    all.push_back({IDC_LOG_LIST, logListPlace(kLeastClientHeight)});
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t j = i + 1; j < all.size(); ++j) {
            EXPECT_FALSE(overlap(all[i].place, all[j].place) && !takeTurns(all[i].id, all[j].id))
                << all[i].id << " " << ::testing::PrintToString(all[i].place) << " and " << all[j].id << " "
                << ::testing::PrintToString(all[j].place);
        }
    }
}

TEST(MainLayoutTest, EveryControlIsPlacedOnce) {
    std::set<int> ids;
    for (const PlacedControl& control : layOutMainWindow()) {
        EXPECT_TRUE(ids.insert(control.id).second) << control.id;
    }
    for (const int id : buttons()) {
        EXPECT_EQ(ids.count(id), 1U) << id;
    }
}

TEST(MainLayoutTest, ButtonsAreOfOneSize) {
    ASSERT_EQ(buttons().size(), 17U);
    const PixelRect first = placeOf(IDC_LOAD_DRIVES);
    for (const int id : buttons()) {
        EXPECT_EQ(placeOf(id).width(), first.width()) << id;
        EXPECT_EQ(placeOf(id).height(), first.height()) << id;
    }
}

TEST(MainLayoutTest, ButtonsLieBelowTheGaugesInRowsAndColumns) {
    std::set<int> tops;
    std::set<int> lefts;
    for (const int id : buttons()) {
        EXPECT_GT(placeOf(id).top, kHealthPanelPlace.bottom) << id;
        tops.insert(placeOf(id).top);
        lefts.insert(placeOf(id).left);
    }
    EXPECT_EQ(tops.size(), 3U);
    EXPECT_EQ(lefts.size(), 7U);
}

TEST(MainLayoutTest, DriveListKeepsItsPlace) {
    EXPECT_EQ(kDriveListPlace, (PixelRect{10, 20, 1180, 122}));
}

TEST(MainLayoutTest, LogListBeginsWhereTheClosedWindowEnds) {
    EXPECT_EQ(logListPlace(381), (PixelRect{10, 381, 1180, 543}));
    EXPECT_EQ(logListPlace(395), (PixelRect{10, 395, 1180, 557}));
}

TEST(MainLayoutTest, ListsGiveWayWhereTheWorkAreaIsTooLow) {
    EXPECT_EQ(shareOut(-5, true), ListLosses{}) << "there is room";
    EXPECT_EQ(shareOut(30, true), (ListLosses{0, 30})) << "the log list first";
    EXPECT_EQ(shareOut(30, false), (ListLosses{30, 0})) << "which is closed";
    EXPECT_EQ(shareOut(120, true), (ListLosses{20, 100}));
    EXPECT_EQ(shareOut(500, true), (ListLosses{40, 100})) << "each keeps some rows";
    EXPECT_EQ(driveListPlace({20, 0}), (PixelRect{10, 20, 1180, 102}));
    EXPECT_EQ(healthPanelPlace({20, 0}), (PixelRect{0, 120, kLeastClientWidth, 225}));
}

TEST(MainLayoutTest, WhatLiesBelowTheDriveListFollowsIt) {
    const std::vector<PlacedControl> whole = layOutMainWindow();
    const std::vector<PlacedControl> lower = layOutMainWindow({25, 0});
    ASSERT_EQ(lower.size(), whole.size());
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const int way = whole[i].place.top < kDriveListPlace.top ? 0 : 25;
        ASSERT_EQ(lower[i].id, whole[i].id);
        EXPECT_EQ(lower[i].place.top, whole[i].place.top - way) << whole[i].id;
        EXPECT_EQ(lower[i].place.height(), whole[i].place.height()) << whole[i].id;
    }
}

TEST(MainLayoutTest, OpenWindowShowsTheWholeLogList) {
    const int added = kMainWindowHeightWithLog - kMainWindowHeight;
    EXPECT_LE(logListPlace(kLeastClientHeight).bottom, kLeastClientHeight + added);
}

TEST(MainLayoutTest, MessageHasALargeLineUnderTheValueTexts) {
    const PixelRect place = placeOf(IDC_HEALTH_MESSAGE);
    EXPECT_GE(place.top, placeOf(IDC_VALUE_TEXT_6).bottom);
    EXPECT_GE(place.height(), 17);
    EXPECT_LT(place.bottom, placeOf(IDC_COMMANDS_LINE).top);
}

TEST(MainLayoutTest, ValueTextsStandUnderTheirCaptions) {
    // The dials stand 180 pixels apart; their captions end at y = 244. The first text may be wider than its dial.
    for (int dial = 0; dial < 6; ++dial) {
        const PixelRect place = placeOf(IDC_VALUE_TEXT_1 + dial);
        EXPECT_GE(place.top, 244) << dial;
        EXPECT_EQ(place.left / 180, dial);
        EXPECT_TRUE(dial == 0 || place.right <= 180 * (dial + 1)) << dial;
    }
}

} // namespace
} // namespace torvane
