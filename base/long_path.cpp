#include "base/long_path.h"

namespace torvane {

std::wstring longPathForm(std::wstring_view absolute) {
    constexpr std::wstring_view kShare = L"\\\\";
    if (absolute.starts_with(L"\\\\?\\") || absolute.starts_with(L"\\\\.\\")) {
        return std::wstring(absolute);
    }
    if (absolute.starts_with(kShare)) {
        return L"\\\\?\\UNC\\" + std::wstring(absolute.substr(kShare.size()));
    }
    return L"\\\\?\\" + std::wstring(absolute);
}

} // namespace torvane
