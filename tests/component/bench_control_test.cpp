#include "base/bytes.h"
#include "tests/component/bench_test_folder.h"
#include "workbench/session/unique_handle.h"

#include <windows.h>

#include <winioctl.h>

#include <ntddscsi.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace torvane::testing {
namespace {

using bench::UniqueHandle;
using Buffer = std::vector<std::uint8_t>;

const char* const kAta =
    R"({"number": 0, "bus": "sata", "size": 500107862016, "physicalSectorSize": 4096, "road": "ata",
    "identity": {"product": "Disk Zero", "revision": "R1", "serial": "  Z0-1  "},
    "adapter": {"busMajorVersion": 3, "busMinorVersion": 1},
    "ata": {"model": "Model Of Zero", "serial": "SER0", "firmware": "FW.0",
            "smart": {"attributes": [{"id": 9, "raw": 8123}]}},
    "volumes": [{"letter": "C", "label": "SYSTEM", "serial": "1A2B-3C4D", "freeSpace": "10 GiB",
                 "extents": [{"offset": "1 MiB", "length": "4 MiB"}, {"disk": 3, "offset": 0, "length": "2 MiB"}]}]})";
const char* const kNvme = R"({"number": 3, "bus": "nvme", "size": "64 MiB", "road": "nvme-query", "readOnly": true,
    "identity": {"product": "Fast", "serial": "F3"},
    "nvme": {"healthOnlyForAllNamespaces": true, "health": {"percentageUsed": 7, "powerOnHours": 5127}}})";
const char* const kRaid = R"({"number": 5, "bus": "raid", "size": "64 MiB", "road": "raid-miniport", "scsiPort": 2,
    "nvme": {"model": "Cache", "serial": "C5", "firmware": "1", "health": {"mediaErrors": 2}}})";
const char* const kBridge = R"({"number": 6, "bus": "usb", "size": "64 MiB", "road": "usb-bridge",
    "nvme": {"model": "Pocket", "serial": "P6", "health": {"availableSpare": 3}}})";
const char* const kHostile = R"({"number": 7, "bus": "raid", "size": "64 MiB", "road": "none",
    "identity": {"vendor": "%s%n", "product": "P"}, "descriptor": {"productOffset": 4000000000, "returnedLength": 38,
    "size": 9, "busType": 77}})";

const char* const kStrict = R"({"number": 8, "bus": "usb", "size": 512, "road": "sat", "strictPassThrough": true})";
const char* const kReader = R"({"number": 9, "bus": "usb", "size": "1 MiB", "removable": true})";

class BenchControlTest : public BenchTest {
  protected:
    void SetUp() override {
        openBench(R"({"volumes": [{"letter": "K", "kind": "optical"}]})", {{"0.json", kAta},
                                                                           {"3.json", kNvme},
                                                                           {"5.json", kRaid},
                                                                           {"6.json", kBridge},
                                                                           {"7.json", kHostile},
                                                                           {"8.json", kStrict},
                                                                           {"9.json", kReader}});
    }

    static UniqueHandle open(const std::string& name) {
        return UniqueHandle(CreateFileA((R"(\\.\)" + name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    }

    // Returns the error; the answer is in `out_`, its length in `count_`.
    DWORD ask(const std::string& device, DWORD code, const Buffer& in, std::size_t outLength) {
        const UniqueHandle handle = open(device);
        EXPECT_TRUE(handle) << device;
        out_.assign(outLength, 0xEE);
        Buffer input = in;
        SetLastError(0);
        const BOOL done = DeviceIoControl(handle.get(), code, input.empty() ? nullptr : input.data(),
                                          static_cast<DWORD>(input.size()), out_.empty() ? nullptr : out_.data(),
                                          static_cast<DWORD>(out_.size()), &count_, nullptr);
        return done != 0 ? 0 : GetLastError();
    }
    static Buffer propertyQuery(std::uint32_t property, std::size_t length = 12) {
        Buffer query(length);
        storeLe<std::uint32_t>(query, 0, property);
        return query;
    }
    [[nodiscard]] std::string textAt(std::size_t offset) const {
        return reinterpret_cast<const char*>(out_.data() + offset);
    }

    Buffer out_;
    DWORD count_ = 0;
};

TEST_F(BenchControlTest, GeometryFitsAnOddBuffer) {
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, 33), 0U);
    EXPECT_EQ(count_, 32U);
    EXPECT_EQ(loadLe32(out_, 20), 512U);
    EXPECT_EQ(loadLe64(out_, 24), 500107862016U);
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, 31),
              static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_LENGTH_INFO, {}, 8), 0U);
    EXPECT_EQ(loadLe64(out_, 0), 500107862016U);
}

