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

/// What is saved, as rows and boxes name it.
struct SavedThing {
    std::string name;
    std::string atBeginning; ///< of a sentence
    const char* notSaved;    ///< the box's caption
    const char* disk;        ///< who is waited for
};

const SavedThing kLog{"log", "Log", "***** LOG NOT SAVED *****", "the log's disk"};
const SavedThing kDetails{"details", "Details", "***** DETAILS NOT SAVED *****", "the details' disk"};

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

void tell(const SavedThing& thing, const std::string& path, FileSaving saving) {
    if (saving == FileSaving::kDone) {
        LogEvent("SUCCESS", "%s SAVED as [%s]", thing.atBeginning.c_str(), path.c_str());
        return;
    }
    LogEvent("ERROR", "Could not SAVE %s as [%s]. %s", thing.name.c_str(), path.c_str(), reasonOf(saving));
    const std::string text = "The " + thing.name + " could not be saved as [" + path + "]. " + reasonOf(saving) +
                             ". What was there before stays as it was. Save the " + thing.name +
                             " under another name, or in another folder";
    prompts::stop(thing.notSaved, text.c_str());
}

void tellLeft(const SavedThing& thing, const std::string& path) {
    const std::string text = "[" + path +
                             "] is still being written: its disk does not answer. Look for the file when the disk "
                             "answers again, and save the " +
                             thing.name + " again if it is not there";
    prompts::warn(thing.notSaved, text.c_str());
}

void save(const SavedThing& thing, const std::string& offeredName, const std::function<std::string()>& text) {
    const std::optional<std::string> path = choosers::newFile(kTextFiles, offeredName);
    if (!path) {
        return;
    }
    const std::optional<FileSaving> saving =
        waiting::resultOf(thing.disk, [name = *path, bytes = utf8Text(wideText(text()))] {
            return replaceForeignFile(name.c_str(), std::as_bytes(std::span(bytes)));
        });
    saving ? tell(thing, *path, *saving) : tellLeft(thing, *path);
}

} // namespace

void saveLogAsText(const std::function<std::string()>& text) {
    save(kLog, savedLogName(localNow()), text);
}

void saveDetailsAsText(const std::string& offeredName, const std::string& text) {
    save(kDetails, offeredName, [&text] { return text; });
}

} // namespace torvane
