#include "workbench/devices/device_path.h"

#include "base/ascii.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <optional>
#include <utility>

namespace torvane::bench {
namespace {

char upperLetter(wchar_t c) {
    return static_cast<char>(upperAscii(c));
}

// A decimal number that fills the text; at most four digits, far more than any machine has drives.
std::optional<std::uint32_t> wholeNumber(std::wstring_view text) {
    if (text.empty() || text.size() > 4) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') {
            return std::nullopt;
        }
        number = number * 10 + static_cast<std::uint32_t>(c - L'0');
    }
    return number;
}

// Names in the device namespace that no drive can hide behind.
bool isHarmless(const std::wstring& lower) {
    static constexpr std::array<std::wstring_view, 3> kFolders = {L"unc\\", L"pipe\\", L"mailslot\\"};
    static constexpr std::array<std::wstring_view, 8> kNames = {L"nul",     L"con", L"conin$", L"conout$",
                                                                L"console", L"prn", L"aux",    L"pipe"};
    if (std::any_of(kFolders.begin(), kFolders.end(), [&](std::wstring_view f) { return lower.starts_with(f); }) ||
        std::find(kNames.begin(), kNames.end(), lower) != kNames.end()) {
        return true;
    }
    return (lower.starts_with(L"com") || lower.starts_with(L"lpt")) && wholeNumber(lower.substr(3)).has_value();
}

/// "{...}" of "volume{...}"; empty for any other name in lower case.
std::string guidInName(std::wstring_view lower) {
    static constexpr std::wstring_view kVolume = L"volume{";
    const bool named = lower.starts_with(kVolume) && lower.find(L'}') == lower.size() - 1;
    return named ? asciiText(lower.substr(kVolume.size() - 1)) : std::string();
}

DevicePath underPrefix(const std::wstring& name) {
    static constexpr std::wstring_view kDrive = L"physicaldrive";
    static constexpr std::wstring_view kPort = L"scsi";
    const std::wstring lower = lowerAsciiText(name);
    if (name.size() >= 2 && isAsciiLetter(name[0]) && name[1] == L':') {
        if (name.size() == 2) {
            return {PathKind::kVolume, 0, upperLetter(name[0])};
        }
        return {name[2] == L'\\' ? PathKind::kOrdinary : PathKind::kForeignDevice, 0, 0};
    }
    if (std::string guid = guidInName(lower); !guid.empty()) {
        return {PathKind::kVolume, 0, 0, std::move(guid)};
    }
    if (lower == L"mountpointmanager") {
        return {PathKind::kMountManager, 0, 0};
    }
    if (lower.starts_with(kDrive)) {
        if (const auto number = wholeNumber(std::wstring_view(lower).substr(kDrive.size()))) {
            return {PathKind::kDrive, *number, 0};
        }
    }
    if (lower.starts_with(kPort) && lower.ends_with(L':')) {
        const std::wstring_view digits = std::wstring_view(lower).substr(kPort.size(), lower.size() - kPort.size() - 1);
        if (const auto number = wholeNumber(digits)) {
            return {PathKind::kScsiPort, *number, 0};
        }
    }
    return {isHarmless(lower) ? PathKind::kOrdinary : PathKind::kForeignDevice, 0, 0};
}

} // namespace

DevicePath parseDevicePath(std::wstring_view path) {
    std::wstring text(path);
    std::replace(text.begin(), text.end(), L'/', L'\\');
    if (text.starts_with(L"\\\\.\\") || text.starts_with(L"\\\\?\\") || text.starts_with(L"\\??\\")) {
        return underPrefix(text.substr(4));
    }
    return {};
}

std::string volumeGuid(std::wstring_view path) {
    static constexpr std::wstring_view kPrefix = L"\\\\?\\";
    if (!path.starts_with(kPrefix)) {
        return {};
    }
    path.remove_prefix(kPrefix.size());
    if (path.ends_with(L'\\')) {
        path.remove_suffix(1);
    }
    return guidInName(lowerAsciiText(path));
}

char rootLetter(std::wstring_view path) {
    const bool root = (path.size() == 2 || (path.size() == 3 && (path[2] == L'\\' || path[2] == L'/'))) &&
                      isAsciiLetter(path[0]) && path[1] == L':';
    return root ? upperLetter(path[0]) : '\0';
}

CommandLine splitCommandLine(std::wstring_view commandLine) {
    CommandLine split;
    const bool quoted = !commandLine.empty() && commandLine.front() == L'"';
    const std::size_t begin = quoted ? 1 : 0;
    std::size_t end = quoted ? commandLine.find(L'"', begin) : commandLine.find_first_of(L" \t");
    if (end == std::wstring_view::npos) {
        end = commandLine.size();
    }
    split.program = commandLine.substr(begin, end - begin);
    split.rest = commandLine.substr(std::min(commandLine.size(), quoted ? end + 1 : end));
    return split;
}

Tool toolOf(std::wstring_view program) {
    const std::size_t slash = program.find_last_of(L"\\/:");
    std::wstring name = lowerAsciiText(slash == std::wstring_view::npos ? program : program.substr(slash + 1));
    if (name.ends_with(L".exe")) {
        name.resize(name.size() - 4);
    }
    if (name == L"diskpart") {
        return Tool::kDiskpart;
    }
    return name == L"powershell" ? Tool::kPowershell : Tool::kNone;
}

} // namespace torvane::bench
