#include "workbench/description/bench_files.h"
#include "workbench/description/bench_state.h"
#include "workbench/description/error_names.h"
#include "workbench/description/json_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace torvane::bench {
namespace {

BenchReading read(const std::string& drive, const std::string& bench = "{}") {
    return readBench({"bench.json", bench}, {{"drives/a.json", drive}});
}

// A drive with the fields that every drive needs, and `more`.
std::string driveWith(const std::string& more) {
    return R"({"number": 3, "bus": "sata", "size": "8 MiB")" + (more.empty() ? "" : ", " + more) + "}";
}

struct Mistaken {
    std::string drive;
    std::string error;
};

class MistakeTest : public ::testing::TestWithParam<Mistaken> {};

TEST_P(MistakeTest, NamesFileAndField) {
    EXPECT_EQ(read(GetParam().drive).error, GetParam().error);
}

const std::vector<Mistaken> kMistakes = {
    {"{", "drives/a.json: line 1, column 2: not valid JSON"},
    {"{\n  \"number\": 1,\n  \"bus\" \"sata\"\n}", "drives/a.json: line 3, column 14: not valid JSON"},
    {"[]", "drives/a.json: expected an object, got []"},
    {R"({"bus": "sata", "size": 512})", "drives/a.json: number: missing, but required"},
    {R"({"number": 1, "size": 512})", "drives/a.json: bus: missing, but required"},
    {R"({"number": 1, "bus": "sata"})", "drives/a.json: size: missing, but required"},
    {R"({"number": 64, "bus": "sata", "size": 512})", "drives/a.json: number: expected a number from 0 to 63, got 64"},
    {R"({"number": -1, "bus": "sata", "size": 512})", "drives/a.json: number: expected a number from 0 to 63, got -1"},
    {R"({"number": 1.5, "bus": "sata", "size": 512})",
     "drives/a.json: number: expected a number from 0 to 63, got 1.5"},
    {R"({"number": 1, "number": 2, "bus": "sata", "size": 512})",
     "drives/a.json: number: stands twice in the same object"},
    {R"({"number": 1, "bus": "sata", "size": 513})",
     "drives/a.json: size: expected whole sectors of 512 bytes, got 513"},
    {R"({"number": 1, "bus": "sata", "size": "8 MB"})",
     R"(drives/a.json: size: expected a number of bytes or a text such as "32 MiB", got "8 MB")"},
    {R"({"number": 1, "bus": "sata", "size": 18446744073709551104})",
     R"(drives/a.json: size: expected a number of bytes or a text such as "32 MiB", got 18446744073709551104)"},
    {R"({"number": 1, "bus": 256, "size": 512})", "drives/a.json: bus: expected a number from 0 to 255, got 256"},
    {driveWith(R"("sectorSize": 1000)"), "drives/a.json: sectorSize: expected 512 or 4096, got 1000"},
    {driveWith(R"("sectorSize": 4096, "physicalSectorSize": 512)"),
     "drives/a.json: physicalSectorSize: smaller than sectorSize"},
    {driveWith(R"("colour": "red")"), "drives/a.json: colour: unknown field"},
    {driveWith(R"("removable": 1)"), "drives/a.json: removable: expected true or false, got 1"},
    {driveWith(R"("road": "high")"),
     R"(drives/a.json: road: expected one of "ata" "sat" "scsi" "nvme-query" "raid-miniport" "usb-bridge" "none", got "high")"},
    {driveWith(R"("road": ["ata", 5])"),
     R"(drives/a.json: road: expected one of "ata" "sat" "scsi" "nvme-query" "raid-miniport" "usb-bridge" "none", got 5)"},
    {driveWith(R"("identity": {"vendor": 5})"), "drives/a.json: identity.vendor: expected a text, got 5"},
    {driveWith(R"("identity": {"vendor": "\u0100"})"),
     "drives/a.json: identity.vendor: expected characters from U+0001 to U+00FF only"},
    {driveWith(R"("identity": {"vendor": "\u0000"})"),
     "drives/a.json: identity.vendor: expected characters from U+0001 to U+00FF only"},
    {driveWith(R"("identity": {"brand": "x"})"), "drives/a.json: identity.brand: unknown field"},
    {driveWith(R"("descriptor": {"vendorOffset": 4294967296})"),
     "drives/a.json: descriptor.vendorOffset: expected a number from 0 to 4294967295, got 4294967296"},
    {driveWith(R"("backing": {"file": "../x"})"), "drives/a.json: backing.file: expected a bare file name"},
    {driveWith(R"("backing": {"file": "C:x"})"), "drives/a.json: backing.file: expected a bare file name"},
    {driveWith(R"("backing": {"file": ""})"), "drives/a.json: backing.file: expected a bare file name"},
    {driveWith(R"("backing": {"file": "x", "pattern": "zero"})"),
     R"(drives/a.json: backing.pattern: stands beside "file"; only one of them can hold the content)"},
    {driveWith(R"("backing": {"pattern": "zero", "seed": 1})"),
     R"(drives/a.json: backing.seed: serves the pattern "noise" only)"},
    {driveWith(R"("backing": {"forgetsWrites": true})"), "drives/a.json: backing.forgetsWrites: serves patterns only"},
    {driveWith(R"("ata": {"serial": "123456789012345678901"})"),
     "drives/a.json: ata.serial: expected at most 20 characters, got 21"},
    {driveWith(R"("ata": {"rotationRate": 1})"),
     R"(drives/a.json: ata.rotationRate: expected "ssd", 0 or 1025 to 65534, got 1)"},
    {driveWith(R"("ata": {"wwn": "123"})"), "drives/a.json: ata.wwn: expected 16 hexadecimal digits"},
    {driveWith(R"("ata": {"security": "on"})"),
     R"(drives/a.json: ata.security: expected one of "unsupported" "disabled" "enabled" "locked" "frozen", got "on")"},
    {driveWith(R"("ata": {"smart": {"attributes": [{"id": 5}, {"raw": 1}]}})"),
     "drives/a.json: ata.smart.attributes[1].id: missing, but required"},
    {driveWith(R"("ata": {"smart": {"attributes": [{"id": 5, "raw": [1, 2, 3]}]}})"),
     "drives/a.json: ata.smart.attributes[0].raw: expected a number below 2^48 or a list of six bytes, got [1,2,3]"},
    {driveWith(R"("ata": {"smart": {"attributes": {}}})"),
     "drives/a.json: ata.smart.attributes: expected a list, got {}"},
    {driveWith(R"("ata": {"smart": {"errorLog": [{"lba": 281474976710656}]}})"),
     "drives/a.json: ata.smart.errorLog[0].lba: expected a number from 0 to 281474976710655, got 281474976710656"},
    {driveWith(R"("nvme": {"health": {"percentageUsed": 256}})"),
     "drives/a.json: nvme.health.percentageUsed: expected a number from 0 to 255, got 256"},
    {driveWith(R"("volumes": [{"letter": "b"}])"),
     R"(drives/a.json: volumes[0].letter: expected one letter from "A" to "Z")"},
    {driveWith(R"("volumes": [{}])"), "drives/a.json: volumes[0].letter: missing, but required"},
    {driveWith(R"("volumes": [{"guid": "{1}"}])"),
     "drives/a.json: volumes[0].guid: expected 32 hexadecimal digits as in \"01234567-89ab-cdef-0123-456789abcdef\""},
    {driveWith(R"("volumes": [{"guid": "01234567-89ab-cdef-0123-456789abcdef"},
                              {"guid": "01234567-89AB-CDEF-0123-456789ABCDEF"}])"),
     "drives/a.json: volumes[1].guid: {01234567-89ab-cdef-0123-456789abcdef} is taken by drives/a.json: volumes[0]"},
    {driveWith(R"("volumes": [{"letter": "D", "folder": "mnt"}])"),
     R"(drives/a.json: volumes[0].folder: expected a folder as in "C:\\mnt\\")"},
    {driveWith(R"("empty": true)"), "drives/a.json: empty: only a removable medium can be missing"},
    {driveWith(R"("volumes": [{"letter": "D", "serial": "12345678"}])"),
     R"(drives/a.json: volumes[0].serial: expected eight hexadecimal digits as in "1A2B-3C4D")"},
    {driveWith(R"("volumes": [{"letter": "D"}, {"letter": "D"}])"),
     "drives/a.json: volumes[1].letter: D is taken by drives/a.json: volumes[0]"},
    {driveWith(R"("volumes": [{"letter": "D", "extents": [{"offset": 100, "length": 512}]}])"),
     "drives/a.json: volumes[0].extents[0].offset: expected whole sectors"},
    {driveWith(R"("volumes": [{"letter": "D", "extents": [{"offset": 0, "length": 0}]}])"),
     "drives/a.json: volumes[0].extents[0].length: expected whole sectors"},
    {driveWith(R"("volumes": [{"letter": "D", "extents": [{"offset": "4 MiB", "length": "5 MiB"}]}])"),
     "drives/a.json: volumes[0].extents[0].length: the extent reaches past the end of drive 3"},
    {driveWith(R"("volumes": [{"letter": "D", "extents": [{"disk": 4, "offset": 0, "length": 512}]}])"),
     "drives/a.json: volumes[0].extents[0].disk: there is no drive 4"},
    {driveWith(R"("volumes": [{"letter": "D", "extents": [{"offset": 0, "length": 1024}]},
                              {"letter": "E", "extents": [{"offset": 512, "length": 1024}]}])"),
     "drives/a.json: volumes[1].extents[0]: overlaps drives/a.json: volumes[0].extents[0]"},
    {driveWith(R"("volumes": [{"letter": "D", "kind": "optical", "extents": [{"offset": 0, "length": 512}]}])"),
     "drives/a.json: volumes[0].extents: an optical or network volume has none"},
    {driveWith(R"("volumes": [{"letter": "D", "bitLocker": {"protectors": [{"type": "Tpm"}]}}])"),
     R"(drives/a.json: volumes[0].bitLocker.protectors: a volume whose state is "off" has none)"},
    {driveWith(R"("faults": {"reads": [{"firstSector": 16383, "sectors": 2}]})"),
     "drives/a.json: faults.reads[0].firstSector: the range reaches past the drive's 16384 sectors"},
    {driveWith(R"("faults": {"reads": [{"firstSector": 0, "error": "ERROR_OOPS"}]})"),
     R"(drives/a.json: faults.reads[0].error: expected a Win32 error by number or name, got "ERROR_OOPS")"},
    {driveWith(R"("faults": {"reads": [{"firstSector": 0, "error": 0}]})"),
     "drives/a.json: faults.reads[0].error: expected a Win32 error by number or name, got 0"},
    {driveWith(R"("faults": {"clean": "forgotten"})"),
     R"(drives/a.json: faults.clean: expected one of "done" "refused" "pretended", got "forgotten")"},
    {driveWith(R"("volumes": [{"letter": "K", "appears": "with its table"}])"),
     "drives/a.json: volumes[0].appears: a volume without extents is in no partition table"},
    {driveWith(R"("faults": {"shortReads": [{"firstSector": 0}]})"),
     "drives/a.json: faults.shortReads[0].bytes: missing, but required"},
    {driveWith(R"("faults": {"stopsAnswering": {"after": 1}})"),
     "drives/a.json: faults.stopsAnswering.after: unknown field"},
    {driveWith(R"("faults": {"slow": [{"firstSector": 0, "milliseconds": 1, "after": 1}]})"),
     "drives/a.json: faults.slow[0].after: unknown field"},
    {driveWith(R"("faults": {"requests": [{"request": "IOCTL_NO_SUCH"}]})"),
     R"(drives/a.json: faults.requests[0].request: no request of this name: "IOCTL_NO_SUCH")"},
};

