#pragma once

#include "health/health_panel_view.h"
#include "resources/resource_ids.h"
#include "state/app_state.h"
#include "tests/component/canvas.h"
#include "tests/component/scratch_folder.h"
#include "tests/unit/health_test_drives.h"
#include "ui/gdi_plus.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace torvane {

inline constexpr int kWidth = 1174;
inline constexpr int kHeight = 381;
inline constexpr COLORREF kBackground = RGB(218, 223, 234);

/// A window of the main window's size with the panel's text controls.
class PanelWindow {
  public:
    explicit PanelWindow(Scale scale = {})
        : window_(CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, scale.px(kWidth), scale.px(kHeight), nullptr,
                                  nullptr, nullptr, nullptr)) {
        for (int id = IDC_VALUE_TEXT_1; id <= IDC_VALUE_TEXT_6; ++id) {
            addText(id);
        }
        addText(IDC_HEALTH_MESSAGE);
        addText(IDC_OWN_VERDICT);
    }
    ~PanelWindow() { DestroyWindow(window_); }
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;

    [[nodiscard]] HWND get() const { return window_; }

    [[nodiscard]] std::string text(int id) const {
        std::array<char, 5000> text{};
        GetDlgItemTextA(window_, id, text.data(), static_cast<int>(text.size()));
        return text.data();
    }

  private:
    void addText(int id) {
        CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 10, 10, window_,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    }

    HWND window_;
};

/// A test that paints the panel onto a canvas, with the shipped pictures and four messages.
class HealthPanelFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(gdiPlus_.start());
        state_.messages = fourMessages();
        testing::layOutPictures();
    }

    void paintNothing() {
        state_.activeDrive = nullptr;
        state_.activeDriveChosen = 0;
        PaintHealthPanel(state_, window_.get(), canvas_.context(), Scale{});
    }

    void paint(DriveRecord& drive) {
        state_.activeDrive = &drive;
        state_.activeDriveChosen = 1;
        PaintHealthPanel(state_, window_.get(), canvas_.context(), Scale{});
    }

    /// One drive of each layout: standard, SSD, NVMe with every warning, unknown.
    [[nodiscard]] static std::array<DriveRecord, 4> driveOfEachLayout() {
        std::array drives{soundDrive(), soundDrive(), driveWithoutValues(kSmartTypeNvme),
                          driveWithoutValues(kSmartTypeUnknown)};
        drives[1].smartType = kSmartTypeSsd;
        drives[2].nvme.criticalWarning = 31;
        drives[2].nvme.dataUnitsWritten = 0;
        return drives;
    }

    testing::ScratchFolder folder_;
    GdiPlusSession gdiPlus_;
    AppState state_;
    PanelWindow window_;
    testing::Canvas canvas_{kWidth, kHeight};
};

} // namespace torvane
