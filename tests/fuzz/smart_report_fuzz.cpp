#include "monitoring/smart_report.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <set>
#include <string>
#include <vector>

// A monitoring report: any bytes.

using namespace torvane;
using fuzz::require;

namespace {

bool isFlag(std::int32_t value) {
    return value == 0 || value == 1;
}

void requireSound(const DriveRecord& record, const std::vector<AttributeFinding>& findings) {
    require(findings.size() < kCounterCount, "one finding for each counter but the hours");
    require(record.smartErrorFlag == (findings.empty() ? kSmartNoErrors : kSmartErrorsFound), "the flag tells errors");
    for (const AttributeFinding& finding : findings) {
        require(finding.value != 0, "zero is no finding");
    }
    require(isFlag(record.securityEnabled), "security is a flag");
    require(record.uncLbaCount >= 0 && record.uncLbaCount <= 50, "the list has room for fifty");
    const auto* const begin = record.uncLbas.data();
    const std::set<std::int64_t> distinct(begin, begin + record.uncLbaCount);
    require(distinct.size() == static_cast<std::size_t>(record.uncLbaCount), "no LBA is listed twice");
    require(record.smartType != kSmartTypeSsd || record.busCode == kBusCodeOwnText,
            "a solid-state bus has its own text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    DriveRecord record;
    record.busCode = input.ConsumeIntegralInRange<std::int32_t>(kBusCodeUsb, kBusCodeOwnText);
    record.smartText = input.ConsumeRemainingBytesAsString();
    std::vector<AttributeFinding> findings;
    if (parseSmartReport(record, findings) == 1) {
        requireSound(record, findings);
    } else {
        require(record.smartType == kSmartTypeNone && record.smartLoaded == 0, "a failed read leaves no SMART data");
    }
    const bool solidState = SmartIsSolidStateDevice(record) == 1;
    require((SmartParseSsdCounters(record) == 1) == solidState, "the second pass is for solid-state devices");
    require(!solidState || record.smartType == kSmartTypeSsd, "the second pass sets the type");
    return 0;
}
