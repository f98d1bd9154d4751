#include "admin/protected_drives.h"

#include "records/drive_record.h"
#include "tests/component/test_bench.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <string>

namespace torvane {
namespace {

constexpr const char* kNotKnown = "***** WINDOWS DRIVE NOT KNOWN *****";
constexpr const char* kNotKnownText = "It cannot be told which drive holds Windows, so no drive is changed. Nothing "
                                      "was written. Restart the computer, or "
                                      "see whether drive C: can be opened";

/// Drives of 64 MiB on a bench; the tests' own files lie on a real volume, whose letter the bench may have too.
class ProtectedDrives : public ::testing::Test {
  protected:
    /// The letter of the folder that this program runs from.
    static std::string programLetter() {
        std::array<char, MAX_PATH> path{};
        GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
        return {path.front()};
    }

    void addDrive(int number, const std::string& letter = "", const std::string& faults = "{}") {
        const std::string volumes = letter.empty() ? ""
                                                   : R"({"letter": ")" + letter + R"(", "faults": )" + faults +
                                                         R"(, "extents": [{"offset": "1 MiB", "length": "8 MiB"}]})";
        bench_.addDrive(R"({"bus": "nvme", "size": "64 MiB", "number": )" + std::to_string(number) +
                        R"(, "volumes": [)" + volumes + "]}");
    }
    static bool mayChange(int number) {
        DriveRecord drive;
        drive.recordKind = kRecordKindPhysicalDrive;
        drive.driveNumber = number;
        return mayBeChanged(drive).value();
    }
    void expectProtected(int number, const std::string& what) {
        user_.expectStop("***** PROTECTED DRIVE *****",
                         "Drive " + std::to_string(number) + " holds " + what +
                             ". It is never changed. Nothing was written. Choose another drive");
        EXPECT_FALSE(mayChange(number));
        EXPECT_EQ(user_.outstanding(), 0U);
    }
    void expectNotKnown(int number) {
        user_.expectStop(kNotKnown, kNotKnownText);
        EXPECT_FALSE(mayChange(number));
        EXPECT_EQ(user_.outstanding(), 0U);
    }

    testing::TestBench bench_;
    testing::ScriptedPrompts user_;
};

TEST_F(ProtectedDrives, WindowsAndTheProgramAreNeverOverwritten) {
    ASSERT_NE(programLetter(), "C");
    addDrive(0, "C");
    addDrive(1, programLetter());
    addDrive(2, "K");
    bench_.open();
    expectProtected(0, "Windows");
    expectProtected(1, "the folder that this program runs from");
    EXPECT_TRUE(mayChange(2));
    EXPECT_TRUE(mayChange(3));
    DriveRecord image;
    image.recordKind = kRecordKindImageFile;
    EXPECT_EQ(mayBeChanged(image), true) << "its number is no disk's";
}

TEST_F(ProtectedDrives, VolumesAreAskedWithoutTheRightToReadThem) {
    addDrive(0, "C");
    bench_.open();
    EXPECT_TRUE(mayChange(1));
    EXPECT_FALSE(bench_.log("target=volume:C request=open").empty());
    EXPECT_TRUE(bench_.log("target=volume:C access=rw").empty());
}

TEST_F(ProtectedDrives, WhileVolumeCCannotBeOpenedNoDriveIsChanged) {
    addDrive(0, "C", R"({"open": "ERROR_ACCESS_DENIED"})");
    addDrive(1);
    bench_.open();
    expectNotKnown(0);
    expectNotKnown(1);
}

TEST_F(ProtectedDrives, WhileVolumeCDoesNotTellItsExtentsNoDriveIsChanged) {
    addDrive(0, "C", R"({"extents": "ERROR_NOT_READY"})");
    bench_.open();
    expectNotKnown(1);
}

TEST_F(ProtectedDrives, AVolumeCOnNoDiskProtectsNothing) {
    addDrive(0, "C", R"({"extents": "ERROR_INVALID_FUNCTION"})");
    bench_.open();
    EXPECT_TRUE(mayChange(0));
}

TEST_F(ProtectedDrives, AMachineWithoutVolumeCGoesOnAsBefore) {
    addDrive(0);
    bench_.open();
    EXPECT_TRUE(mayChange(0));
}

} // namespace
} // namespace torvane
