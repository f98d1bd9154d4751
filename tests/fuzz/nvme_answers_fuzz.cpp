#include "discovery/nvme_storage_query.h"
#include "monitoring/health_log.h"
#include "monitoring/nvme_raid_driver.h"
#include "monitoring/nvme_usb_bridge.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <optional>
#include <vector>

// What a driver or a USB bridge answers to the NVMe requests: any bytes, of any length.

using namespace torvane;
using fuzz::require;

namespace {

bool isByte(std::int32_t value) {
    return value >= 0 && value <= 255;
}

void copyHealth(ByteView log) {
    DriveRecord record;
    markNvmeHealthUnread(record);
    CopyHealthLog(record, log);
    const NvmeHealth& health = record.nvme;
    require(isByte(health.criticalWarning) && isByte(health.availableSpare) && isByte(health.availableSpareThreshold) &&
                isByte(health.percentageUsed),
            "these are single bytes");
    require(health.gigabytesWritten <= UINT64_MAX >> 30U, "gigabytes are bytes shifted");
    require(health.enduranceFraction >= 0.0, "endurance is never negative");
}

void copyIdentity(ByteView identify) {
    DriveRecord record;
    copyControllerIdentity(record, identify);
    require(record.serialNumber.view().size() <= 20, "a serial number has 20 characters");
    require(record.model.view().size() <= 40, "a model has 40 characters");
}

void take(std::optional<ByteView> data, std::size_t length) {
    if (!data) {
        return;
    }
    require(data->size() == length, "a reply's data is as long as asked for");
    copyHealth(*data);
    copyIdentity(*data);
    require(!isBridgeIdentifyData(*data) || isBridgeHealthData(*data), "an identity is not all zeros");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    const auto fill = input.ConsumeIntegralInRange<std::size_t>(0, 4300);
    std::vector<std::uint8_t> reply = input.ConsumeRemainingBytes<std::uint8_t>();
    copyHealth(reply);
    copyIdentity(reply);
    reply.resize(reply.size() + fill); // long replies without long inputs
    reply.shrink_to_fit();
    for (const std::size_t length : {kNvmeHealthLogSize, kNvmeIdentifySize}) {
        take(storageQueryData(reply, length), length);
        take(raidData(reply, length), length);
        take(bridgeData(PassThroughLayout::kShort, reply, length), length);
        take(bridgeData(PassThroughLayout::kLong, reply, length), length);
    }
    return 0;
}
