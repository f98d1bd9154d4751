#pragma once

#include "tests/component/import_patched.h"
#include "tests/component/scratch_folder.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// The linker names it. NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" decltype(&MultiByteToWideChar) __imp_MultiByteToWideChar;

namespace torvane::testing {

/// A folder in the current one that is hard to reach: with a path of more than 260 characters, or with a name that few
/// code pages have. What is in it is looked at by the form of paths that always works.
class HardFolder {
  public:
    static HardFolder withLongPath() {
        const std::wstring name(120, L'n');
        return HardFolder(std::filesystem::path(name) / name / name);
    }
    static HardFolder withForeignName() {
        return HardFolder(L"Bilder \u00e4\u00f6\u00fc \u0421\u043d\u0438\u043c\u043a\u0438");
    }

    ~HardFolder() { std::filesystem::remove_all(longForm_); }
    HardFolder(const HardFolder&) = delete;
    HardFolder& operator=(const HardFolder&) = delete;

    /// In the program's texts, which are UTF-8 as its manifest has it.
    [[nodiscard]] std::string path() const {
        const std::u8string text = path_.u8string();
        return {text.begin(), text.end()};
    }
    /// The bytes of a file in it; empty when there is none.
    [[nodiscard]] std::string content(const std::string& name) const {
        std::ifstream file(longForm_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    [[nodiscard]] std::size_t files() const {
        const std::filesystem::directory_iterator all(longForm_);
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

  private:
    explicit HardFolder(const std::filesystem::path& name)
        : path_((std::filesystem::current_path() / name).make_preferred()), longForm_(L"\\\\?\\" + path_.wstring()) {
        std::filesystem::create_directories(longForm_);
    }

    std::filesystem::path path_;
    std::filesystem::path longForm_;
};

/// As long as this lives the code page of the program's texts is UTF-8, as its manifest wants it on Windows.
class TextsAreUtf8 {
  public:
    TextsAreUtf8() { real_ = patched_.original(); }

  private:
    static int WINAPI toWide(UINT codePage, DWORD flags, LPCCH text, int size, LPWSTR wide, int room) {
        return real_(codePage == CP_ACP ? CP_UTF8 : codePage, flags, text, size, wide, room);
    }

    static inline decltype(&MultiByteToWideChar) real_ = nullptr;
    ImportPatched<decltype(&MultiByteToWideChar)> patched_{__imp_MultiByteToWideChar, &toWide};
};

} // namespace torvane::testing
