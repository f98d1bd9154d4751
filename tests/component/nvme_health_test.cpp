#include "monitoring/nvme_health.h"

#include "base/bytes.h"
#include "discovery/nvme_storage_query.h"
#include "monitoring/nvme_raid_driver.h"
#include "monitoring/nvme_usb_bridge.h"
#include "records/drive_record.h"
#include "state/app_state.h"
#include "tests/component/import_patched.h"
#include "tests/component/test_bench.h"
#include "tests/support/recording_main_view.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// The import slot of the function whose arguments matter. NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
extern decltype(&DeviceIoControl) __imp_DeviceIoControl;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace torvane {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Bytes = std::vector<std::uint8_t>;

/// One control request: its code and what its input held.
using Request = std::pair<std::uint32_t, Bytes>;

std::vector<Request> requests;
decltype(&DeviceIoControl) sendToBench;

/// Answers in the bench's stead where it is set: true, false, or the bench's own answer.
enum class Answer { kBench, kSuccess, kFailure };
Answer (*answerInstead)(std::uint32_t code, const Bytes& input, std::uint8_t* output, DWORD size, DWORD* returned);

BOOL WINAPI watchedControl(HANDLE device, DWORD code, LPVOID input, DWORD inputSize, LPVOID output, DWORD outputSize,
                           LPDWORD returned, LPOVERLAPPED overlapped) {
    const auto* const bytes = static_cast<const std::uint8_t*>(input);
    requests.emplace_back(code, bytes == nullptr ? Bytes() : Bytes(bytes, bytes + inputSize));
    const Answer answer =
        answerInstead == nullptr
            ? Answer::kBench
            : answerInstead(code, requests.back().second, static_cast<std::uint8_t*>(output), outputSize, returned);
    if (answer == Answer::kBench) {
        return sendToBench(device, code, input, inputSize, output, outputSize, returned, overlapped);
    }
    return answer == Answer::kSuccess ? TRUE : FALSE;
}

std::string driveJson(const std::string& bus, const std::string& transport, const std::string& nvme) {
    return R"({"number": 2, "bus": ")" + bus + R"(", "size": "64 MiB", "scsiPort": 7, "road": )" + transport +
           R"(, "identity": {"product": "Probed product", "serial": "Probed"},
              "nvme": {"model": "Controller Model", "serial": "CS-1", "health": {"criticalWarning": 5,
              "availableSpare": 3, "availableSpareThreshold": 10, "percentageUsed": 101, "dataUnitsRead": 11,
              "dataUnitsWritten": 2000000, "powerOnHours": 45000, "mediaErrors": 17})" +
           nvme + "}}";
}

class NvmeTransports : public ::testing::Test {
  protected:
    void putOnBench(const std::string& bus, const std::string& transport, const std::string& nvme = "") {
        bench_.addDrive(driveJson(bus, transport, nvme));
        bench_.open();
    }

    /// A bridge that takes the short structure, as no Windows does.
    void putOnLenientBridge(const std::string& nvme = "") {
        std::string drive = driveJson("usb", R"("usb-bridge")", nvme);
        drive.insert(1, R"("strictPassThrough": false, )");
        bench_.addDrive(drive);
        bench_.open();
    }

    /// A record as the probe leaves it, after its health was read.
    int read(std::int32_t busCode, int driveNumber = 2) {
        record_ = std::make_unique<DriveRecord>();
        record_->busCode = busCode;
        record_->driveNumber = driveNumber;
        record_->smartType = kSmartTypeStandard;
        record_->model.assign("Probed product");
        record_->serialNumber.assign("Probed");
        record_->busText.assign("probed bus");
        record_->nvme.powerOnHours = 77;
        requests.clear();
        const testing::ImportPatched watched(__imp_DeviceIoControl, &watchedControl);
        sendToBench = watched.original();
        return ReadNvmeHealth(*record_);
    }

    void TearDown() override {
        answerInstead = nullptr;
        EXPECT_THAT(view_.logRows(), IsEmpty()) << "no transport logs anything, whether it succeeds or fails";
    }

    void expectHealth() const {
        EXPECT_EQ(record_->nvme.criticalWarning, 5);
        EXPECT_EQ(record_->nvme.availableSpare, 3);
        EXPECT_EQ(record_->nvme.availableSpareThreshold, 10);
        EXPECT_EQ(record_->nvme.percentageUsed, 101);
        EXPECT_EQ(record_->nvme.dataUnitsRead, 11);
        EXPECT_EQ(record_->nvme.dataUnitsWritten, 2'000'000);
        EXPECT_EQ(record_->nvme.powerOnHours, 45'000);
        EXPECT_EQ(record_->nvme.errorLogEntries, 17);
        EXPECT_EQ(record_->nvme.gigabytesWritten, 953U);
        EXPECT_EQ(record_->smartType, kSmartTypeNvme);
    }
    void expectProbedTexts() const {
        EXPECT_EQ(record_->model.view(), "Probed product");
        EXPECT_EQ(record_->serialNumber.view(), "Probed");
        EXPECT_EQ(record_->busText.view(), "probed bus");
    }
    void expectNothingRead(std::int32_t busCode) const {
        EXPECT_EQ(record_->nvme.criticalWarning, -1);
        EXPECT_EQ(record_->nvme.availableSpare, -1);
        EXPECT_EQ(record_->nvme.powerOnHours, -1);
        EXPECT_EQ(record_->nvme.dataUnitsWritten, -1);
        EXPECT_EQ(record_->nvme.enduranceFraction, -1.0);
        EXPECT_EQ(record_->smartType, kSmartTypeStandard);
        EXPECT_EQ(record_->busCode, busCode);
        expectProbedTexts();
    }

    testing::TestBench bench_;
    testing::RecordingMainView view_;
    testing::ViewInstalled installed_{appState(), view_};
    std::unique_ptr<DriveRecord> record_;
};

template <typename Container>
Request sent(std::uint32_t code, const Container& bytes) {
    return {code, Bytes(bytes.begin(), bytes.end())};
}

// --- Storage query

TEST_F(NvmeTransports, TheStorageQueryReadsAnNvmeDrive) {
    putOnBench("nvme", R"("nvme-query")");
    EXPECT_EQ(read(kBusCodeNvme), 1);
    expectHealth();
    expectProbedTexts();
    EXPECT_EQ(record_->busCode, kBusCodeNvme);
    EXPECT_THAT(requests, ElementsAre(sent(0x002D1400, storageQueryIdentifyRequest()),
                                      sent(0x002D1400, storageQueryHealthRequest(0))));
    EXPECT_THAT(bench_.log("request=open"), ElementsAre(AllOf(HasSubstr("target=drive:2"), HasSubstr("access=rw"))));
}

TEST_F(NvmeTransports, AHealthQueryThatFailsIsRepeatedOnceForAllNamespaces) {
    putOnBench("nvme", R"("nvme-query")", R"(, "healthOnlyForAllNamespaces": true)");
    EXPECT_EQ(read(kBusCodeNvme), 1);
    expectHealth();
    EXPECT_THAT(requests, ElementsAre(sent(0x002D1400, storageQueryIdentifyRequest()),
                                      sent(0x002D1400, storageQueryHealthRequest(0)),
                                      sent(0x002D1400, storageQueryHealthRequest(0xFFFFFFFF))));
}

TEST_F(NvmeTransports, TheStorageQueryFailsWithItsHealthLog) {
    putOnBench("nvme", R"("nvme-query")", R"(, "healthFails": true)");
    EXPECT_EQ(read(kBusCodeNvme), 0);
    expectNothingRead(kBusCodeNvme);
    EXPECT_EQ(requests.size(), 3U) << "repeated once, not more";
}

TEST_F(NvmeTransports, WhatIsPrintedOnTheDriveIsKept) {
    for (const char* const more : {"", R"(, "healthFails": true)"}) {
        testing::TestBench bench;
        bench.addDrive(driveJson("nvme", R"("nvme-query")", std::string(R"(, "firmware": "FW7")") + more));
        bench.open();
        static_cast<void>(read(kBusCodeNvme));
        expectProbedTexts();
        EXPECT_EQ(record_->printed.serialNumber, "CS-1") << more;
        EXPECT_EQ(record_->printed.model, "Controller Model") << more;
        EXPECT_EQ(record_->printed.firmware, "FW7") << more;
    }
    for (const auto& [bus, transport, busCode] : {std::tuple{"raid", R"("raid-miniport")", kBusCodeDirect},
                                                  std::tuple{"usb", R"("usb-bridge")", kBusCodeUsb}}) {
        testing::TestBench bench;
        bench.addDrive(driveJson(bus, transport, ""));
        bench.open();
        EXPECT_EQ(read(busCode), 1);
        EXPECT_EQ(record_->printed.serialNumber, "CS-1") << transport;
        EXPECT_EQ(record_->printed.model, "Controller Model") << transport;
    }
}

TEST_F(NvmeTransports, TheStorageQueryFailsWithItsIdentity) {
    putOnBench("nvme", R"("nvme-query")", R"(, "identifyFails": true)");
    EXPECT_EQ(read(kBusCodeNvme), 0);
    expectNothingRead(kBusCodeNvme);
    EXPECT_EQ(requests.size(), 1U);
}

// --- RAID driver

TEST_F(NvmeTransports, TheRaidDriverIsAskedBeforeTheStorageQuery) {
    putOnBench("raid", R"(["raid-miniport", "nvme-query"])");
    EXPECT_EQ(read(kBusCodeDirect), 1);
    expectHealth();
    EXPECT_EQ(record_->model.view(), "Controller Model");
    EXPECT_EQ(record_->serialNumber.view(), "CS-1");
    EXPECT_EQ(record_->busText.view(), "Intel RST NVME");
    EXPECT_EQ(record_->busCode, kBusCodeOwnText);
    EXPECT_THAT(requests, ElementsAre(Request{0x00041018, {}}, sent(0x0004D008, raidRequest(0, kRaidIdentifyNamespace)),
                                      sent(0x0004D008, raidRequest(0, kRaidIdentifyController)),
                                      sent(0x0004D008, raidRequest(0, kRaidGetHealthLog))));
    EXPECT_THAT(bench_.log("request=open"),
                ElementsAre(HasSubstr("target=drive:2"), AllOf(HasSubstr("target=scsi:7"), HasSubstr("access=rw"))));
}

TEST_F(NvmeTransports, TheRaidDriversPathIsThatOfTheDrivesAddress) {
    putOnBench("raid", R"("raid-miniport")");
    answerInstead = [](std::uint32_t code, const Bytes&, std::uint8_t* output, DWORD size, DWORD* returned) {
        if (code != 0x00041018) {
            return Answer::kBench;
        }
        const Bytes address{8, 0, 0, 0, 7, 3, 1, 2}; // length, port, path, target, lun
        EXPECT_EQ(size, address.size());
        std::copy(address.begin(), address.end(), output);
        *returned = static_cast<DWORD>(address.size());
        return Answer::kSuccess;
    };
    EXPECT_EQ(read(kBusCodeDirect), 1);
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[3], sent(0x0004D008, raidRequest(3, kRaidGetHealthLog)));
}

TEST_F(NvmeTransports, WithoutTheRaidDriverTheStorageQueryIsAsked) {
    putOnBench("raid", R"("nvme-query")");
    EXPECT_EQ(read(kBusCodeDirect), 1);
    expectHealth();
    expectProbedTexts();
    EXPECT_EQ(record_->busCode, kBusCodeDirect);
}

TEST_F(NvmeTransports, TheRaidDriverFailsWithAnyOfItsRequests) {
    putOnBench("raid", R"("raid-miniport")");
    for (const std::size_t failing : {0U, 1U, 2U, 3U}) {
        static std::size_t number;
        static std::size_t failingNumber;
        number = 0;
        failingNumber = failing;
        answerInstead = [](std::uint32_t, const Bytes&, std::uint8_t*, DWORD, DWORD*) {
            return number++ == failingNumber ? Answer::kFailure : Answer::kBench;
        };
        EXPECT_EQ(read(kBusCodeDirect), 0) << failing;
        expectNothingRead(kBusCodeDirect);
    }
}

/// Fails the requests of these numbers, counted from 0; the bench answers the others.
std::vector<std::size_t> failingRequests;
Answer failChosenRequests(std::uint32_t, const Bytes&, std::uint8_t*, DWORD, DWORD*) {
    const bool fails = std::ranges::find(failingRequests, requests.size() - 1) != failingRequests.end();
    return fails ? Answer::kFailure : Answer::kBench;
}

TEST_F(NvmeTransports, WhateverTheRaidDriverFailsWithTheStorageQueryIsAsked) {
    putOnBench("raid", R"(["raid-miniport", "nvme-query"])");
    answerInstead = failChosenRequests;
    for (const std::size_t failing : {0U, 1U, 2U, 3U}) {
        failingRequests = {failing};
        EXPECT_EQ(read(kBusCodeDirect), 1) << failing;
        expectHealth();
        expectProbedTexts();
        EXPECT_EQ(record_->busCode, kBusCodeDirect);
        ASSERT_EQ(requests.size(), failing + 3) << "nothing more of the RAID driver, then the query";
        EXPECT_EQ(requests[failing + 1], sent(0x002D1400, storageQueryIdentifyRequest()));
        EXPECT_EQ(requests[failing + 2], sent(0x002D1400, storageQueryHealthRequest(0)));
    }
}

TEST_F(NvmeTransports, ADriverThatLeavesTheRequestAsItWasHasNoNvmeDrive) {
    bench_.addDrive(R"({"number": 2, "bus": "sata", "size": "64 MiB", "road": "ata", "miniportIgnores": true,
                        "identity": {"product": "Probed product", "serial": "Probed"}})");
    bench_.open();
    EXPECT_EQ(read(kBusCodeDirect), 0);
    expectNothingRead(kBusCodeDirect);
    EXPECT_THAT(bench_.log("target=scsi:2 request=IOCTL_SCSI_MINIPORT"),
                ElementsAre(HasSubstr("result=ok bytes=4260"), HasSubstr("result=ok bytes=4260")))
        << "the health log is not asked for";
}