TEST_F(BenchControlTest, TellsTheReadOnlyAttribute) {
    // GET_DISK_ATTRIBUTES, <winioctl.h> of Windows 7 on: version, reserved, 64 bits of attributes, of which 2 is
    // read-only.
    constexpr DWORD kGetDiskAttributes = 0x000700F0;
    ASSERT_EQ(ask("PhysicalDrive0", kGetDiskAttributes, {}, 16), 0U);
    EXPECT_EQ(count_, 16U);
    EXPECT_EQ(loadLe32(out_, 0), 16U);
    EXPECT_EQ(loadLe64(out_, 8), 0U);
    ASSERT_EQ(ask("PhysicalDrive3", kGetDiskAttributes, {}, 16), 0U);
    EXPECT_EQ(loadLe64(out_, 8), 2U);
    EXPECT_EQ(ask("PhysicalDrive0", kGetDiskAttributes, {}, 15), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST_F(BenchControlTest, TellsTheDisksNumber) {
    ASSERT_EQ(ask("PhysicalDrive5", IOCTL_STORAGE_GET_DEVICE_NUMBER, {}, sizeof(STORAGE_DEVICE_NUMBER)), 0U);
    EXPECT_EQ(count_, 12U);
    EXPECT_EQ(loadLe32(out_, 0), static_cast<std::uint32_t>(FILE_DEVICE_DISK));
    EXPECT_EQ(loadLe32(out_, 4), 5U);
    EXPECT_EQ(loadLe32(out_, 8), 0U) << "the whole disk";
}

TEST_F(BenchControlTest, TellsThePartitionTable) {
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, 4096), 0U);
    EXPECT_EQ(count_, 48U + 4U * 144U);
    EXPECT_EQ(loadLe32(out_, 0), 0U) << "an MBR";
    EXPECT_EQ(loadLe64(out_, 48 + 8), 1U << 20) << "of C:";
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, 100),
              static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    ASSERT_EQ(ask("PhysicalDrive5", IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, 4096), 0U);
    EXPECT_EQ(count_, 48U);
    EXPECT_EQ(loadLe32(out_, 0), 2U) << "raw";
}

TEST_F(BenchControlTest, ARawWriteDoesNotChangeTheToldTableUntilItIsReadAnew) {
    const auto toldStyle = [&] {
        EXPECT_EQ(ask("PhysicalDrive5", IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, 4096), 0U);
        return loadLe32(out_, 0);
    };
    const auto writeSector = [&](bool withTable) {
        Buffer sector(512);
        sector[446 + 4] = 7;
        sector[446 + 12] = 1;
        sector[510] = withTable ? 0x55 : 0;
        sector[511] = withTable ? 0xAA : 0;
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(open("PhysicalDrive5").get(), sector.data(), 512, &written, nullptr));
    };
    constexpr std::uint32_t kMbr = 0;
    constexpr std::uint32_t kRaw = 2;
    EXPECT_EQ(toldStyle(), kRaw);
    writeSector(true);
    EXPECT_EQ(toldStyle(), kRaw);
    EXPECT_EQ(ask("PhysicalDrive5", IOCTL_DISK_UPDATE_PROPERTIES, {}, 0), 0U);
    EXPECT_EQ(toldStyle(), kMbr);
    writeSector(false);
    EXPECT_EQ(toldStyle(), kMbr);
    ASSERT_TRUE(bench().unplug(5));
    ASSERT_TRUE(bench().plug(5));
    EXPECT_EQ(toldStyle(), kRaw) << "it is looked at when it is plugged in";
}

