#include "workbench/devices/device_path.h"

#include "workbench/devices/log_line.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {
namespace {

TEST(WorkbenchDevicePath, DevicesAreRecognisedInEverySpelling) {
    for (const wchar_t* path : {LR"(\\.\PhysicalDrive12)", LR"(\\?\PhysicalDrive12)", LR"(\??\physicaldrive12)",
                                L"//./PHYSICALDRIVE12", LR"(\\.\PhysicalDrive012)"}) {
        const DevicePath device = parseDevicePath(path);
        EXPECT_EQ(device.kind, PathKind::kDrive) << path;
        EXPECT_EQ(device.number, 12U) << path;
    }
    EXPECT_EQ(parseDevicePath(LR"(\\.\c:)").kind, PathKind::kVolume);
    EXPECT_EQ(parseDevicePath(LR"(\\.\c:)").letter, 'C');
    EXPECT_EQ(parseDevicePath(LR"(\\.\Scsi3:)").kind, PathKind::kScsiPort);
    EXPECT_EQ(parseDevicePath(LR"(\\.\Scsi3:)").number, 3U);
    EXPECT_EQ(parseDevicePath(LR"(\\?\mountPointManager)").kind, PathKind::kMountManager);
}

TEST(WorkbenchDevicePath, AVolumeGoesByItsGuidToo) {
    for (const wchar_t* path : {LR"(\\?\Volume{1A-b})", LR"(\\.\VOLUME{1a-B})", LR"(\??\volume{1a-b})"}) {
        const DevicePath device = parseDevicePath(path);
        EXPECT_EQ(device.kind, PathKind::kVolume) << path;
        EXPECT_EQ(device.letter, '\0') << path;
        EXPECT_EQ(device.guid, "{1a-b}") << path;
    }
    EXPECT_EQ(volumeGuid(LR"(\\?\Volume{1A-b}\)"), "{1a-b}");
    EXPECT_EQ(volumeGuid(LR"(\\?\Volume{1A-b})"), "{1a-b}");
    for (const wchar_t* path : {L"", L"C:\\", LR"(\\.\Volume{1}\)", LR"(\\?\Volume{1}\x)", LR"(\\?\Volume{1)",
                                LR"(\\?\C:\)", LR"(\\?\Volume{1}}\)"}) {
        EXPECT_EQ(volumeGuid(path), "") << path;
    }
}

TEST(WorkbenchDevicePath, FilesPipesAndConsolesAreOrdinary) {
    for (const wchar_t* path : {L"", L"C:", L"C:\\", L"PhysicalDrive0", L"PHYS0.txt", LR"(\\server\share\x)",
                                LR"(\\?\C:\x.txt)", LR"(\\.\C:\x.txt)", LR"(\\?\UNC\server\share)", LR"(\\.\pipe\name)",
                                LR"(\\.\NUL)", LR"(\\.\CONOUT$)", LR"(\\.\COM12)", LR"(\\.\mailslot\x)", L"NUL"}) {
        EXPECT_EQ(parseDevicePath(path).kind, PathKind::kOrdinary) << path;
    }
}

TEST(WorkbenchDevicePath, EveryOtherDeviceIsForeign) {
    for (const wchar_t* path :
         {LR"(\\.\PhysicalDrive)", LR"(\\.\PhysicalDriveX)", LR"(\\.\PhysicalDrive0\)", LR"(\\.\PhysicalDrive12345)",
          LR"(\\?\GLOBALROOT\Device\Harddisk0\DR0)", LR"(\\.\HarddiskVolume1)", LR"(\\?\Volume{123}\)",
          LR"(\\.\CdRom0)", LR"(\\.\Scsi:)", LR"(\\.\Scsi3)", LR"(\\.\C:x)", LR"(\\.\)", LR"(\\.\Tape0)",
          LR"(\\.\COMX)", LR"(\\.\Global\PhysicalDrive0)"}) {
        EXPECT_EQ(parseDevicePath(path).kind, PathKind::kForeignDevice) << path;
    }
}

TEST(WorkbenchDevicePath, RootsOfVolumes) {
    EXPECT_EQ(rootLetter(L"c:\\"), 'C');
    EXPECT_EQ(rootLetter(L"Z:"), 'Z');
    EXPECT_EQ(rootLetter(L"c:/"), 'C');
    for (const wchar_t* path : {L"", L"C", L"C:\\x", L"1:\\", L"\\\\.\\C:"}) {
        EXPECT_EQ(rootLetter(path), '\0') << path;
    }
}

TEST(WorkbenchDevicePath, CommandLinesBeginWithAProgram) {
    EXPECT_EQ(splitCommandLine(L"diskpart /s a b").program, L"diskpart");
    EXPECT_EQ(splitCommandLine(L"diskpart /s a b").rest, L" /s a b");
    EXPECT_EQ(splitCommandLine(L"\"C:\\a b\\x.exe\" -c").program, L"C:\\a b\\x.exe");
    EXPECT_EQ(splitCommandLine(L"\"C:\\a b\\x.exe\" -c").rest, L" -c");
    EXPECT_EQ(splitCommandLine(L"\"open").program, L"open");
    EXPECT_EQ(splitCommandLine(L"").program, L"");
    EXPECT_EQ(splitCommandLine(L"one").rest, L"");
}

TEST(WorkbenchDevicePath, ToolsAreKnownByTheirName) {
    for (const wchar_t* name :
         {L"diskpart", L"DiskPart.EXE", L"C:\\Windows\\System32\\diskpart.exe", L"c:/x/diskpart"}) {
        EXPECT_EQ(toolOf(name), Tool::kDiskpart) << name;
    }
    EXPECT_EQ(toolOf(L"powershell"), Tool::kPowershell);
    for (const wchar_t* name : {L"", L"diskpart2", L"smartctl.exe", L"diskpart.exe.exe", L"diskpart\\x"}) {
        EXPECT_EQ(toolOf(name), Tool::kNone) << name;
    }
}

TEST(WorkbenchLogLine, FieldsStandInOrder) {
    const std::array<std::uint8_t, 3> bytes = {0x00, 0xAB, 0x10};
    const std::string text = LogLine("drive:3", "read")
                                 .number("offset", 1)
                                 .hex("data", bytes)
                                 .quoted("path", "\\\\.\\C: \"x\"\n\xFF")
                                 .result(23)
                                 .text();
    EXPECT_EQ(
        text,
        R"(target=drive:3 request=read offset=1 data=00ab10 path="\\\\.\\C: \"x\"\u000a\u00ff" result=ERROR_CRC)");
    EXPECT_EQ(LogLine("bench", "open").result(0).text(), "target=bench request=open result=ok");
    EXPECT_EQ(LogLine("bench", "open").result(4711).text(), "target=bench request=open result=4711");
}

} // namespace
} // namespace torvane::bench
