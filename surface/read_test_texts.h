#pragma once

#include "records/read_test_result.h"
#include "surface/read_test_kind.h"

#include <cstdint>
#include <optional>
#include <string>

namespace torvane {

/// "CRITICAL", "SHORT", "NIST": the dialog's caption begins with it. Null for a code that is no read test.
[[nodiscard]] const char* readTestCaptionWord(std::int32_t kind);

/// "Critical Read Test" and so on, for a kind of test.
[[nodiscard]] const char* readTestName(ReadTestKind kind);

/// What the box says when the command finds no active drive.
[[nodiscard]] std::string noDriveForReadTestText(ReadTestKind kind);

/// The status line at the end of a Short or NIST test.
[[nodiscard]] std::string readTestOutcomeLine(const std::string& testName, int failureCount);

/// How a test ended, for the drive list.
struct ReadTestEnding {
    ReadTestResult result;
    std::optional<std::int64_t> failedSector; ///< of a failed test: the first sector of the read that failed
};

/// The "Status" cell of a drive after a read test.
[[nodiscard]] std::string readTestDriveStatus(const std::string& testName, const ReadTestEnding& ending);

} // namespace torvane
