#include "surface/read_test_texts.h"

#include "base/format.h"
#include "records/drive_record.h"

#include <cinttypes>

namespace torvane {

const char* readTestCaptionWord(std::int32_t kind) {
    switch (kind) {
    case kCriticalReadTest:
        return "CRITICAL";
    case kShortReadTest:
        return "SHORT";
    case kNistReadTest:
        return "NIST";
    default:
        return nullptr;
    }
}

const char* readTestName(ReadTestKind kind) {
    switch (kind) {
    case kCriticalReadTest:
        return "Critical Read Test";
    case kShortReadTest:
        return "Short Read Test";
    case kNistReadTest:
        return "NIST Read Test";
    }
    return "";
}

std::string noDriveForReadTestText(ReadTestKind kind) {
    return formatText("Load Drives, and click on drive to make ACTIVE for %s", readTestName(kind));
}

std::string readTestOutcomeLine(const std::string& testName, int failureCount) {
    return testName + (failureCount == 0 ? " -- PASSED" : " -- FAILED Found Read Errors");
}

std::string readTestDriveStatus(const std::string& testName, const ReadTestEnding& ending) {
    switch (ending.result) {
    case ReadTestResult::kPassed:
        return "COMPLETED " + testName + " PASSED";
    case ReadTestResult::kTerminated:
        return "BAD " + testName + " TERMINATED";
    case ReadTestResult::kFailed:
    case ReadTestResult::kNotPerformed:
        break;
    }
    const std::string failed = "BAD " + testName + " FAILED";
    return ending.failedSector ? failed + formatText(" at sector %" PRId64, *ending.failedSector) : failed;
}

} // namespace torvane
