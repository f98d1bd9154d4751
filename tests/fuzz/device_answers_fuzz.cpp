#include "base/ascii.h"
#include "discovery/ata_identify.h"
#include "discovery/device_text.h"
#include "discovery/storage_descriptor.h"
#include "discovery/volume_extents.h"
#include "discovery/volume_table.h"
#include "records/drive_record.h"
#include "tests/fuzz/fuzz_input.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

// What a drive, its adapter and a volume answer to control requests: any bytes, of any length.

using namespace torvane;
using fuzz::require;

namespace {

void applyDrive(const std::vector<std::uint8_t>& answer) {
    DriveRecord record{};
    applyStorageDevice(record, parseStorageDeviceDescriptor(answer));
    require(isPrintableAscii(record.serialNumber.view()), "a serial number is printable");
    applyDiskGeometry(record, parseDiskGeometry(answer));
    const BusVersion version = parseStorageAdapterDescriptor(answer);
    require(version.major >= 0 && version.minor >= 0, "version numbers have 16 bits");
    applyAtaIdentify(record, answer);
}

void applyVolume(const std::vector<std::uint8_t>& answer) {
    VolumeTable table;
    resetVolumeTable(table);
    const std::vector<VolumeExtent> extents = parseVolumeDiskExtents(answer);
    require(extents.size() <= answer.size(), "no more extents than bytes");
    appendVolume(table, 'C', extents);
    appendVolume(table, 'D', extents);
}

void expandText(const std::string& text) {
    const std::string expanded = expandDeviceText(text);
    require(expanded.size() <= text.size(), "an expansion is never longer");
    const auto percents = [](const std::string& of) { return std::count(of.begin(), of.end(), '%'); };
    require(2 * percents(expanded) <= percents(text), "a percent sign comes from two");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    const std::string text = input.ConsumeRandomLengthString(256);
    const auto answer = input.ConsumeRemainingBytes<std::uint8_t>();
    applyDrive(answer);
    applyVolume(answer);
    expandText(text);
    return 0;
}