TEST_F(NvmeTransports, BehindADriverThatLeavesTheRequestAsItWasTheStorageQueryIsAsked) {
    bench_.addDrive(R"({"number": 2, "bus": "raid", "size": "64 MiB", "road": "nvme-query", "miniportIgnores": true,
                        "nvme": {"model": "Controller Model", "serial": "CS-1", "health": {"powerOnHours": 45000}}})");
    bench_.open();
    EXPECT_EQ(read(kBusCodeDirect), 1);
    EXPECT_EQ(record_->nvme.powerOnHours, 45'000);
    expectProbedTexts();
    EXPECT_EQ(record_->busCode, kBusCodeDirect);
}

TEST_F(NvmeTransports, WhenBothTransportsOfADirectDriveFailNothingIsRead) {
    putOnBench("raid", R"(["raid-miniport", "nvme-query"])");
    answerInstead = failChosenRequests;
    for (const std::size_t failing : {0U, 1U, 2U, 3U}) {
        failingRequests = {failing, failing + 1}; // the query's identity
        EXPECT_EQ(read(kBusCodeDirect), 0) << failing;
        expectNothingRead(kBusCodeDirect);
        EXPECT_EQ(requests.size(), failing + 2);
        failingRequests = {failing, failing + 2, failing + 3}; // the query's health log, both times
        EXPECT_EQ(read(kBusCodeDirect), 0) << failing;
        expectNothingRead(kBusCodeDirect);
        EXPECT_EQ(requests.size(), failing + 4);
        failingRequests = {failing, failing + 2}; // the log of the first sub-value alone
        EXPECT_EQ(read(kBusCodeDirect), 1) << failing;
        expectHealth();
    }
}

