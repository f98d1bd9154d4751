#pragma once

#include "details/tool_report.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

// Single lines of the tool's report. Each answers nothing for a line of another form.

/// True for a word of decimal digits alone.
[[nodiscard]] bool isNumber(std::string_view word);

/// The words of a line, which runs of blanks part.
[[nodiscard]] std::vector<std::string_view> wordsOf(std::string_view line);

/// The text with one blank for each run of them, and none around it.
[[nodiscard]] std::string withSingleBlanks(std::string_view text);

/// "Device Model:     Tidewell TW1G", and "Blocks sent to initiator = 12".
[[nodiscard]] std::optional<ReportField> fieldLine(std::string_view line);

/// "  5 Reallocated_Sector_Ct   PO--CK   088   088   005    -    214", and of the old form
/// "  5 Reallocated_Sector_Ct   0x0033   088   088   005    Pre-fail  Always       -       214".
[[nodiscard]] std::optional<SmartAttribute> attributeLine(std::string_view line);

/// "# 1  Short offline       Completed without error       00%        72         -", of a SCSI drive
/// "# 1  Background short  Completed                   -    8765                 - [-   -    -]".
[[nodiscard]] std::optional<SelfTest> selfTestLine(std::string_view line);

/// " 0   Short             Completed without error              1234            -     -   -    -    -".
[[nodiscard]] std::optional<SelfTest> nvmeSelfTestLine(std::string_view line);

/// "Error 2 [1] occurred at disk power-on lifetime: 20465 hours (852 days + 17 hours)".
[[nodiscard]] std::optional<LoggedError> errorHeadLine(std::string_view line);

/// "  40 -- 41 00 ... 00  Error: UNC at LBA = 0x00000010 = 16": what went wrong, and where, into `error`.
void takeErrorLine(std::string_view line, LoggedError& error);

/// "  0         12     0  0x0004  0x4016  0x004            0     1     -  Invalid Namespace or Format".
[[nodiscard]] std::optional<LoggedError> nvmeErrorLine(std::string_view line);

/// "0x01  0x010  4           32508  ---  Power-on Hours".
[[nodiscard]] std::optional<Statistic> statisticLine(std::string_view line);

/// The group's name of "0x01  =====  =               =  ===  == General Statistics (rev 1) ==".
[[nodiscard]] std::optional<std::string> statisticsGroupLine(std::string_view line);

/// "0x000b  2            0  CRC errors within host-to-device FIS".
[[nodiscard]] std::optional<Statistic> interfaceCounterLine(std::string_view line);

/// "read:   1234567        0         0   1234567          0        123.456           0" of a SCSI drive, in words.
[[nodiscard]] std::optional<ReportField> scsiErrorCounterLine(std::string_view line);

} // namespace torvane
