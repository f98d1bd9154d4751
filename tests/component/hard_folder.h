#pragma once

#include "tests/component/import_patched.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// The linker names it. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" decltype(&GetACP) __imp_GetACP;

namespace torvane::testing {

/// A folder in the current one that is hard to reach, by its length or its letters. What is in it is made and looked at
/// by the form of paths that always works. It and its files are deleted at the end.
class HardFolder {
  public:
    /// With a path of more than 260 characters.
    static HardFolder withLongPath() { return HardFolder({std::wstring(120, L'n'), std::wstring(120, L'n'), L"end"}); }
    /// With a name that few code pages have: German and Russian letters.
    static HardFolder withForeignName() {
        return HardFolder({L"Bilder \u00e4\u00f6\u00fc \u0421\u043d\u0438\u043c\u043a\u0438"});
    }
    /// With a path of so many characters.
    static HardFolder withPathOf(std::size_t characters) {
        return HardFolder({std::wstring(characters - std::filesystem::current_path().wstring().size() - 1, L'n')});
    }

    ~HardFolder() {
        for (const std::wstring& name : files()) {
            insist([&] { return DeleteFileW((longForm(path_) + L"\\" + name).c_str()) != FALSE; });
        }
        for (; levels_ > 0; --levels_) {
            insist([&] { return RemoveDirectoryW(longForm(path_).c_str()) != FALSE; });
            path_.resize(path_.rfind(L'\\'));
        }
    }
    HardFolder(const HardFolder&) = delete;
    HardFolder& operator=(const HardFolder&) = delete;

    /// In UTF-8.
    [[nodiscard]] std::string path() const {
        const std::u8string text = std::filesystem::path(path_).u8string();
        return {text.begin(), text.end()};
    }
    [[nodiscard]] const std::wstring& widePath() const { return path_; }

    /// The names of its files.
    [[nodiscard]] std::vector<std::wstring> files() const {
        std::vector<std::wstring> names;
        WIN32_FIND_DATAW found{};
        const HANDLE search = FindFirstFileW((longForm(path_) + L"\\*").c_str(), &found);
        EXPECT_NE(search, INVALID_HANDLE_VALUE);
        do {
            if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                names.emplace_back(found.cFileName);
            }
        } while (FindNextFileW(search, &found) != FALSE);
        FindClose(search);
        return names;
    }
    /// The bytes of one of them; empty when it is not there.
    [[nodiscard]] std::string content(const std::wstring& name) const {
        std::ifstream file(std::filesystem::path(longForm(path_) + L"\\" + name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    static std::wstring longForm(const std::wstring& path) { return L"\\\\?\\" + path; }

  private:
    explicit HardFolder(const std::vector<std::wstring>& levels)
        : path_(std::filesystem::current_path().make_preferred().wstring()), levels_(levels.size()) {
        for (const std::wstring& level : levels) {
            path_ += L"\\" + level;
            EXPECT_TRUE(CreateDirectoryW(longForm(path_).c_str(), nullptr));
        }
    }

    /// A child's console may hold the child's output for a moment longer than the child.
    template <typename Deletion>
    static void insist(Deletion&& isDone) {
        bool done = isDone();
        for (int patience = 3000; !done && patience > 0; --patience) {
            Sleep(10);
            done = isDone();
        }
        EXPECT_TRUE(done);
    }

    std::wstring path_;
    std::size_t levels_;
};

/// As long as this lives the code page of the program's texts is UTF-8, as its manifest wants it on Windows.
class TextsAreUtf8 {
  private:
    static UINT WINAPI utf8() { return CP_UTF8; }

    ImportPatched<decltype(&GetACP)> patched_{__imp_GetACP, &utf8};
};

} // namespace torvane::testing