TEST_F(BenchControlTest, CountsMediaChanges) {
    ASSERT_EQ(ask("PhysicalDrive9", IOCTL_STORAGE_CHECK_VERIFY, {}, 4), 0U);
    EXPECT_EQ(loadLe32(out_, 0), 0U);
    bench().swap(9);
    ASSERT_EQ(ask("PhysicalDrive9", IOCTL_STORAGE_CHECK_VERIFY, {}, 4), 0U);
    EXPECT_EQ(loadLe32(out_, 0), 1U);
    ASSERT_EQ(ask("PhysicalDrive9", IOCTL_STORAGE_CHECK_VERIFY, {}, 0), 0U);
    EXPECT_EQ(count_, 0U);
    bench().swap(0);
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_CHECK_VERIFY, {}, 4), 0U);
    EXPECT_EQ(loadLe32(out_, 0), 0U) << "another device has not had another medium yet";
}

TEST_F(BenchControlTest, ADriveInAnothersPlaceTellsItsOwn) {
    bench().swap(0);
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(0), 551), 0U);
    EXPECT_EQ(textAt(loadLe32(out_, 24)), "  Z0-1  -SWAPPED");
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, 33), 0U);
    EXPECT_EQ(loadLe64(out_, 24), 500107862016U);
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_LAYOUT_EX, {}, 4096), 0U);
    EXPECT_EQ(loadLe32(out_, 0), 2U) << "its volumes went with the other one";
}

TEST_F(BenchControlTest, DeviceDescriptorCarriesTheIdentity) {
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(0), 551), 0U);
    EXPECT_EQ(loadLe32(out_, 12), 0U); // no vendor
    EXPECT_EQ(textAt(loadLe32(out_, 16)), "Disk Zero");
    EXPECT_EQ(textAt(loadLe32(out_, 20)), "R1");
    EXPECT_EQ(textAt(loadLe32(out_, 24)), "  Z0-1  ");
    EXPECT_EQ(loadLe32(out_, 28), 11U);
    EXPECT_EQ(loadLe32(out_, 4), count_);
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(0), 8), 0U);
    EXPECT_EQ(count_, 8U);
}

TEST_F(BenchControlTest, HostileDescriptorIsToldAsDescribed) {
    ASSERT_EQ(ask("PhysicalDrive7", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(0), 551), 0U);
    EXPECT_EQ(count_, 38U);
    EXPECT_EQ(loadLe32(out_, 4), 9U);
    EXPECT_EQ(loadLe32(out_, 12), 36U);
    EXPECT_EQ(out_[36], '%');
    EXPECT_EQ(out_[38], 0xEE); // not returned
    EXPECT_EQ(loadLe32(out_, 16), 4000000000U);
    EXPECT_EQ(loadLe32(out_, 28), 77U);
}

TEST_F(BenchControlTest, AdapterDescriptorAnswersALongRequest) {
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(1, 29), 540), 0U);
    EXPECT_EQ(count_, 32U);
    EXPECT_EQ(loadLe16(out_, 26), 3U);
    EXPECT_EQ(loadLe16(out_, 28), 1U);
}

Buffer identifyRequest() {
    Buffer in(32);
    in[5] = 1;    // sector count
    in[6] = 1;    // sector number
    in[9] = 0xA0; // drive/head
    in[10] = 0xEC;
    return in;
}