INSTANTIATE_TEST_SUITE_P(Descriptions, MistakeTest, ::testing::ValuesIn(kMistakes));

TEST(WorkbenchDescription, MistakesOfTheBenchItself) {
    EXPECT_EQ(readBench({"bench.json", R"({"automount": "yes"})"}, {}).error,
              R"(bench.json: automount: expected true or false, got "yes")");
    EXPECT_EQ(readBench({"bench.json", R"({"tools": {"diskpart": {"language": "fr"}}})"}, {}).error,
              R"(bench.json: tools.diskpart.language: expected one of "en" "de", got "fr")");
    EXPECT_EQ(readBench({"bench.json", R"({"refusedFiles": [{"newOnly": true}]})"}, {}).error,
              "bench.json: refusedFiles[0].path: missing, but required");
    EXPECT_EQ(readBench({"bench.json", R"({"tools": {"format": {}}})"}, {}).error,
              "bench.json: tools.format: unknown field");
    EXPECT_EQ(readBench({"bench.json", R"({"tools": {"smartctl": {"missing": true}}})"}, {}).error,
              "bench.json: tools.smartctl.missing: unknown field");
    EXPECT_EQ(
        readBench({"bench.json", R"({"volumes": [{"letter": "K", "extents": [{"offset": 0, "length": 512}]}]})"}, {})
            .error,
        "bench.json: volumes[0].extents[0].disk: missing, but required");
}

