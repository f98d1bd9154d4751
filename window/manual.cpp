#include "window/manual.h"

#include "base/format.h"
#include "base/program_folder.h"
#include "base/replace_file.h"
#include "base/whole_file.h"
#include "base/wide_text.h"
#include "monitoring/command_runner.h"
#include "ui/prompts.h"
#include "ui/waiting.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace torvane {

namespace {

// Read anew each time: an older version of the program may have left it, or somebody may have changed it.
bool isWritten(std::string_view page) {
    constexpr std::uint64_t kMostBytes = std::uint64_t{16} << 20;
    return readFileUpTo(kManualFileName, kMostBytes) == page;
}

bool write(std::string_view page) {
    return replaceFile(kManualFileName, std::as_bytes(std::span(page))) == FileSaving::kDone;
}

/// False when it is not written.
bool writeAndOpen(std::string_view page) {
    if (!isWritten(page) && !write(page)) {
        return false;
    }
    const std::string command = std::string("powershell Start-Process ") + kManualFileName;
    PARSE_BuildDataFile("WorkFile.txt", command.c_str());
    return true;
}

} // namespace

void openManual(std::string_view page) {
    const std::optional<bool> written = waiting::resultOf("PowerShell", [page] { return writeAndOpen(page); });
    if (written && !*written) {
        prompts::stop("***** MANUAL NOT WRITTEN *****",
                      formatText("The manual could not be written as [%s] into the folder in which Torvane works:\n\n"
                                 "%s\n\nStart Torvane from a folder in which files can be made.",
                                 kManualFileName, ansiText(wideCurrentFolder()).c_str())
                          .c_str());
    }
}

} // namespace torvane
