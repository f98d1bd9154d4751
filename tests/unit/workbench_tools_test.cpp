#include "workbench/tools/diskpart_german.h"
#include "workbench/tools/diskpart_script.h"
#include "workbench/tools/powershell_command.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace torvane::bench {
namespace {

BenchDescription bench() {
    BenchReading reading =
        readBench({"bench.json", R"({"volumes": [{"letter": "K", "kind": "optical"}]})"},
                  {{"a.json", R"({"number": 0, "bus": "sata",
        "size": "8 MiB", "volumes": [{"letter": "C", "extents": [{"offset": 0, "length": "1 MiB"}]}]})"},
                   {"b.json", R"({"number": 2, "bus": "usb", "size": "8 MiB", "readOnly": true, "volumes": [
          {"letter": "D", "extents": [{"offset": 0, "length": "1 MiB"}], "bitLocker": {"state": "unlocked", "protectors": [
            {"type": "Tpm", "id": "{A}"}, {"type": "RecoveryPassword", "id": "{B}", "password": "111111-222222"}]}},
          {"letter": "E", "extents": [{"offset": "1 MiB", "length": "1 MiB"}], "bitLocker": {"state": "locked", "protectors": [
            {"type": "RecoveryPassword", "id": "{C}", "password": "333333-444444"}]}}]})"}});
    EXPECT_EQ(reading.error, "");
    return reading.bench;
}

class DiskpartTest : public ::testing::Test {
  protected:
    DiskpartRun run(const std::string& script) { return runDiskpartScript(bench_, state_, script); }

    BenchDescription bench_ = bench();
    BenchState state_ = firstState(bench_);
};

TEST_F(DiskpartTest, BannerNamesTheComputer) {
    EXPECT_EQ(diskpartBanner("PC"), "\r\nMicrosoft DiskPart version 10.0.19041.3636\r\n\r\nCopyright (C) Microsoft "
                                    "Corporation.\r\nOn computer: PC\r\n");
}

TEST_F(DiskpartTest, EverySentenceHasItsGermanOne) {
    const std::string german =
        diskpartInGerman(diskpartBanner("PC") +
                         run("select disk 2\nattributes disk\nclean noerr\nattributes disk clear readonly\nclean\n"
                             "attributes disk set readonly\nautomount disable\nautomount scrub\n"
                             "automount enable\nselect disk 0\nclean\n")
                             .output +
                         run("select disk 7\n").output + run("clean\n").output);
    for (const char* english :
         {" is ", "disk.", "successfully", "Yes", "No\r", "computer", "Automatic", "error", "selected"}) {
        EXPECT_EQ(german.find(english), std::string::npos) << english << " in " << german;
    }
    EXPECT_NE(german.find("\r\nDatentr\x84ger 2 ist jetzt der derzeit gew\x84hlte Datentr\x84ger.\r\n"),
              std::string::npos);
    EXPECT_NE(german.find("Die automatische Bereitstellung neuer Volumes ist aktiviert.\r\n"), std::string::npos);
}

TEST_F(DiskpartTest, TheStateLineEndsInItsFifthWord) {
    const std::string output = run("select disk 2\nattributes disk\n").output;
    EXPECT_TRUE(output.starts_with("\r\nDisk 2 is now the selected disk.\r\nCurrent Read-only State : Yes\r\n"))
        << output;
    EXPECT_NE(run("select disk 0\nattributes disk\n").output.find("Boot Disk  : Yes\r\n"), std::string::npos);
}

TEST_F(DiskpartTest, AttributesChange) {
    EXPECT_EQ(run("select disk 2\nattributes disk clear readonly\n").output,
              "\r\nDisk 2 is now the selected disk.\r\n\r\nDisk attributes cleared successfully.\r\n");
    EXPECT_FALSE(state_.isReadOnly(*bench_.drive(2)));
    run("select disk 2\nattributes disk set readonly\n");
    EXPECT_TRUE(state_.isReadOnly(*bench_.drive(2)));
}

TEST_F(DiskpartTest, AWrongDiskEndsTheScript) {
    const DiskpartRun ended = run("select disk 1\nautomount disable\n");
    EXPECT_EQ(ended.output, "\r\nThe disk you specified is not valid.\r\n\r\nThere is no disk selected.\r\n");
    EXPECT_EQ(ended.exitCode, 2U);
    EXPECT_TRUE(state_.automount);
    EXPECT_EQ(run("select disk 1 noerr\nautomount disable\n").exitCode, 0U);
    EXPECT_FALSE(state_.automount);
    state_.unplugged.insert(2);
    EXPECT_EQ(run("select disk 2\n").exitCode, 2U);
    for (const char* number : {"x", "-1", "99999999999", "0x0"}) {
        EXPECT_EQ(run("select disk " + std::string(number)).exitCode, 2U) << number;
    }
}