// --- USB bridge

TEST_F(NvmeTransports, TheUsbBridgeReadsAnNvmeDriveBehindUsb) {
    putOnLenientBridge();
    EXPECT_EQ(read(kBusCodeUsb), 1);
    expectHealth();
    EXPECT_EQ(record_->model.view(), "Controller Model");
    EXPECT_EQ(record_->serialNumber.view(), "CS-1");
    EXPECT_EQ(record_->busText.view(), "JMicron USB NVME");
    EXPECT_EQ(record_->busCode, kBusCodeOwnText);
    constexpr auto kShort = PassThroughLayout::kShort;
    EXPECT_THAT(requests, ElementsAre(sent(0x0004D004, bridgeSendRequest(kShort, bridgeIdentifyBlock())),
                                      sent(0x0004D004, bridgeReceiveRequest(kShort, 4096)),
                                      sent(0x0004D004, bridgeSendRequest(kShort, bridgeHealthBlock())),
                                      sent(0x0004D004, bridgeReceiveRequest(kShort, 512))));
    // Length 44, CDB of 12 bytes, 24 bytes of sense data, data out and in: as it reached the device.
    const std::vector<std::string> seen = bench_.log("request=IOCTL_SCSI_PASS_THROUGH");
    ASSERT_EQ(seen.size(), 4U);
    EXPECT_THAT(seen[0], HasSubstr("data=2c000000"
                                   "00000c18"
                                   "00000000"
                                   "00020000"
                                   "02000000"
                                   "44000000"
                                   "2c000000"
                                   "a1800000"
                                   "02000000"));
    EXPECT_THAT(seen[1], HasSubstr("data=2c000000"
                                   "00000c18"
                                   "01000000"
                                   "00100000"
                                   "02000000"
                                   "44000000"
                                   "2c000000"
                                   "a1820000"
                                   "02000000"));
}

