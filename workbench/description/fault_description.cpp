#include "workbench/description/fault_description.h"

#include "workbench/description/description_parts.h"
#include "workbench/description/error_names.h"

#include <algorithm>
#include <array>
#include <utility>

namespace torvane::bench {
namespace {

constexpr std::array<std::string_view, 21> kRequestNames = {
    "IOCTL_DISK_GET_DISK_ATTRIBUTES",
    "IOCTL_DISK_GET_DRIVE_GEOMETRY",
    "IOCTL_DISK_GET_DRIVE_GEOMETRY_EX",
    "IOCTL_DISK_GET_DRIVE_LAYOUT_EX",
    "IOCTL_DISK_GET_LENGTH_INFO",
    "IOCTL_DISK_UPDATE_PROPERTIES",
    "IOCTL_STORAGE_CHECK_VERIFY",
    "IOCTL_STORAGE_GET_DEVICE_NUMBER",
    "IOCTL_STORAGE_QUERY_PROPERTY",
    "IOCTL_SCSI_GET_ADDRESS",
    "IOCTL_SCSI_MINIPORT",
    "IOCTL_SCSI_PASS_THROUGH",
    "IOCTL_SCSI_PASS_THROUGH_DIRECT",
    "IOCTL_ATA_PASS_THROUGH",
    "SMART_GET_VERSION",
    "SMART_SEND_DRIVE_COMMAND",
    "SMART_RCV_DRIVE_DATA",
    "StorageDeviceProperty",
    "StorageAdapterProperty",
    "StorageAdapterProtocolSpecificProperty",
    "StorageDeviceProtocolSpecificProperty",
};
constexpr std::string_view kIdentify = "IDENTIFY_DEVICE";

void readOccurrence(ObjectReader& reader, Occurrence& occurrence) {
    reader.number("after", occurrence.after);
    reader.number("times", occurrence.times, 1);
}

RequestFault readRequestFault(ObjectReader& reader) {
    RequestFault fault;
    fault.error = kErrorIoDevice;
    reader.require("request");
    reader.text("request", fault.request);
    reader.error("error", fault.error);
    readOccurrence(reader, fault.occurrence);
    if (reader.has("request") && !isKnownRequestName(fault.request)) {
        reader.fail("request", "no request of this name: \"" + fault.request + "\"");
    }
    return fault;
}

// `amountKey`: the field that says what happens to a transfer in the range, empty where nothing is left to say;
// `amount` is its value when absent.
RangeFault readRangeFault(ObjectReader& reader, const DriveDescription& drive, const std::string& amountKey,
                          std::uint32_t amount) {
    RangeFault fault;
    fault.amount = amount;
    reader.require("firstSector");
    reader.number("firstSector", fault.firstSector);
    reader.number("sectors", fault.sectors, 1);
    if (amountKey == "error") {
        reader.error(amountKey, fault.amount);
    } else if (!amountKey.empty()) {
        reader.require(amountKey);
        reader.number(amountKey, fault.amount);
    }
    if (amountKey != "milliseconds") {
        readOccurrence(reader, fault.occurrence);
    }
    const std::uint64_t last = drive.size / drive.sectorSize;
    if (fault.firstSector >= last || fault.sectors > last - fault.firstSector) {
        reader.fail("firstSector", "the range reaches past the drive's " + std::to_string(last) + " sectors");
    }
    return fault;
}

void readFailingRequest(ObjectReader& reader, const std::string& key, std::optional<FailingRequest>& fault) {
    if (!reader.has(key)) {
        return;
    }
    FailingRequest request;
    const Json* value = reader.raw(key);
    if (value->is_object()) {
        reader.object(key, [&](ObjectReader& object) {
            object.require("error");
            object.error("error", request.error);
            readOccurrence(object, request.occurrence);
        });
    } else {
        reader.error(key, request.error);
    }
    fault = request;
}

void readClean(ObjectReader& reader, DriveFaults& faults) {
    static constexpr std::array<std::string_view, 3> kNames = {"done", "refused", "pretended"};
    auto index = static_cast<std::size_t>(CleanFault::kNone);
    reader.choice("clean", kNames, index);
    faults.clean = static_cast<CleanFault>(index);
}

void readSilence(ObjectReader& reader, DriveFaults& faults) {
    reader.object("stopsAnswering", [&](ObjectReader& object) {
        SilenceFault silence;
        silence.error = kErrorSemTimeout;
        object.number("afterRequests", silence.afterRequests);
        object.number("milliseconds", silence.milliseconds);
        object.error("error", silence.error);
        faults.stopsAnswering = silence;
    });
}

} // namespace

bool isKnownRequestName(const std::string& name) {
    return name == kIdentify || name.starts_with("ioctl:0x") ||
           std::find(kRequestNames.begin(), kRequestNames.end(), name) != kRequestNames.end();
}

void readFaults(ObjectReader& reader, const DriveDescription& drive, DriveFaults& faults) {
    readFailingRequest(reader, "open", faults.open);
    readFailingRequest(reader, "flush", faults.flush);
    reader.list("requests", [&](ObjectReader& item) { faults.requests.push_back(readRequestFault(item)); });
    reader.list("reads",
                [&](ObjectReader& item) { faults.reads.push_back(readRangeFault(item, drive, "error", kErrorCrc)); });
    reader.list("shortReads",
                [&](ObjectReader& item) { faults.shortReads.push_back(readRangeFault(item, drive, "bytes", 0)); });
    reader.list("writes", [&](ObjectReader& item) {
        faults.writes.push_back(readRangeFault(item, drive, "error", kErrorIoDevice));
    });
    reader.list("corruptWrites",
                [&](ObjectReader& item) { faults.corruptWrites.push_back(readRangeFault(item, drive, "", 0)); });
    reader.list("seeks",
                [&](ObjectReader& item) { faults.seeks.push_back(readRangeFault(item, drive, "error", kErrorSeek)); });
    reader.list("slow",
                [&](ObjectReader& item) { faults.slow.push_back(readRangeFault(item, drive, "milliseconds", 0)); });
    readSilence(reader, faults);
    reader.number("vanishAfterRequests", faults.vanishAfterRequests);
    reader.boolean("volatileCache", faults.volatileCache);
    readClean(reader, faults);
    reader.number("rescanAfterWrites", faults.rescanAfterWrites);
}

} // namespace torvane::bench