TEST_F(BenchControlTest, IdentifyAnswersOnTheAtaRoadAlone) {
    ASSERT_EQ(ask("PhysicalDrive0", SMART_RCV_DRIVE_DATA, identifyRequest(), 528), 0U);
    EXPECT_EQ(count_, 528U);
    // Two characters in a word, the first one in the high byte: "SE" of the serial number, "oM" of "Model".
    EXPECT_EQ(out_[16 + 20], 'E');
    EXPECT_EQ(out_[16 + 21], 'S');
    EXPECT_EQ(out_[16 + 54], 'o');
    EXPECT_EQ(out_[16 + 55], 'M');
    unsigned sum = 0;
    for (std::size_t i = 16; i < 528; ++i) {
        sum += out_[i];
    }
    EXPECT_EQ(sum % 256, 0U);
    EXPECT_EQ(ask("PhysicalDrive3", SMART_RCV_DRIVE_DATA, identifyRequest(), 528),
              static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    EXPECT_EQ(bench()
                  .logLines({"target=drive:0 request=SMART_RCV_DRIVE_DATA", "command=IDENTIFY_DEVICE", "result=ok"})
                  .size(),
              1U);
}

// SCSI_PASS_THROUGH with 24 bytes of sense data at 56 and data at 80.
Buffer passThrough(const Buffer& cdb, std::uint8_t direction, std::uint32_t length) {
    Buffer in(80 + length);
    storeLe<std::uint16_t>(in, 0, 56);
    in[6] = static_cast<std::uint8_t>(cdb.size());
    in[7] = 24;
    in[8] = direction;
    storeLe<std::uint32_t>(in, 12, length);
    storeLe<std::uint32_t>(in, 16, 2);
    storeLe<std::uint64_t>(in, 24, 80);
    storeLe<std::uint32_t>(in, 32, 56);
    std::copy(cdb.begin(), cdb.end(), in.begin() + 36);
    return in;
}

TEST_F(BenchControlTest, AtaCommandsPassThroughScsi) {
    const Buffer identify = {0x85, 0x08, 0x0E, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0xEC, 0};
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH, passThrough(identify, SCSI_IOCTL_DATA_IN, 512), 80 + 512),
              0U);
    EXPECT_EQ(out_[2], 0); // good
    EXPECT_EQ(out_[80 + 21], 'S');
    // A drive that does not translate tells so in its sense data.
    ASSERT_EQ(ask("PhysicalDrive3", IOCTL_SCSI_PASS_THROUGH, passThrough(identify, SCSI_IOCTL_DATA_IN, 512), 80 + 512),
              0U);
    EXPECT_EQ(out_[2], 2);
    EXPECT_EQ(out_[56 + 2], 5);
    EXPECT_EQ(out_[56 + 12], 0x20);
    EXPECT_EQ(ask("PhysicalDrive7", IOCTL_SCSI_PASS_THROUGH, passThrough(identify, SCSI_IOCTL_DATA_IN, 512), 80 + 512),
              static_cast<DWORD>(ERROR_INVALID_FUNCTION));
}

TEST_F(BenchControlTest, PassThroughNeverWritesOutsideItsBuffers) {
    Buffer in = passThrough({0x12, 0, 0, 0, 36, 0}, SCSI_IOCTL_DATA_IN, 36);
    storeLe<std::uint64_t>(in, 24, 100); // the data would end past the buffer
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH, in, 116), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    in = passThrough({0x12, 0, 0, 0, 36, 0}, SCSI_IOCTL_DATA_IN, 36);
    storeLe<std::uint32_t>(in, 32, 110); // so would the sense data
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH, in, 116), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    in[0] = 55;
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH, in, 116), static_cast<DWORD>(ERROR_REVISION_MISMATCH));
}

Buffer protocolQuery(std::uint32_t dataType, std::uint32_t value, std::uint32_t subValue, std::uint32_t length) {
    Buffer query(8 + 40 + length);
    const std::array<std::uint32_t, 8> words = {49, 0, 3, dataType, value, subValue, 40, length};
    for (std::size_t i = 0; i < words.size(); ++i) {
        storeLe<std::uint32_t>(query, 4 * i, words[i]);
    }
    return query;
}

TEST_F(BenchControlTest, NvmeAnswersStorageQueries) {
    ASSERT_EQ(ask("PhysicalDrive3", IOCTL_STORAGE_QUERY_PROPERTY, protocolQuery(1, 1, 0, 4096), 4144), 0U);
    EXPECT_EQ(std::string(out_.begin() + 48 + 24, out_.begin() + 48 + 30), "Fast  ");
    EXPECT_EQ(ask("PhysicalDrive3", IOCTL_STORAGE_QUERY_PROPERTY, protocolQuery(2, 2, 0, 512), 4144),
              static_cast<DWORD>(ERROR_IO_DEVICE));
    ASSERT_EQ(ask("PhysicalDrive3", IOCTL_STORAGE_QUERY_PROPERTY, protocolQuery(2, 2, 0xFFFFFFFF, 512), 4144), 0U);
    EXPECT_EQ(out_[48 + 5], 7);
    EXPECT_EQ(loadLe64(out_, 48 + 128), 5127U);
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, protocolQuery(1, 1, 0, 4096), 4144),
              static_cast<DWORD>(ERROR_INVALID_FUNCTION));
}