TEST_F(NvmeTransports, ABridgeThatEchoesTheRequestHasNoNvmeDrive) {
    putOnLenientBridge(R"(, "bridgeEchoes": true)");
    EXPECT_EQ(read(kBusCodeUsb), 0);
    expectNothingRead(kBusCodeUsb);
    EXPECT_EQ(requests.size(), 2U) << "the health log is not asked for";
}

TEST_F(NvmeTransports, ABridgeThatAnswersZerosHasNoNvmeDrive) {
    putOnBench("usb", R"("usb-bridge")");
    answerInstead = [](std::uint32_t, const Bytes& input, std::uint8_t*, DWORD size, DWORD* returned) {
        EXPECT_EQ(input.size(), size) << "one buffer for both";
        *returned = size;
        return Answer::kSuccess;
    };
    // Behind the send's answer the request's own bytes still stand in the buffer: its status reads as good.
    EXPECT_EQ(read(kBusCodeUsb), 0);
    expectNothingRead(kBusCodeUsb);
    EXPECT_EQ(requests.size(), 2U);
}

TEST_F(NvmeTransports, ABridgeWhoseHealthLogIsAllZerosHasNoNvmeDrive) {
    putOnLenientBridge();
    answerInstead = [](std::uint32_t, const Bytes&, std::uint8_t*, DWORD size, DWORD* returned) {
        if (requests.size() != 4) {
            return Answer::kBench;
        }
        *returned = size; // the buffer keeps what the request had in it: zeros, and a status that reads as good
        return Answer::kSuccess;
    };
    EXPECT_EQ(read(kBusCodeUsb), 0);
    expectNothingRead(kBusCodeUsb);
    EXPECT_EQ(requests.size(), 4U) << "its identity was a good one";
}