TEST(WorkbenchDescription, NumbersFilesAndPortsStandOnce) {
    const auto two = [](const std::string& first, const std::string& second) {
        return readBench({"bench.json", "{}"}, {{"drives/a.json", first}, {"drives/b.json", second}}).error;
    };
    const std::string drive = R"({"number": 3, "bus": "sata", "size": 512})";
    EXPECT_EQ(two(drive, drive), "drives/b.json: number: 3 is taken by drives/a.json");
    EXPECT_EQ(two(drive, R"({"number": 4, "bus": "sata", "size": 512, "scsiPort": 3})"),
              "drives/b.json: scsiPort: 3 is taken by drives/a.json");
    EXPECT_EQ(two(drive, R"({"number": 4, "bus": "sata", "size": 512, "backing": {"file": "drive3.img"}})"),
              "drives/b.json: backing.file: is the content of drives/a.json already");
}

TEST(WorkbenchDescription, DefaultsFollowTheIdentity) {
    const BenchReading reading = read(driveWith(
        R"("identity": {"product": "Model text that is longer than forty characters", "serial": "S1", "revision": "R"})"));
    ASSERT_EQ(reading.error, "");
    const DriveDescription& drive = reading.bench.drives.front();
    EXPECT_EQ(drive.bus, 11U);
    EXPECT_EQ(drive.size, 8U << 20);
    EXPECT_EQ(drive.sectorSize, 512U);
    EXPECT_EQ(drive.scsiPort, 3U);
    EXPECT_EQ(drive.backing.file, "drive3.img");
    EXPECT_EQ(drive.ata.model, "Model text that is longer than forty cha");
    EXPECT_EQ(drive.nvme.serial, "S1");
    EXPECT_EQ(drive.nvme.namespaceSectors, 16384U);
    EXPECT_FALSE(drive.identity.vendor.has_value());
    EXPECT_FALSE(drive.roads.anyScsi());
    EXPECT_TRUE(reading.bench.automount);
}

