#include "base/machine_names.h"

#include <windows.h>

#include <cwchar>

namespace torvane {

namespace {

/// What a call tells that first says how many characters it needs, and then how many it wrote without the last NUL.
template <typename Call>
std::wstring told(Call call) {
    DWORD length = 0;
    call(nullptr, &length);
    std::wstring name(length, L'\0');
    if (length == 0 || call(name.data(), &length) == FALSE) {
        return {};
    }
    name.resize(std::wcslen(name.c_str())); // one of the two counts the end, too
    return name;
}

} // namespace

std::wstring machineName() {
    return told(
        [](wchar_t* name, DWORD* length) { return GetComputerNameExW(ComputerNameDnsFullyQualified, name, length); });
}

std::wstring userName() {
    return told([](wchar_t* name, DWORD* length) { return GetUserNameW(name, length); });
}

} // namespace torvane
