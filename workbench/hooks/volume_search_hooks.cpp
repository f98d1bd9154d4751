#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"
#include "workbench/session/win32_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace torvane::bench {
namespace {

// A search as FindFirstVolume begins it: the names that it has not told yet are those from `next` on.
struct VolumeSearch {
    std::vector<std::wstring> names;
    std::size_t next = 0;
};

std::mutex searchesMutex;
std::map<HANDLE, std::unique_ptr<VolumeSearch>> searches;

std::wstring guidPath(const VolumeDescription& volume) {
    return L"\\\\?\\Volume" + wideFromBytes(volume.guid) + L"\\";
}

// Those of disks that are mounted now; network letters are none that a search finds.
std::vector<std::wstring> mountedVolumes(BenchSession& session) {
    std::vector<std::wstring> names;
    for (const VolumeDescription& volume : session.description().volumes) {
        if (volume.kind != VolumeKind::kNetwork && session.isMounted(volume)) {
            names.push_back(guidPath(volume));
        }
    }
    return names;
}

BOOL fail(DWORD error) {
    SetLastError(error);
    return FALSE;
}

std::wstring asWide(const std::wstring& text) {
    return text;
}

template <typename Character>
BOOL giveNext(VolumeSearch& search, Character* name, DWORD capacity,
              std::basic_string<Character> (*convert)(const std::wstring&)) {
    if (search.next == search.names.size()) {
        return fail(ERROR_NO_MORE_FILES);
    }
    const std::basic_string<Character> text = convert(search.names[search.next]);
    if (text.size() + 1 > capacity) {
        return fail(ERROR_FILENAME_EXCED_RANGE);
    }
    std::copy_n(text.c_str(), text.size() + 1, name);
    ++search.next;
    return TRUE;
}

template <typename Character>
HANDLE findFirst(BenchSession& session, Character* name, DWORD capacity,
                 std::basic_string<Character> (*convert)(const std::wstring&)) {
    auto search = std::make_unique<VolumeSearch>();
    search->names = mountedVolumes(session);
    if (giveNext(*search, name, capacity, convert) == FALSE) {
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = search.get();
    const std::lock_guard lock(searchesMutex);
    searches[handle] = std::move(search);
    return handle;
}

// Null for a search that is none of the bench's.
VolumeSearch* searchOf(HANDLE handle) {
    const std::lock_guard lock(searchesMutex);
    const auto found = searches.find(handle);
    return found == searches.end() ? nullptr : found->second.get();
}

HANDLE WINAPI findFirstVolumeW(LPWSTR name, DWORD capacity) {
    const auto session = currentSession();
    return session ? findFirst<wchar_t>(*session, name, capacity, asWide) : FindFirstVolumeW(name, capacity);
}

HANDLE WINAPI findFirstVolumeA(LPSTR name, DWORD capacity) {
    const auto session = currentSession();
    return session
               ? findFirst<char>(*session, name, capacity, [](const std::wstring& text) { return ansiFromWide(text); })
               : FindFirstVolumeA(name, capacity);
}

BOOL WINAPI findNextVolumeW(HANDLE handle, LPWSTR name, DWORD capacity) {
    VolumeSearch* const search = searchOf(handle);
    return search != nullptr ? giveNext<wchar_t>(*search, name, capacity, asWide)
                             : FindNextVolumeW(handle, name, capacity);
}

BOOL WINAPI findNextVolumeA(HANDLE handle, LPSTR name, DWORD capacity) {
    VolumeSearch* const search = searchOf(handle);
    return search != nullptr
               ? giveNext<char>(*search, name, capacity, [](const std::wstring& text) { return ansiFromWide(text); })
               : FindNextVolumeA(handle, name, capacity);
}

BOOL WINAPI findVolumeClose(HANDLE handle) {
    {
        const std::lock_guard lock(searchesMutex);
        if (searches.erase(handle) != 0) {
            return TRUE;
        }
    }
    return FindVolumeClose(handle);
}

// Each mount point with its NUL, and one more NUL at the end. `volume`: "\\?\Volume{...}\".
template <typename Character>
BOOL givePathNames(BenchSession& session, std::wstring_view volume, Character* names, DWORD capacity, DWORD* needed,
                   std::basic_string<Character> (*convert)(const std::wstring&)) {
    const VolumeDescription* const found = session.description().volumeNamed(volumeGuid(volume));
    if (found == nullptr || !session.isMounted(*found)) {
        return fail(ERROR_FILE_NOT_FOUND);
    }
    std::basic_string<Character> list;
    const auto add = [&](const std::wstring& path) {
        list += convert(path);
        list += Character{};
    };
    if (found->letter != 0) {
        add({static_cast<wchar_t>(found->letter), L':', L'\\'});
    }
    if (!found->folder.empty()) {
        add(wideFromBytes(found->folder));
    }
    list += Character{};
    *needed = static_cast<DWORD>(list.size());
    if (list.size() > capacity) {
        return fail(ERROR_MORE_DATA);
    }
    std::ranges::copy(list, names);
    return TRUE;
}

BOOL WINAPI getVolumePathNamesW(LPCWSTR volume, LPWCH names, DWORD capacity, PDWORD needed) {
    const auto session = currentSession();
    return session ? givePathNames<wchar_t>(*session, volume, names, capacity, needed, asWide)
                   : GetVolumePathNamesForVolumeNameW(volume, names, capacity, needed);
}

BOOL WINAPI getVolumePathNamesA(LPCSTR volume, LPCH names, DWORD capacity, PDWORD needed) {
    const auto session = currentSession();
    return session ? givePathNames<char>(*session, wideFromAnsi(volume), names, capacity, needed,
                                         [](const std::wstring& text) { return ansiFromWide(text); })
                   : GetVolumePathNamesForVolumeNameA(volume, names, capacity, needed);
}

} // namespace

std::span<const Replacement> volumeSearchReplacements() {
    static const std::array kReplacements = {
        Replacement{"FindFirstVolumeA", hookAddress(findFirstVolumeA)},
        Replacement{"FindFirstVolumeW", hookAddress(findFirstVolumeW)},
        Replacement{"FindNextVolumeA", hookAddress(findNextVolumeA)},
        Replacement{"FindNextVolumeW", hookAddress(findNextVolumeW)},
        Replacement{"FindVolumeClose", hookAddress(findVolumeClose)},
        Replacement{"GetVolumePathNamesForVolumeNameA", hookAddress(getVolumePathNamesA)},
        Replacement{"GetVolumePathNamesForVolumeNameW", hookAddress(getVolumePathNamesW)},
    };
    return kReplacements;
}

} // namespace torvane::bench