TEST(WorkbenchDescription, TextsAreBytes) {
    const BenchReading reading = read(driveWith(R"("identity": {"serial": "A\u0001\u007f\u0080\u00ffé%n"})"));
    ASSERT_EQ(reading.error, "");
    EXPECT_EQ(reading.bench.drives.front().identity.serial, "A\x01\x7F\x80\xFF\xE9%n");
}

TEST(WorkbenchDescription, AVolumeMayHaveANameInPlaceOfALetter) {
    const BenchReading reading = readBench(
        {"bench.json", "{}"}, {{"a.json", R"({"number": 2, "bus": "usb", "size": 1024, "volumes": [{"letter": "D"},
            {"guid": "01234567-89AB-cdef-0123-456789abcdef", "folder": "C:\\mnt\\"}]})"}});
    ASSERT_EQ(reading.error, "");
    const VolumeDescription& volume = reading.bench.volumes.front();
    EXPECT_EQ(volume.letter, 0);
    EXPECT_EQ(volume.folder, "C:\\mnt\\");
    EXPECT_EQ(volume.name(), "{01234567-89ab-cdef-0123-456789abcdef}");
    EXPECT_EQ(reading.bench.volumeNamed(volume.guid), &volume);
    EXPECT_EQ(reading.bench.volume('D')->name(), "D");
}

TEST(WorkbenchDescription, WhatTakesAnEmptySlotsPlaceIsAMedium) {
    const BenchDescription bench = read(driveWith(R"("removable": true, "empty": true)")).bench;
    EXPECT_TRUE(bench.drives.front().empty);
    EXPECT_FALSE(swappedDrive(bench.drives.front()).empty);
}