TEST_F(NvmeTransports, AUsbDriveWithoutTheBridgesCommandsIsLeftAlone) {
    for (const char* const transport : {R"("sat")", R"("scsi")", R"("none")"}) {
        testing::TestBench bench;
        bench.addDrive(driveJson("usb", transport, ""));
        bench.open();
        EXPECT_EQ(read(kBusCodeUsb), 0) << transport;
        expectNothingRead(kBusCodeUsb);
    }
}

TEST_F(NvmeTransports, ASystemThatWantsTheLongStructureGetsIt) {
    putOnBench("usb", R"("usb-bridge")");
    EXPECT_EQ(read(kBusCodeUsb), 1);
    expectHealth();
    EXPECT_THAT(bench_.log("result=ERROR_REVISION_MISMATCH"), SizeIs(1)) << "asked once in the short one";
    constexpr auto kLong = PassThroughLayout::kLong;
    EXPECT_THAT(requests,
                ElementsAre(sent(0x0004D004, bridgeSendRequest(PassThroughLayout::kShort, bridgeIdentifyBlock())),
                            sent(0x0004D004, bridgeSendRequest(kLong, bridgeIdentifyBlock())),
                            sent(0x0004D004, bridgeReceiveRequest(kLong, 4096)),
                            sent(0x0004D004, bridgeSendRequest(kLong, bridgeHealthBlock())),
                            sent(0x0004D004, bridgeReceiveRequest(kLong, 512))));
}

