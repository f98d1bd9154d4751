#include "workbench/hooks/import_patch.h"

#include <psapi.h>

#include <algorithm>
#include <cstring>

namespace torvane::bench {
namespace {

std::vector<HMODULE> loadedModules() {
    std::vector<HMODULE> modules(256);
    DWORD needed = 0;
    while (K32EnumProcessModules(GetCurrentProcess(), modules.data(),
                                 static_cast<DWORD>(modules.size() * sizeof(HMODULE)), &needed) != 0) {
        const std::size_t count = needed / sizeof(HMODULE);
        if (count <= modules.size()) {
            modules.resize(count);
            return modules;
        }
        modules.resize(count + 16);
    }
    return {};
}

template <typename Record>
const Record* recordAt(HMODULE module, std::uint32_t address) {
    return reinterpret_cast<const Record*>(reinterpret_cast<const std::uint8_t*>(module) + address);
}

// Where the import directory lies, from the image's own headers; 0 when there is none.
std::uint32_t importDirectory(HMODULE module) {
    const auto* dos = recordAt<IMAGE_DOS_HEADER>(module, 0);
    if (dos->e_magic != IMAGE_DOS_SIGNATURE) {
        return 0;
    }
    const auto* headers = recordAt<IMAGE_NT_HEADERS>(module, static_cast<std::uint32_t>(dos->e_lfanew));
    if (headers->Signature != IMAGE_NT_SIGNATURE ||
        headers->OptionalHeader.NumberOfRvaAndSizes <= IMAGE_DIRECTORY_ENTRY_IMPORT) {
        return 0;
    }
    return headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
}

void setSlot(void** slot, void* value) {
    DWORD before = 0;
    if (VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &before) != 0) {
        *slot = value;
        DWORD ignored = 0;
        VirtualProtect(slot, sizeof(*slot), before, &ignored);
    }
}

void* functionOf(HMODULE module, const char* name) {
    void* address = nullptr;
    const FARPROC function = module == nullptr ? nullptr : GetProcAddress(module, name);
    std::memcpy(&address, &function, sizeof(address));
    return address;
}

} // namespace

ImportPatch::ImportPatch(std::span<const Replacement> replacements) {
    HMODULE own = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&loadedModules), &own);
    const HMODULE kernel32 = GetModuleHandleW(L"kernel32.dll");
    const HMODULE kernelbase = GetModuleHandleW(L"kernelbase.dll");
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    untouched_ = {own, kernel32, kernelbase, GetModuleHandleW(L"ntdll.dll")};
    for (const Replacement& replacement : replacements) {
        targets_.push_back({{functionOf(kernel32, replacement.name), functionOf(kernelbase, replacement.name),
                             functionOf(user32, replacement.name)},
                            replacement.function});
    }
}

void* ImportPatch::replacementOf(const void* address) const {
    for (const Target& target : targets_) {
        if (address != nullptr && std::ranges::find(target.originals, address) != target.originals.end()) {
            return target.function;
        }
    }
    return nullptr;
}

void ImportPatch::apply() {
    const std::lock_guard lock(mutex_);
    for (const HMODULE module : loadedModules()) {
        if (std::find(untouched_.begin(), untouched_.end(), module) == untouched_.end()) {
            patchModule(module);
        }
    }
}

void ImportPatch::patchModule(HMODULE module) {
    if (const std::uint32_t directory = importDirectory(module); directory != 0) {
        patchImports(module, directory);
    }
}

void ImportPatch::patchImports(HMODULE module, std::uint32_t directoryAddress) {
    for (const auto* entry = recordAt<IMAGE_IMPORT_DESCRIPTOR>(module, directoryAddress); entry->Name != 0; ++entry) {
        auto** slot = const_cast<void**>(recordAt<void*>(module, entry->FirstThunk));
        for (; *slot != nullptr; ++slot) {
            if (void* replacement = replacementOf(*slot)) {
                patched_.push_back({module, slot, *slot});
                setSlot(slot, replacement);
            }
        }
    }
}

void ImportPatch::restore() {
    const std::lock_guard lock(mutex_);
    const std::vector<HMODULE> modules = loadedModules();
    for (const Patched& patched : patched_) {
        // A module that is gone took its imports with it; another one at its place holds other addresses.
        const bool loaded = std::find(modules.begin(), modules.end(), patched.module) != modules.end();
        if (loaded && *patched.slot == replacementOf(patched.original)) {
            setSlot(patched.slot, patched.original);
        }
    }
    patched_.clear();
}

} // namespace torvane::bench