TEST(WorkbenchDescription, DrivesAndVolumesAreInOrder) {
    const BenchReading reading = readBench({"bench.json", R"({"volumes": [{"letter": "K", "kind": "optical"}]})"},
                                           {{"drives/a.json", R"({"number": 9, "bus": 200, "size": 512})"},
                                            {"drives/b.json", R"({"number": 2, "bus": "usb", "size": 1024,
            "volumes": [{"letter": "Z", "extents": [{"disk": 9, "offset": 0, "length": 512}]}, {"letter": "C"}]})"}});
    ASSERT_EQ(reading.error, "");
    ASSERT_EQ(reading.bench.drives.size(), 2U);
    EXPECT_EQ(reading.bench.drives[0].number, 2U);
    EXPECT_EQ(reading.bench.drives[1].bus, 200U);
    ASSERT_EQ(reading.bench.volumes.size(), 3U);
    EXPECT_EQ(reading.bench.volumes[0].letter, 'C');
    EXPECT_EQ(reading.bench.volumes[1].kind, VolumeKind::kOptical);
    EXPECT_EQ(reading.bench.volume('Z')->extents.front().disk, 9U);
    EXPECT_EQ(reading.bench.volume('D'), nullptr);
    EXPECT_EQ(reading.bench.volume('\0'), nullptr);
    EXPECT_EQ(reading.bench.volumeNamed("{00000000-0000-0000-0000-00000000005a}"), reading.bench.volume('Z'));
    EXPECT_EQ(reading.bench.drive(3), nullptr);
}

TEST(WorkbenchDescription, RoadsCombine) {
    const BenchReading reading = read(driveWith(R"("road": ["raid-miniport", "nvme-query"])"));
    ASSERT_EQ(reading.error, "");
    const Roads& roads = reading.bench.drives.front().roads;
    EXPECT_TRUE(roads.raidMiniport && roads.nvmeQuery && roads.anyNvme() && roads.anyScsi());
    EXPECT_FALSE(roads.ata || roads.translatesAta());
}

TEST(WorkbenchDescription, FaultsAreRead) {
    const BenchReading reading = read(driveWith(
        R"("faults": {"open": "ERROR_ACCESS_DENIED", "vanishAfterRequests": 7,
           "requests": [{"request": "ioctl:0x0004d014", "error": 1, "after": 2, "times": 3}],
           "slow": [{"firstSector": 1, "sectors": 2, "milliseconds": 30}],
           "flush": {"error": "ERROR_CRC", "after": 4}, "volatileCache": true,
           "corruptWrites": [{"firstSector": 5, "times": 6}],
           "stopsAnswering": {"afterRequests": 9}})"));
    ASSERT_EQ(reading.error, "");
    const DriveFaults& faults = reading.bench.drives.front().faults;
    EXPECT_EQ(faults.open->error, kErrorAccessDenied);
    EXPECT_EQ(faults.vanishAfterRequests, 7U);
    EXPECT_EQ(faults.requests.front().occurrence.after, 2U);
    EXPECT_EQ(faults.requests.front().occurrence.times, 3U);
    EXPECT_EQ(faults.slow.front().amount, 30U);
    EXPECT_EQ(faults.flush->error, kErrorCrc);
    EXPECT_EQ(faults.flush->occurrence.after, 4U);
    EXPECT_TRUE(faults.volatileCache);
    EXPECT_EQ(faults.corruptWrites.front().firstSector, 5U);
    EXPECT_EQ(faults.corruptWrites.front().occurrence.times, 6U);
    EXPECT_EQ(faults.stopsAnswering->afterRequests, 9U);
    EXPECT_EQ(faults.stopsAnswering->milliseconds, 30000U);
    EXPECT_EQ(faults.stopsAnswering->error, kErrorSemTimeout);
}

TEST(WorkbenchDescription, SizesAreTextsOrNumbers) {
    EXPECT_EQ(sizeFromText("512 KiB"), 524288U);
    EXPECT_EQ(sizeFromText("32 MiB"), 33554432U);
    EXPECT_EQ(sizeFromText("4 GiB"), 4294967296U);
    EXPECT_EQ(sizeFromText("2 TiB"), 2199023255552U);
    for (const char* wrong : {"", "MiB", "32", "32MiB", "32 mib", "-1 KiB", "1.5 KiB", "18014398509481984 KiB"}) {
        EXPECT_FALSE(sizeFromText(wrong).has_value()) << wrong;
    }
}

TEST(WorkbenchDescription, ADriveMayTellACapacityOfNoBytes) {
    const BenchReading reading = read(R"({"number": 3, "bus": "sata", "size": 0})");
    ASSERT_EQ(reading.error, "");
    EXPECT_EQ(reading.bench.drives.front().size, 0U);
}

TEST(WorkbenchDescription, ErrorsHaveNames) {
    EXPECT_EQ(errorNumber("ERROR_CRC"), 23U);
    EXPECT_EQ(errorNumber("ERROR_crc"), std::nullopt);
    EXPECT_EQ(errorName(1167), "ERROR_DEVICE_NOT_CONNECTED");
    EXPECT_EQ(errorName(99999), "99999");
}

TEST(WorkbenchState, SurvivesAsText) {
    const BenchDescription bench = read(driveWith(R"("readOnly": true, "volumes": [{"letter": "D",
        "extents": [{"offset": 0, "length": 512}]}])"))
                                       .bench;
    BenchState state = firstState(bench);
    EXPECT_TRUE(state.isReadOnly(bench.drives.front()));
    EXPECT_TRUE(state.isMounted(bench.volumes.front()));
    state.automount = false;
    state.readOnly[3] = false;
    state.cleaned.insert(3);
    state.unplugged.insert(60);
    const BenchState again = stateFromText(stateText(state), bench);
    EXPECT_FALSE(again.automount);
    EXPECT_FALSE(again.isReadOnly(bench.drives.front()));
    EXPECT_FALSE(again.isMounted(bench.volumes.front()));
    EXPECT_TRUE(again.isUnplugged(60));
    for (const char* damaged : {"", "{", "[]", R"({"cleaned": 5})", R"({"readOnly": {"x": true}})"}) {
        EXPECT_TRUE(stateFromText(damaged, bench).automount) << damaged;
        EXPECT_TRUE(stateFromText(damaged, bench).cleaned.empty()) << damaged;
    }
}

