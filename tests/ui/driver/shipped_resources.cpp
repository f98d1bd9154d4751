#include "tests/ui/driver/shipped_resources.h"

#include "tests/ui/driver/bench_folder.h"
#include "tests/ui/driver/text.h"
#include "tests/ui/driver/wait.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <cstring>

namespace torvane::driver {
namespace {

constexpr int kMainMenu = 129;

std::vector<MenuItem> readItems(HMENU menu) { // NOLINT(misc-no-recursion): a menu is as deep as it is
    std::vector<MenuItem> items;
    for (int i = 0; i < GetMenuItemCount(menu); ++i) {
        std::array<wchar_t, 256> text{};
        GetMenuStringW(menu, static_cast<UINT>(i), text.data(), static_cast<int>(text.size()), MF_BYPOSITION);
        MenuItem item{static_cast<int>(GetMenuItemID(menu, i)), toUtf8(text.data()), {}};
        if (const HMENU popup = GetSubMenu(menu, i); popup != nullptr) {
            item.items = readItems(popup);
        }
        items.push_back(item);
    }
    return items;
}

/// The program's file, opened for its resources.
class ShippedProgram {
  public:
    ShippedProgram()
        : module_(LoadLibraryExW((packageFolder() / "Torvane.exe").c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {
        if (module_ == nullptr) {
            throw Failure("the shipped program cannot be opened");
        }
    }
    ~ShippedProgram() { FreeLibrary(module_); }
    ShippedProgram(const ShippedProgram&) = delete;
    ShippedProgram& operator=(const ShippedProgram&) = delete;

    [[nodiscard]] HMODULE module() const { return module_; }

    /// The resource's bytes; throws when there is none.
    [[nodiscard]] std::string bytes(const char* name, const char* type) const {
        const HRSRC found = FindResourceA(module_, name, type);
        const HGLOBAL loaded = found == nullptr ? nullptr : LoadResource(module_, found);
        const auto* const data = static_cast<const char*>(loaded == nullptr ? nullptr : LockResource(loaded));
        if (data == nullptr) {
            throw Failure("a resource is not in the shipped program");
        }
        return {data, SizeofResource(module_, found)};
    }

  private:
    HMODULE module_;
};

std::string withoutComments(std::string xml) {
    for (auto begin = xml.find("<!--"); begin != std::string::npos; begin = xml.find("<!--", begin)) {
        const auto end = xml.find("-->", begin);
        xml.erase(begin, end == std::string::npos ? end : end + 3 - begin);
    }
    return xml;
}

std::vector<char> versionInfo() {
    const std::wstring path = packageFolder() / "Torvane.exe";
    DWORD ignored = 0;
    std::vector<char> info(GetFileVersionInfoSizeW(path.c_str(), &ignored));
    if (info.empty() || !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(info.size()), info.data())) {
        throw Failure("the shipped program has no version resource");
    }
    return info;
}

void* versionValue(const std::vector<char>& info, const std::wstring& block) {
    void* value = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(info.data(), block.c_str(), &value, &size) || size == 0) {
        throw Failure("the version resource lacks " + toUtf8(block));
    }
    return value;
}

std::string versionText(const std::vector<char>& info, const std::wstring& name) {
    // In US English, as Unicode.
    return toUtf8(static_cast<const wchar_t*>(versionValue(info, L"\\StringFileInfo\\040904B0\\" + name)));
}

std::string versionNumbers(DWORD high,
                           DWORD low) { // NOLINT(bugprone-easily-swappable-parameters): as the system has it
    return std::to_string(HIWORD(high)) + "." + std::to_string(LOWORD(high)) + "." + std::to_string(HIWORD(low)) + "." +
           std::to_string(LOWORD(low));
}

// NOLINTNEXTLINE(readability-non-const-parameter): the system's own signature
BOOL CALLBACK takeFirstName(HMODULE, const char*, char* name, LONG_PTR first) {
    *reinterpret_cast<const char**>(first) = name; // NOLINT(performance-no-int-to-ptr): the caller's own
    return FALSE;
}

} // namespace

std::vector<MenuItem> shippedMainMenu() {
    const ShippedProgram program;
    const HMENU menu = LoadMenuW(program.module(), MAKEINTRESOURCEW(kMainMenu));
    if (menu == nullptr) {
        throw Failure("no main menu in the shipped program");
    }
    std::vector<MenuItem> items = readItems(menu);
    DestroyMenu(menu);
    return items;
}

std::string shippedString(unsigned id) {
    const ShippedProgram program;
    std::array<wchar_t, 512> text{};
    if (LoadStringW(program.module(), id, text.data(), static_cast<int>(text.size())) == 0) {
        throw Failure("no string " + std::to_string(id) + " in the shipped program");
    }
    return toUtf8(text.data());
}

std::string shippedManifest() {
    return withoutComments(ShippedProgram().bytes(CREATEPROCESS_MANIFEST_RESOURCE_ID, RT_MANIFEST));
}

ShippedVersion shippedVersion() {
    const std::vector<char> info = versionInfo();
    const auto& numbers = *static_cast<const VS_FIXEDFILEINFO*>(versionValue(info, L"\\"));
    return {versionNumbers(numbers.dwFileVersionMS, numbers.dwFileVersionLS),
            versionNumbers(numbers.dwProductVersionMS, numbers.dwProductVersionLS),
            versionText(info, L"FileVersion"),
            versionText(info, L"ProductVersion"),
            versionText(info, L"ProductName"),
            versionText(info, L"FileDescription"),
            versionText(info, L"OriginalFilename")};
}

// The signature of 8 bytes, then the length and type of the first chunk, IHDR: width and height, big-endian.
PngSize pngSize(const std::string& bytes) {
    if (bytes.size() < 24 || bytes.substr(0, 4) != "\x89PNG" || bytes.substr(12, 4) != "IHDR") {
        throw Failure("no PNG picture");
    }
    const auto number = [&](std::size_t at) {
        int value = 0;
        for (std::size_t i = at; i < at + 4; ++i) {
            value = value << 8 | static_cast<unsigned char>(bytes[i]);
        }
        return value;
    };
    return {number(16), number(20)};
}

PngSize shippedRenderingSize(const std::string& picture, int dpi) {
    return pngSize(ShippedProgram().bytes(picture.c_str(), ("RENDERING" + std::to_string(dpi)).c_str()));
}

std::vector<int> shippedIconWidths() {
    const ShippedProgram program;
    const char* name = nullptr;
    EnumResourceNamesA(program.module(), RT_GROUP_ICON, takeFirstName, reinterpret_cast<LONG_PTR>(&name));
    // A header of 6 bytes with the count in its last word, then 14 bytes for each picture: the width first, with 0 for
    // 256, the size in bytes at 8, the picture's own resource at 12 (GRPICONDIR).
    const std::string group = program.bytes(name, RT_GROUP_ICON);
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::uint32_t value = 0;
        std::memcpy(&value, group.data() + at, bytes);
        return value;
    };
    std::vector<int> widths;
    for (std::size_t i = 0; i < number(4, 2); ++i) {
        const std::size_t at = 6 + i * 14;
        const auto id = static_cast<WORD>(number(at + 12, 2));
        if (program.bytes(MAKEINTRESOURCEA(id), RT_ICON).size() != number(at + 8, 4)) {
            throw Failure("a picture of the shipped program's icon is not whole");
        }
        const int width = static_cast<int>(number(at, 1));
        widths.push_back(width == 0 ? 256 : width);
    }
    return widths;
}

} // namespace torvane::driver