Buffer raidRequest(std::uint32_t opcode, std::uint32_t namespaceId, std::uint32_t dword10) {
    Buffer in(4260);
    storeLe<std::uint32_t>(in, 0, 28);
    std::memcpy(in.data() + 4, "IntelNvm", 8);
    storeLe<std::uint32_t>(in, 12, 10);
    storeLe<std::uint32_t>(in, 16, 0xF0002808);
    storeLe<std::uint32_t>(in, 24, 4232);
    in[28] = 1;
    storeLe<std::uint32_t>(in, 32, opcode);
    storeLe<std::uint32_t>(in, 36, namespaceId);
    storeLe<std::uint32_t>(in, 72, dword10);
    return in;
}

TEST_F(BenchControlTest, TheRaidDriverAnswersOnItsPort) {
    ASSERT_EQ(ask("PhysicalDrive5", IOCTL_SCSI_GET_ADDRESS, {}, 8), 0U);
    EXPECT_EQ(out_[4], 2);
    ASSERT_EQ(ask("Scsi2:", IOCTL_SCSI_MINIPORT, raidRequest(6, 0, 1), 4260), 0U);
    EXPECT_EQ(std::string(out_.begin() + 164 + 24, out_.begin() + 164 + 29), "Cache");
    ASSERT_EQ(ask("Scsi2:", IOCTL_SCSI_MINIPORT, raidRequest(2, 0xFFFFFFFF, 0x007F0002), 4260), 0U);
    EXPECT_EQ(loadLe64(out_, 164 + 160), 2U);
    Buffer wrong = raidRequest(6, 0, 1);
    wrong[4] = 'X';
    EXPECT_EQ(ask("Scsi2:", IOCTL_SCSI_MINIPORT, wrong, 4260), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    EXPECT_EQ(ask("Scsi0:", IOCTL_SCSI_MINIPORT, raidRequest(6, 0, 1), 4260),
              static_cast<DWORD>(ERROR_INVALID_FUNCTION));
}

TEST_F(BenchControlTest, TheUsbBridgeTakesACommandAndGivesItsData) {
    Buffer send = passThrough({0xA1, 0x80, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, SCSI_IOCTL_DATA_OUT, 512);
    std::memcpy(send.data() + 80, "NVME", 4);
    send[80 + 8] = 6;
    send[80 + 48] = 1;
    ASSERT_EQ(ask("PhysicalDrive6", IOCTL_SCSI_PASS_THROUGH, send, send.size()), 0U);
    EXPECT_EQ(out_[2], 0);
    const Buffer receive = passThrough({0xA1, 0x82, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0}, SCSI_IOCTL_DATA_IN, 4096);
    ASSERT_EQ(ask("PhysicalDrive6", IOCTL_SCSI_PASS_THROUGH, receive, receive.size()), 0U);
    EXPECT_EQ(out_[2], 0);
    EXPECT_EQ(std::string(out_.begin() + 80 + 24, out_.begin() + 80 + 30), "Pocket");
}

TEST_F(BenchControlTest, TheShortLayoutIsTakenUnlessTheDriveIsStrict) {
    // SCSI_PASS_THROUGH as 32-bit programs have it: 44 bytes, offsets of 32 bits.
    Buffer in(44 + 36);
    storeLe<std::uint16_t>(in, 0, 44);
    in[6] = 6;
    in[8] = SCSI_IOCTL_DATA_IN;
    storeLe<std::uint32_t>(in, 12, 36);
    storeLe<std::uint32_t>(in, 20, 44);
    in[28] = 0x12;
    in[32] = 36;
    ASSERT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH, in, in.size()), 0U);
    EXPECT_EQ(std::string(out_.begin() + 44 + 8, out_.begin() + 44 + 11), "ATA");
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_SCSI_PASS_THROUGH_DIRECT, in, in.size()),
              static_cast<DWORD>(ERROR_REVISION_MISMATCH));
    EXPECT_EQ(ask("PhysicalDrive8", IOCTL_SCSI_PASS_THROUGH, in, in.size()),
              static_cast<DWORD>(ERROR_REVISION_MISMATCH));
}