TEST(WorkbenchState, VolumesFollowTheTableThatTheSystemHasRead) {
    const BenchDescription bench = read(driveWith(R"("volumes": [
        {"letter": "D", "extents": [{"offset": 512, "length": 512}]},
        {"letter": "E", "appears": "with its table", "extents": [{"offset": 1024, "length": 512}]}])"))
                                       .bench;
    BenchState state = firstState(bench);
    const auto mounted = [&] {
        const BenchState again = stateFromText(stateText(state), bench);
        return std::string(again.isMounted(*bench.volume('D')) ? "D" : "") +
               (again.isMounted(*bench.volume('E')) ? "E" : "");
    };
    EXPECT_EQ(mounted(), "D");
    readTable(state, bench, 3, std::nullopt);
    EXPECT_EQ(mounted(), "D") << "without a table the volumes are as described";
    state.automount = false;
    readTable(state, bench, 3, std::set<std::uint64_t>{512, 1024});
    EXPECT_EQ(mounted(), "D") << "new ones are not mounted";
    state.automount = true;
    state.toldTables[3] = {1, 2, 3};
    EXPECT_EQ(stateFromText(stateText(state), bench).toldTables.at(3), (std::vector<std::uint8_t>{1, 2, 3}));
    readTable(state, bench, 3, std::set<std::uint64_t>{512, 1024});
    EXPECT_EQ(mounted(), "DE");
    EXPECT_TRUE(state.toldTables.empty()) << "the table is the medium's again";
    readTable(state, bench, 3, std::set<std::uint64_t>{1024});
    EXPECT_EQ(mounted(), "E");
    readTable(state, bench, 3, std::set<std::uint64_t>{4096});
    EXPECT_EQ(mounted(), "");
    readTable(state, bench, 3, std::set<std::uint64_t>{1024});
    cleanDrive(state, bench, 3);
    EXPECT_EQ(mounted(), "");
    readTable(state, bench, 3, std::set<std::uint64_t>{1024});
    EXPECT_EQ(mounted(), "E") << "a new table after the clean";
    swapDrive(state, 3);
    EXPECT_EQ(mounted(), "");
}

