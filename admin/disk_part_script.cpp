#include "admin/disk_part_script.h"

#include "base/format.h"
#include "base/whole_file.h"
#include "monitoring/command_runner.h"
#include "state/event_log.h"

#include <utility>

namespace torvane {

namespace {

bool holds(HANDLE file, const std::string& text) {
    std::string held(text.size(), '\0');
    return sizeOfFile(file) == text.size() && readWholeFile(file, held.size(), held.data()) && held == text;
}

} // namespace

HeldScript writeHeld(const DiskPartScript& script) {
    std::optional<MachineClaim> turn = awaitFolderTurn();
    if (!turn) {
        return {};
    }
    // Fails as well when the same script is held already, for a run that is under way: what counts is the text that
    // nobody can change any more.
    static_cast<void>(writeWholeFile(script.fileName, script.text));
    UniqueFile file{CreateFileA(script.fileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr)};
    return file && holds(file.get(), script.text) ? HeldScript{std::move(turn), std::move(file)} : HeldScript{};
}

bool runDiskPart(const DiskPartScript& script) {
    const std::string commandLine = formatText("diskpart /s %s", script.fileName);
    return PARSE_BuildDataFile(script.resultsFileName.c_str(), commandLine.c_str()) != 0;
}

LoadedText loadResults(const DiskPartScript& script) {
    return PARSE_LoadFileIntoBuffer(script.resultsFileName.c_str());
}

LoadedText queryDiskPart(const DiskPartScript& script) {
    const HeldScript held = writeHeld(script);
    if (!held) {
        logUnwrittenQuery(script);
        return nullptr;
    }
    if (!runDiskPart(script)) {
        LogEvent("ERROR", "Could not BuildDataFile [%s]", script.resultsFileName.c_str());
        return nullptr;
    }
    LoadedText results = loadResults(script);
    if (!results) {
        LogEvent("ERROR", "Could not Load File [%s] into buffer", script.resultsFileName.c_str());
    }
    return results;
}

void logUnwrittenQuery(const DiskPartScript& script) {
    // The text speaks of the read-only attribute whatever the script is for.
    LogEvent("ERROR", "Could not create DISKPART [%s] script. Setting READONLY to OFF", script.fileName);
}

} // namespace torvane
