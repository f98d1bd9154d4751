#include "state/folder_turn.h"

#include "base/program_folder.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <utility>

namespace torvane {

namespace {

constexpr std::chrono::seconds kPatience{15};

/// However the folder is spelt.
std::wstring folderInLowerCase() {
    std::wstring path = wideCurrentFolder();
    CharLowerBuffW(path.data(), static_cast<DWORD>(path.size()));
    return path;
}

/// FNV-1a: the name of an object has no room for a long path, nor for its backslashes.
std::uint64_t hashOf(const std::wstring& text) {
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (const wchar_t unit : text) {
        hash = (hash ^ static_cast<std::uint64_t>(unit)) * 0x100000001B3ULL;
    }
    return hash;
}

} // namespace

std::optional<MachineClaim> awaitFolderTurn() {
    MachineClaim turn(L"Torvane.Files." + std::to_wstring(hashOf(folderInLowerCase())));
    return turn.await(kPatience) ? std::optional(std::move(turn)) : std::nullopt;
}

} // namespace torvane