// --- folders -------------------------------------------------------------------------------------------------------

TEST(WorkbenchFolder, TheDemonstrationBenchIsValidAndVaried) {
    const BenchReading reading = readBenchFolder(TORVANE_DEMO_BENCH);
    ASSERT_EQ(reading.error, "");
    const BenchDescription& bench = reading.bench;
    EXPECT_GE(bench.drives.size(), 12U);
    for (const std::uint32_t bus : {1U, 7U, 8U, 9U, 11U, 12U, 17U}) {
        EXPECT_TRUE(std::any_of(bench.drives.begin(), bench.drives.end(), [&](const DriveDescription& drive) {
            return drive.bus == bus;
        })) << kBusNames[bus];
    }
    EXPECT_TRUE(std::any_of(bench.drives.begin(), bench.drives.end(),
                            [](const DriveDescription& drive) { return drive.sectorSize == 4096; }));
    EXPECT_TRUE(std::any_of(bench.volumes.begin(), bench.volumes.end(),
                            [](const VolumeDescription& volume) { return volume.extents.size() == 2; }));
    EXPECT_EQ(bench.volume('C')->extents.front().disk, 1U);
    EXPECT_TRUE(bench.drive(0)->empty) << "a gap below the disk of C:";
    EXPECT_EQ(bench.volumes.front().letter, 0) << "a volume without a letter";
}

class WorkbenchLayOut : public ::testing::Test {
  protected:
    void SetUp() override {
        // Of each test's own: they may run in several programs at once.
        folder_ = std::filesystem::temp_directory_path() / "torvane-workbench-lay-out" /
                  ::testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::remove_all(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }
    [[nodiscard]] std::filesystem::path target() const { return folder_ / "bench"; }
    void put(const std::string& name) const {
        std::filesystem::create_directories((target() / name).parent_path());
        std::ofstream(target() / name) << "x";
    }

    std::filesystem::path folder_;
};

TEST_F(WorkbenchLayOut, CopiesDescriptionsIntoAnEmptyFolder) {
    ASSERT_EQ(layOutBench(TORVANE_DEMO_BENCH, target(), false), "");
    EXPECT_EQ(readBenchFolder(target()).error, "");
    EXPECT_NE(layOutBench(TORVANE_DEMO_BENCH, target(), false), "");
}

TEST_F(WorkbenchLayOut, FreshRemovesWhatABenchKeepsAndNothingElse) {
    ASSERT_EQ(layOutBench(TORVANE_DEMO_BENCH, target(), true), "");
    put("bench.log");
    put("state.json");
    put("backing/drive0.img");
    put("drives/old.json");
    ASSERT_EQ(layOutBench(TORVANE_DEMO_BENCH, target(), true), "");
    EXPECT_FALSE(std::filesystem::exists(target() / "bench.log"));
    EXPECT_FALSE(std::filesystem::exists(target() / "backing"));
    EXPECT_FALSE(std::filesystem::exists(target() / "drives/old.json"));
    put("thesis.txt");
    EXPECT_NE(layOutBench(TORVANE_DEMO_BENCH, target(), true), "");
    EXPECT_TRUE(std::filesystem::exists(target() / "thesis.txt"));
}

TEST_F(WorkbenchLayOut, AFolderThatIsNoBenchIsLeftAlone) {
    put("state.json");
    EXPECT_NE(layOutBench(TORVANE_DEMO_BENCH, target(), true), "");
    EXPECT_TRUE(std::filesystem::exists(target() / "state.json"));
}

TEST_F(WorkbenchLayOut, AWrongSourceTouchesNothing) {
    ASSERT_EQ(layOutBench(TORVANE_DEMO_BENCH, target(), true), "");
    std::filesystem::create_directories(folder_ / "wrong");
    std::ofstream(folder_ / "wrong" / "bench.json") << "{]";
    EXPECT_EQ(layOutBench(folder_ / "wrong", target(), true), "bench.json: line 1, column 2: not valid JSON");
    EXPECT_EQ(readBenchFolder(target()).error, "");
    EXPECT_NE(layOutBench(target(), target(), true), "");
    EXPECT_EQ(readBenchFolder(target()).error, "");
}

} // namespace
} // namespace torvane::bench
