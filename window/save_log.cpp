#include "window/save_log.h"

#include "base/local_moment.h"
#include "base/replace_file.h"
#include "base/wide_text.h"
#include "state/event_log.h"
#include "ui/choosers.h"
#include "ui/prompts.h"
#include "ui/waiting.h"
#include "window/list_text.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <optional>
#include <span>

namespace torvane {

namespace {

constexpr const char* kNotSaved = "***** LOG NOT SAVED *****";

constexpr std::array<choosers::FileKind, 1> kTextFiles{{{"(*.txt) Text Files", "*.txt"}}};

const char* reasonOf(FileSaving saving) {
    switch (saving) {
    case FileSaving::kNotMade:
        return "No file can be made there";
    case FileSaving::kNotWritten:
        return "Not all of it could be written";
    case FileSaving::kNotPlaced:
    case FileSaving::kDone:
        break;
    }
    return "The file is read-only, or another program has it open";
}

void tell(const std::string& path, FileSaving saving) {
    if (saving == FileSaving::kDone) {
        LogEvent("SUCCESS", "Log SAVED as [%s]", path.c_str());
        return;
    }
    LogEvent("ERROR", "Could not SAVE log as [%s]. %s", path.c_str(), reasonOf(saving));
    const std::string text = "The log could not be saved as [" + path + "]. " + reasonOf(saving) +
                             ". What was there before stays as it was. Save the log under another name, or in another "
                             "folder";
    prompts::stop(kNotSaved, text.c_str());
}

void tellLeft(const std::string& path) {
    const std::string text = "[" + path +
                             "] is still being written: its disk does not answer. Look for the file when the disk "
                             "answers again, and save the log again if it is not there";
    prompts::warn(kNotSaved, text.c_str());
}

} // namespace

void saveLogAsText(const std::function<std::string()>& text) {
    const std::optional<std::string> path = choosers::newFile(kTextFiles, savedLogName(localNow()));
    if (!path) {
        return;
    }
    const std::optional<FileSaving> saving =
        waiting::resultOf("the log's disk", [name = *path, bytes = utf8Text(wideText(text()))] {
            return replaceForeignFile(name.c_str(), std::as_bytes(std::span(bytes)));
        });
    saving ? tell(*path, *saving) : tellLeft(*path);
}

} // namespace torvane
