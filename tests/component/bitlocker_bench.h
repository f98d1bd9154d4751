#pragma once

#include "admin/bitlocker_scan.h"
#include "discovery/physical_drive_probe.h"
#include "discovery/volume_map.h"
#include "state/app_state.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"
#include "tests/support/scripted_prompts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace torvane::testing {

/// The scan dialog's list without a list: its rows, each as "volume|status|key", and every writing of one.
class RecordingRows : public BitLockerRows {
  public:
    void clear() override {
        rows_.clear();
        written_.emplace_back("clear");
    }
    void setRow(int row, const char* volume, const char* status, const char* key) override {
        const std::string text = std::string(volume) + "|" + status + "|" + key;
        const auto position = static_cast<std::size_t>(row);
        ASSERT_LE(position, rows_.size()) << "a gap in the list";
        rows_.resize(std::max(rows_.size(), position + 1));
        rows_[position] = text;
        written_.push_back(std::to_string(row) + " " + text);
    }

    [[nodiscard]] const std::vector<std::string>& rows() const { return rows_; }
    [[nodiscard]] const std::vector<std::string>& written() const { return written_; }

  private:
    std::vector<std::string> rows_;
    std::vector<std::string> written_;
};

/// Drives with BitLocker volumes, probed and mapped as a scan leaves them.
class BitLockerBench : public ::testing::Test {
  protected:
    ~BitLockerBench() override {
        state().activeDrive = nullptr;
        state().scan.driveCount = 0;
        for (DriveRecordPtr& record : state().scan.drives) {
            record.reset();
        }
        state().scan.volumes = {};
    }

    static AppState& state() { return appState(); }
    static DriveRecord& drive(std::size_t position) { return *state().scan.drives[position]; }
    static const BitLockerVolumeEntry& entry(std::size_t drivePosition, std::size_t position) {
        return drive(drivePosition).bitLockerEntries[position];
    }

    /// A volume whose cmdlet prints what `bitLocker` describes.
    static std::string volume(char letter, const std::string& bitLocker) {
        return R"({"letter": ")" + std::string(1, letter) + R"(", "extents": [{"offset": ")" +
               std::to_string(letter - 'C' + 1) + R"( MiB", "length": "1 MiB"}], "bitLocker": )" + bitLocker + "}";
    }
    static std::string unlocked(const std::string& password) {
        return R"({"state": "unlocked", "protectors": [{"type": "Tpm", "id": "{T}"},
                   {"type": "RecoveryPassword", "id": "{R}", "password": ")" +
               password + R"("}]})";
    }
    static constexpr const char* kOff = R"({"state": "off"})";
    static constexpr const char* kLocked =
        R"({"state": "locked", "protectors": [{"type": "RecoveryPassword", "id": "{R}", "password": "9-9"}]})";
    static constexpr const char* kError = R"({"output": "Get-BitLockerVolume : Access denied\r\n"})";

    void addDrive(int number, const std::string& volumes) {
        bench_.addDrive(R"({"bus": "nvme", "size": "64 MiB", "number": )" + std::to_string(number) +
                        R"(, "volumes": [)" + volumes + "]}");
    }
    void describePowershell(const std::string& json) { bench_.describe(R"({"tools": {"powershell": )" + json + "}}"); }

    /// Opens the bench; the first drive becomes the active one.
    void open() {
        bench_.open();
        int count = 0;
        for (int number = 0; number < kMaxDrives; ++number) {
            if (DriveRecordPtr record = ProbePhysicalDrive(number)) {
                state().scan.drives[static_cast<std::size_t>(count++)] = std::move(record);
            }
        }
        state().scan.driveCount = count;
        EnumerateVolumes(state().scan);
        state().activeDrive = &drive(0);
    }

    /// The box of a scan that was not told of every volume.
    void expectUntold(const std::string& lines) {
        user_.expectStop("***** BITLOCKER NOT KNOWN *****",
                         "Windows could not tell whether these volumes are encrypted:\n" + lines);
    }

    void scan() { BL_ScanActiveDrive(state().activeDrive, state().scan.volumes, rows_); }

    [[nodiscard]] std::vector<std::string> events() const {
        std::vector<std::string> texts;
        for (const LogRow& row : view_.logRows()) {
            texts.push_back(row.category + ": " + row.message);
        }
        return texts;
    }

    TestBench bench_;
    RecordingMainView view_;
    ViewInstalled installed_{appState(), view_};
    ScriptedPrompts user_;
    RecordingRows rows_;
};

} // namespace torvane::testing
