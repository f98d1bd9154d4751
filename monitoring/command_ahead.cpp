#include "monitoring/command_ahead.h"

#include "base/positioned_io.h"
#include "base/tool_watch.h"
#include "base/whole_file.h"
#include "monitoring/capture_file.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace torvane {

namespace {

/// Has never enough of a tool.
class Patience : public ToolWatch {
  public:
    [[nodiscard]] bool mayBegin() override { return true; }
    [[nodiscard]] bool mayGoOn(const ToolAtWork& /*tool*/) override { return true; }
};

/// This thread's, or one that never has enough.
ToolWatch& ownWatch() {
    static Patience patience;
    ToolWatch* const watch = toolWatch();
    return watch != nullptr ? *watch : patience;
}

/// What cannot be written is missing, as where the tool itself cannot write it.
void copyText(HANDLE from, HANDLE to) {
    constexpr std::uint64_t kMostAtOnce = 1 << 20;
    const std::uint64_t size = sizeOfFile(from).value_or(0);
    std::vector<std::byte> buffer(std::min(size, kMostAtOnce));
    bool moves = true;
    for (std::uint64_t at = 0; moves && at < size; at += buffer.size()) {
        const std::span<std::byte> bytes = std::span(buffer).first(std::min<std::uint64_t>(size - at, buffer.size()));
        moves = readAt(from, at, bytes) == TransferOutcome::kWhole && writeNext(to, bytes) == TransferOutcome::kWhole;
    }
}

/// A report's age is told by when the tool wrote it (monitoring/report_origin.h).
void copyTimeOfWriting(HANDLE from, HANDLE to) {
    FILETIME written{};
    if (GetFileTime(from, nullptr, nullptr, &written) != FALSE) {
        SetFileTime(to, nullptr, nullptr, &written);
    }
}

} // namespace

std::optional<CommandAhead> CommandAhead::start(const std::string& commandLine, std::string subject) {
    if (!ownWatch().mayBegin()) {
        return std::nullopt;
    }
    RunningCommand command = startInto(&makeCaptureFile, commandLine.c_str(), true);
    if (!command.process) {
        return std::nullopt;
    }
    return CommandAhead(
        std::move(command),
        {.name = toolName(commandLine), .subject = std::move(subject), .began = std::chrono::steady_clock::now()});
}

bool CommandAhead::hasEnded() const {
    return command_.process.awaitEnd(std::chrono::milliseconds(0));
}

bool CommandAhead::awaitEnd(const std::function<void()>& meanwhile) {
    return torvane::awaitEnd(command_.process, ownWatch(), tool_, meanwhile);
}

void CommandAhead::kill() {
    if (!hasEnded()) {
        command_.process.kill();
    }
}

void CommandAhead::awaitKilled(std::chrono::steady_clock::time_point deadline) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    static_cast<void>(command_.process.awaitEnd(std::max(left, std::chrono::milliseconds(0))));
}

int CommandAhead::buildDataFile(const char* outputFileName, const std::function<void()>& meanwhile) {
    if (!ownWatch().mayBegin()) {
        return logUnwanted(outputFileName);
    }
    const UniqueFile output = createOutputFile(outputFileName, nullptr);
    if (!output) {
        return logOutputNotCreated(outputFileName);
    }
    const bool wanted = awaitEnd(meanwhile);
    copyText(command_.output.get(), output.get());
    copyTimeOfWriting(command_.output.get(), output.get());
    return wanted ? 1 : logUnwanted(outputFileName);
}

} // namespace torvane