TEST_F(NvmeTransports, WithWhateverErrorTheShortStructureIsRefusedTheLongOneIsSent) {
    putOnBench("usb", R"("usb-bridge")");
    for (const DWORD error : {ERROR_INVALID_PARAMETER, ERROR_INVALID_FUNCTION, ERROR_IO_DEVICE, ERROR_SEM_TIMEOUT}) {
        static DWORD refusal;
        refusal = error;
        answerInstead = [](std::uint32_t, const Bytes& input, std::uint8_t*, DWORD, DWORD*) {
            if (loadLe16(input, 0) == 56) {
                return Answer::kBench;
            }
            SetLastError(refusal);
            return Answer::kFailure;
        };
        EXPECT_EQ(read(kBusCodeUsb), 1) << error;
        expectHealth();
        EXPECT_EQ(requests.size(), 5U) << error;
    }
}

TEST_F(NvmeTransports, ABridgeThatRefusesBothStructuresIsNotAskedAgain) {
    putOnBench("usb", R"("usb-bridge")");
    answerInstead = [](std::uint32_t, const Bytes&, std::uint8_t*, DWORD, DWORD*) {
        SetLastError(ERROR_SEM_TIMEOUT);
        return Answer::kFailure;
    };
    EXPECT_EQ(read(kBusCodeUsb), 0);
    EXPECT_EQ(requests.size(), 2U);
}

// --- Logs at their limits, by every transport

/// The health log that `logInstead` gives takes the place of the bench's.
std::vector<std::uint8_t> logInstead;
Answer giveLogInstead(std::uint32_t code, const Bytes& input, std::uint8_t* output, DWORD size, DWORD* returned) {
    static bool bridgeWasSentHealth;
    std::size_t dataAt = 0;
    if (code == kIoctlStorageQueryProperty && loadLe32(input, 12) == 2) {
        dataAt = 48;
    } else if (code == kIoctlScsiMiniport && (loadLe32(input, 32) & 0xFFU) == 2) {
        dataAt = 164;
    } else if (code == kIoctlScsiPassThrough && input[8] == 0) { // data out: a command on its way
        bridgeWasSentHealth = input[loadLe16(input, 0) + 24U + 8U] == 2;
    } else if (code == kIoctlScsiPassThrough && bridgeWasSentHealth) {
        dataAt = loadLe16(input, 0) + 24U; // behind header and sense data
    }
    if (dataAt == 0) {
        return Answer::kBench;
    }
    std::copy(input.begin(), input.end(), output);
    std::copy(logInstead.begin(), logInstead.end(), output + dataAt);
    *returned = size;
    return Answer::kSuccess;
}

struct Transport {
    const char* bus;
    const char* name;
    std::int32_t busCode;
};
constexpr Transport kTransports[] = {{"nvme", R"("nvme-query")", kBusCodeNvme},
                                     {"raid", R"("raid-miniport")", kBusCodeDirect},
                                     {"usb", R"("usb-bridge")", kBusCodeUsb}};

TEST_F(NvmeTransports, OfCountersBeyond64BitsTheLowHalfIsKept) {
    logInstead.assign(512, 0);
    for (const std::size_t counter : {32U, 48U, 128U, 160U}) {
        storeLe<std::uint64_t>(logInstead, counter, 2'000'000);
        storeLe<std::uint64_t>(logInstead, counter + 8, 3);
    }
    for (const Transport& transport : kTransports) {
        testing::TestBench bench;
        bench.addDrive(driveJson(transport.bus, transport.name, ""));
        bench.open();
        answerInstead = giveLogInstead;
        EXPECT_EQ(read(transport.busCode), 1) << transport.name;
        EXPECT_EQ(record_->nvme.dataUnitsRead, 2'000'000);
        EXPECT_EQ(record_->nvme.dataUnitsWritten, 2'000'000);
        EXPECT_EQ(record_->nvme.powerOnHours, 2'000'000);
        EXPECT_EQ(record_->nvme.errorLogEntries, 2'000'000);
        EXPECT_EQ(record_->nvme.gigabytesWritten, 953U);
    }
}

TEST_F(NvmeTransports, AnAllOnesLogIsALog) {
    logInstead.assign(512, 0xFF);
    for (const Transport& transport : kTransports) {
        testing::TestBench bench;
        bench.addDrive(driveJson(transport.bus, transport.name, ""));
        bench.open();
        answerInstead = giveLogInstead;
        EXPECT_EQ(read(transport.busCode), 1) << transport.name;
        EXPECT_EQ(record_->nvme.criticalWarning, 255);
        EXPECT_EQ(record_->nvme.availableSpare, 255);
        EXPECT_EQ(record_->nvme.dataUnitsWritten, -1) << "the same as not read";
        EXPECT_EQ(record_->smartType, kSmartTypeNvme);
    }
}