TEST_F(DiskpartTest, CommandsNeedADisk) {
    const std::string expected = "\r\nThere is no disk selected.\r\nPlease select a disk and try again.\r\n";
    EXPECT_EQ(run("attributes disk\n").output, expected);
    EXPECT_EQ(run("clean\n").output, expected);
    EXPECT_EQ(run("clean\n").exitCode, 2U);
    EXPECT_EQ(run("select disk\n").output, "\r\nThere is no disk selected.\r\n");
}

TEST_F(DiskpartTest, ACleanMayBeRefusedOrPretended) {
    DriveDescription& disk = bench_.drives.back();
    state_.readOnly[2] = false;
    disk.faults.clean = CleanFault::kRefused;
    const DiskpartRun refused = run("select disk 2\nclean\n");
    EXPECT_EQ(refused.output.find("succeeded"), std::string::npos);
    EXPECT_EQ(refused.exitCode, 4U);
    disk.faults.clean = CleanFault::kPretended;
    const DiskpartRun pretended = run("select disk 2\nclean\n");
    EXPECT_NE(pretended.output.find("succeeded"), std::string::npos);
    EXPECT_EQ(pretended.exitCode, 0U);
    EXPECT_TRUE(pretended.cleanedNow.empty());
    EXPECT_TRUE(state_.cleaned.empty());
}

TEST_F(DiskpartTest, AutomountTellsItsStateLast) {
    EXPECT_EQ(run("automount\n").output, "\r\nAutomatic mounting of new volumes enabled.\r\n");
    EXPECT_EQ(run("automount disable\nautomount scrub\n").output,
              "\r\nAutomatic mounting of new volumes disabled.\r\n"
              "\r\nDiskPart successfully scrubbed the mount point settings in the system.\r\n"
              "\r\nAutomatic mounting of new volumes disabled.\r\n");
    EXPECT_EQ(run("automount enable\n").output, "\r\nAutomatic mounting of new volumes enabled.\r\n");
}

TEST_F(DiskpartTest, CleaningIsRefusedWhereWindowsRefusesIt) {
    const DiskpartRun readOnly = run("select disk 2\nclean\n");
    EXPECT_NE(readOnly.output.find("The media is write protected.\r\n"), std::string::npos);
    EXPECT_EQ(readOnly.exitCode, 4U);
    EXPECT_TRUE(readOnly.cleanedNow.empty());
    EXPECT_NE(run("select disk 0\nclean\n").output.find("Virtual Disk Service error:\r\n"), std::string::npos);
    const DiskpartRun cleaned = run("select disk 2\nattributes disk clear readonly\nclean\n");
    EXPECT_TRUE(cleaned.output.ends_with("\r\nDiskPart succeeded in cleaning the disk.\r\n"));
    EXPECT_EQ(cleaned.cleanedNow, std::vector<std::uint32_t>{2});
    EXPECT_FALSE(state_.isMounted(*bench_.volume('D')));
}

TEST_F(DiskpartTest, CleaningADriveInAnothersPlaceTakesNoVolumes) {
    swapDrive(state_, 2);
    EXPECT_EQ(run("select disk 2\nattributes disk clear readonly\nclean\n").cleanedNow, std::vector<std::uint32_t>{2});
    swapDrive(state_, 2);
    EXPECT_TRUE(state_.isMounted(*bench_.volume('D')));
    swapDrive(state_, 0);
    EXPECT_EQ(run("select disk 0\nclean\n").exitCode, 0U) << "C: is not on it";
}

TEST_F(DiskpartTest, StepsAreTold) {
    const DiskpartRun steps = run("rem first\r\n\r\nSEL DIS 2\r\nfrobnicate\r\nautomount\r\n");
    ASSERT_EQ(steps.steps.size(), 3U);
    EXPECT_EQ(steps.steps[0].line, "rem first");
    EXPECT_EQ(steps.steps[0].target, "bench");
    EXPECT_EQ(steps.steps[1].target, "drive:2");
    EXPECT_EQ(steps.steps[2].exitCode, 5U);
    EXPECT_EQ(steps.exitCode, 5U);
    EXPECT_NE(steps.output.find("ACTIVE      - Mark the selected partition as active.\r\n"), std::string::npos);
}

TEST_F(DiskpartTest, ExitLeavesAndRescanScans) {
    EXPECT_EQ(run("exit\nautomount\n").output, "\r\nLeaving DiskPart...\r\n");
    EXPECT_EQ(run("rescan\n").output, "\r\nPlease wait while DiskPart scans your configuration...\r\n\r\nDiskPart has "
                                      "finished scanning your configuration.\r\n");
    EXPECT_EQ(run("").output, "");
    for (const char* wrong : {"select volume 1", "attributes volume", "automount maybe", "automount a b",
                              "select disk 0\nattributes disk paint readonly",
                              "select disk 0\nattributes disk set hidden", "clean all", "se disk 0"}) {
        EXPECT_EQ(run(wrong).exitCode, 5U) << wrong;
    }
}