TEST_F(BenchControlTest, AVolumeTellsItsExtents) {
    ASSERT_EQ(ask("C:", IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, {}, 4096), 0U);
    EXPECT_EQ(count_, 8U + 2 * 24);
    EXPECT_EQ(loadLe32(out_, 0), 2U);
    EXPECT_EQ(loadLe32(out_, 8), 0U);
    EXPECT_EQ(loadLe64(out_, 16), 1048576U);
    EXPECT_EQ(loadLe64(out_, 24), 4194304U);
    EXPECT_EQ(loadLe32(out_, 32), 3U);
    EXPECT_EQ(ask("C:", IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, {}, 32), static_cast<DWORD>(ERROR_MORE_DATA));
    EXPECT_EQ(loadLe32(out_, 0), 2U);
    EXPECT_EQ(ask("K:", IOCTL_VOLUME_GET_VOLUME_DISK_EXTENTS, {}, 4096), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
}

TEST_F(BenchControlTest, VolumesTellLabelSerialAndSpace) {
    std::array<char, 64> label{};
    std::array<char, 16> system{};
    DWORD serial = 0;
    ASSERT_NE(GetVolumeInformationA("C:\\", label.data(), label.size(), &serial, nullptr, nullptr, system.data(),
                                    system.size()),
              0);
    EXPECT_STREQ(label.data(), "SYSTEM");
    EXPECT_STREQ(system.data(), "NTFS");
    EXPECT_EQ(serial, 0x1A2B3C4DU);
    DWORD perCluster = 0;
    DWORD perSector = 0;
    DWORD free = 0;
    ASSERT_NE(GetDiskFreeSpaceA("C:", &perCluster, &perSector, &free, nullptr), 0);
    EXPECT_EQ(std::uint64_t{perCluster} * perSector * free, 10ULL << 30);
    EXPECT_EQ(GetDriveTypeA("K:\\"), static_cast<UINT>(DRIVE_CDROM));
}

TEST_F(BenchControlTest, UnknownRequestsAreRefusedAndLogged) {
    EXPECT_EQ(ask("PhysicalDrive0", 0x0007C123, {1, 2, 0xAB}, 16), static_cast<DWORD>(ERROR_INVALID_FUNCTION));
    EXPECT_EQ(
        bench().logLines({"request=ioctl:0x0007c123 in=3 out=16 data=0102ab result=ERROR_INVALID_FUNCTION"}).size(),
        1U);
}

TEST_F(BenchControlTest, RequestsFailAsDescribed) {
    openBench("{}", {{"0.json", R"({"number": 0, "bus": "sata", "size": "1 MiB", "road": "ata", "faults": {"requests": [
        {"request": "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX", "error": 31, "times": 1},
        {"request": "StorageAdapterProperty"},
        {"request": "IDENTIFY_DEVICE", "error": "ERROR_SEM_TIMEOUT"}]}})"},
                     {"3.json", kNvme},
                     {"5.json", kRaid},
                     {"6.json", kBridge},
                     {"7.json", kHostile}});
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, 33), static_cast<DWORD>(ERROR_GEN_FAILURE));
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_DISK_GET_DRIVE_GEOMETRY_EX, {}, 33), 0U);
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(0), 551), 0U);
    EXPECT_EQ(ask("PhysicalDrive0", IOCTL_STORAGE_QUERY_PROPERTY, propertyQuery(1), 540),
              static_cast<DWORD>(ERROR_IO_DEVICE));
    EXPECT_EQ(ask("PhysicalDrive0", SMART_RCV_DRIVE_DATA, identifyRequest(), 528),
              static_cast<DWORD>(ERROR_SEM_TIMEOUT));
}

} // namespace
} // namespace torvane::testing
