#include "workbench/hooks/hook_functions.h"
#include "workbench/hooks/hooks.h"

#include <array>
#include <string>
#include <string_view>

namespace torvane::bench {
namespace {

// Benches are machines of their own: what a program has for itself on one is another program's on the next.
HANDLE WINAPI createMutexW(LPSECURITY_ATTRIBUTES security, BOOL owned, LPCWSTR name) {
    const auto session = currentSession();
    if (session && name != nullptr && std::wstring_view(name).starts_with(L"Global\\")) {
        return CreateMutexW(security, owned, session->folder().objectName(name + 7).c_str());
    }
    return CreateMutexW(security, owned, name);
}

} // namespace

std::span<const Replacement> objectReplacements() {
    static const std::array kReplacements = {Replacement{"CreateMutexW", hookAddress(createMutexW)}};
    return kReplacements;
}

} // namespace torvane::bench