class PowershellTest : public ::testing::Test {
  protected:
    PowershellRun run(const std::vector<std::string>& arguments) { return runPowershell(bench_, state_, arguments); }

    BenchDescription bench_ = bench();
    BenchState state_ = firstState(bench_);
};

TEST_F(PowershellTest, ProtectorsAreListed) {
    const PowershellRun list =
        run({"-windowstyle", "hidden", "(Get-BitLockerVolume", "-MountPoint", "D).KeyProtector"});
    EXPECT_EQ(list.exitCode, 0U);
    EXPECT_EQ(list.output, "\r\n\r\n"
                           "KeyProtectorId      : {A}\r\nAutoUnlockProtector : \r\nKeyProtectorType    : Tpm\r\n"
                           "KeyFileName         : \r\nRecoveryPassword    : \r\nKeyCertificateType  : \r\n"
                           "Thumbprint          : \r\n\r\n"
                           "KeyProtectorId      : {B}\r\nAutoUnlockProtector : \r\n"
                           "KeyProtectorType    : RecoveryPassword\r\nKeyFileName         : \r\n"
                           "RecoveryPassword    : 111111-222222\r\nKeyCertificateType  : \r\n"
                           "Thumbprint          : \r\n\r\n\r\n\r\n");
}

TEST_F(PowershellTest, ALockedVolumeKeepsItsPassword) {
    const std::string output = run({"(Get-BitLockerVolume", "-MountPoint", "e:).KeyProtector"}).output;
    EXPECT_NE(output.find("RecoveryPassword    : \r\n"), std::string::npos);
    EXPECT_EQ(output.find("333333"), std::string::npos);
}

TEST_F(PowershellTest, AVolumesOwnOutputIsPrintedInPlaceOfItsProtectors) {
    BenchReading reading = readBench({"bench.json", "{}"}, {{"a.json", R"({"number": 0, "bus": "sata",
        "size": "8 MiB", "volumes": [{"letter": "D", "extents": [{"offset": 0, "length": "1 MiB"}],
        "bitLocker": {"output": "Get-BitLockerVolume : Access denied\r\n"}}]})"}});
    ASSERT_EQ(reading.error, "");
    const PowershellRun run = runPowershell(reading.bench, firstState(reading.bench),
                                            {"(Get-BitLockerVolume", "-MountPoint", "D).KeyProtector"});
    EXPECT_EQ(run.output, "Get-BitLockerVolume : Access denied\r\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(PowershellTest, AnUnencryptedVolumeGivesNothing) {
    const PowershellRun nothing =
        run({"-NoProfile", "-Command", "(Get-BitLockerVolume -MountPoint 'C:\\').KeyProtector"});
    EXPECT_EQ(nothing.output, "");
    EXPECT_EQ(nothing.errors, "");
    EXPECT_EQ(nothing.exitCode, 0U);
}

TEST_F(PowershellTest, NoVolumeIsAnError) {
    state_.cleaned.insert(2);
    for (const char* place : {"Q", "K", "D", "", "CC", "1"}) {
        const PowershellRun failed =
            run({"(Get-BitLockerVolume", "-MountPoint", std::string(place) + ").KeyProtector"});
        EXPECT_EQ(failed.output, "") << place;
        EXPECT_EQ(failed.exitCode, 1U) << place;
        EXPECT_TRUE(failed.errors.starts_with("Get-BitLockerVolume : " + std::string(place) +
                                              " does not have an associated BitLocker volume.\r\n"))
            << failed.errors;
    }
}

TEST_F(PowershellTest, ADocumentsNameEndsAtABlank) {
    EXPECT_EQ(run({"Start-Process", "Report A.pdf"}).what, "Report");
    EXPECT_EQ(run({"Start-Process", "'Report  A.pdf'"}).what, "Report  A.pdf");
    EXPECT_EQ(run({"Start-Process", "\"Report", "A.pdf\""}).what, "Report A.pdf");
    EXPECT_EQ(run({"Start-Process", "'Report"}).what, "Report");
    EXPECT_EQ(run({"Start-Process", ""}).what, "");
}

TEST_F(PowershellTest, DocumentsAreOpenedInNameOnly) {
    EXPECT_EQ(run({"Start-Process", "ReportA.pdf"}).what, "ReportA.pdf");
    EXPECT_EQ(run({"-windowstyle", "hidden", "start-process 'https://x/y'"}).what, "https://x/y");
    EXPECT_FALSE(run({"Get-Date"}).opened);
    EXPECT_TRUE(run({"Get-Date"}).errors.starts_with("Get-Date : The term 'Get-Date' is not recognized"));
    EXPECT_EQ(run({}).exitCode, 1U);
}

} // namespace
} // namespace torvane::bench