TEST_F(NvmeTransports, AnAllZeroLogIsALogOfTheStorageQueryAlone) {
    logInstead.assign(512, 0);
    for (const Transport& transport : kTransports) {
        testing::TestBench bench;
        bench.addDrive(driveJson(transport.bus, transport.name, ""));
        bench.open();
        answerInstead = giveLogInstead;
        EXPECT_EQ(read(transport.busCode), transport.busCode == kBusCodeNvme ? 1 : 0) << transport.name;
        if (transport.busCode != kBusCodeNvme) {
            expectNothingRead(transport.busCode);
        } else {
            EXPECT_EQ(record_->nvme.criticalWarning, 0);
            EXPECT_EQ(record_->nvme.availableSpare, 0);
            EXPECT_EQ(record_->nvme.dataUnitsWritten, 0);
            EXPECT_EQ(record_->nvme.gigabytesWritten, 0U);
        }
    }
}

// --- All transports

TEST_F(NvmeTransports, OtherBusCodesHaveNoTransport) {
    putOnBench("nvme", R"(["nvme-query", "raid-miniport", "usb-bridge"])");
    for (const std::int32_t busCode : {2002, 2004, 0, -1}) {
        EXPECT_EQ(read(busCode), 0);
        expectNothingRead(busCode);
        EXPECT_THAT(requests, IsEmpty()) << busCode;
    }
}

TEST_F(NvmeTransports, ADriveThatCannotBeOpenedIsNotAsked) {
    putOnBench("nvme", R"(["nvme-query", "raid-miniport", "usb-bridge"])");
    for (const int number : {9, -1}) {
        for (const std::int32_t busCode : {2000, 2001, 2003}) {
            EXPECT_EQ(read(busCode, number), 0);
            expectNothingRead(busCode);
            EXPECT_THAT(requests, IsEmpty());
        }
    }
}

TEST_F(NvmeTransports, ADeviceThatAnswersTooLittleFails) {
    putOnBench("nvme", R"(["nvme-query", "raid-miniport", "usb-bridge"])");
    for (const std::int32_t busCode : {2000, 2001, 2003}) {
        answerInstead = [](std::uint32_t, const Bytes&, std::uint8_t* output, DWORD size, DWORD* returned) {
            std::fill_n(output, size, std::uint8_t{0});
            *returned = 7;
            return Answer::kSuccess;
        };
        EXPECT_EQ(read(busCode), 0);
        expectNothingRead(busCode);
    }
}

TEST_F(NvmeTransports, ADeviceThatAnswersEverythingWithGarbageDoesNoHarm) {
    putOnBench("nvme", R"(["nvme-query", "raid-miniport", "usb-bridge"])");
    for (const std::int32_t busCode : {2000, 2001, 2003}) {
        answerInstead = [](std::uint32_t code, const Bytes&, std::uint8_t* output, DWORD size, DWORD* returned) {
            std::fill_n(output, size, std::uint8_t{0xFF});
            if (code == kIoctlScsiPassThrough) {
                output[2] = 0; // status GOOD, or the transport would end here
            }
            *returned = 0xFFFFFFFF;
            return Answer::kSuccess;
        };
        // The adapter's number is garbage too: there is no such adapter, and the storage query is asked.
        EXPECT_EQ(read(busCode), 1);
        EXPECT_EQ(record_->nvme.criticalWarning, 255);
        EXPECT_EQ(record_->nvme.dataUnitsWritten, -1);
        EXPECT_LE(record_->serialNumber.view().size(), 20U);
        EXPECT_LE(record_->model.view().size(), 40U);
    }
}

TEST_F(NvmeTransports, NoHandleIsLeftOpen) {
    putOnBench("raid", R"(["raid-miniport", "nvme-query", "usb-bridge"])");
    for (const std::int32_t busCode : {2000, 2001, 2003}) {
        EXPECT_EQ(read(busCode), 1);
    }
    EXPECT_EQ(bench_.log("request=open").size(), bench_.log("request=close").size());
}

} // namespace
} // namespace torvane
