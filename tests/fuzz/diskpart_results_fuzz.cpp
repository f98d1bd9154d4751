#include "admin/disk_part_results.h"
#include "tests/fuzz/fuzz_input.h"

#include <cstddef>
#include <cstdint>
#include <string>

using namespace torvane;
using fuzz::require;

namespace {

bool isReportedState(MountStatus status) {
    return status == kMountingEnabled || status == kMountingDisabled || status == kMountingUndetermined;
}

// A line's text drops every CR that no LF follows, so that words close up over it.
std::string withoutReturns(std::string text) {
    std::erase(text, '\r');
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string results(bytes, bytes + size);
    require(!reportsWritableDisk(results.c_str()) || withoutReturns(results).find("No") != std::string::npos,
            "writable is a No");
    require(isReportedState(mountStatusInReport(results.c_str())), "a report tells enabled, disabled or neither");
    require(isReportedState(mountStatusAfterScrub(results.c_str())), "scrub tells enabled, disabled or neither");
    return 0;
}
