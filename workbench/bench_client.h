#pragma once

#include "workbench/bench_api.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace torvane::bench {

/// Puts a test's own process on a bench. bench.dll is looked for in "workbench/" beside the test program's folder and
/// beside every folder above it; once loaded it stays.
class Bench {
  public:
    Bench() : library_(loadLibrary()) {}
    ~Bench() { close(); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    /// Copies a bench's descriptions into a fresh folder. Empty on success, else what is wrong; so for `open`.
    [[nodiscard]] std::string layOut(const std::filesystem::path& source, const std::filesystem::path& target) {
        const auto function = find<decltype(BenchLayOut)>("BenchLayOut");
        return function == nullptr ? notLoaded() : textOf(function(utf8(source).c_str(), utf8(target).c_str()));
    }

    /// Puts the process, and what it starts, on the bench in `folder`; leaves an earlier one.
    [[nodiscard]] std::string open(const std::filesystem::path& folder) {
        const auto function = find<decltype(BenchOpenW)>("BenchOpenW");
        folder_ = folder;
        return function == nullptr ? notLoaded() : textOf(function(folder.wstring().c_str()));
    }

    void close() {
        if (const auto function = find<decltype(BenchClose)>("BenchClose")) {
            function();
        }
    }

    /// Makes a drive vanish and come back, for every process on the bench. False when there is no such drive.
    bool unplug(int drive) {
        const auto function = find<decltype(BenchUnplug)>("BenchUnplug");
        return function != nullptr && function(drive) == 1;
    }
    bool plug(int drive) {
        const auto function = find<decltype(BenchPlug)>("BenchPlug");
        return function != nullptr && function(drive) == 1;
    }

    /// Another one of equal size takes the drive's place, or the drive takes its own again.
    bool swap(int drive) {
        const auto function = find<decltype(BenchSwap)>("BenchSwap");
        return function != nullptr && function(drive) == 1;
    }

    /// The log's lines so far that contain every one of `texts`, oldest first.
    [[nodiscard]] std::vector<std::string> logLines(std::initializer_list<std::string_view> texts = {}) const {
        std::vector<std::string> found;
        std::ifstream log(folder_ / "bench.log", std::ios::binary);
        for (std::string line; std::getline(log, line);) {
            const auto contained = [&](std::string_view text) { return line.find(text) != std::string::npos; };
            if (std::all_of(texts.begin(), texts.end(), contained)) {
                found.push_back(line);
            }
        }
        return found;
    }
    [[nodiscard]] std::vector<std::string> logLines(std::string_view text) const { return logLines({text}); }

  private:
    static std::string utf8(const std::filesystem::path& path) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }
    static std::string textOf(const char* error) { return error == nullptr ? std::string() : std::string(error); }
    static std::string notLoaded() { return "workbench/bench.dll was not found above the test program's folder"; }

    static HMODULE loadLibrary() {
        std::array<wchar_t, 1024> path{};
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        std::filesystem::path folder(std::wstring(path.data(), length));
        while (folder.has_relative_path()) {
            folder = folder.parent_path();
            if (const HMODULE library = LoadLibraryW((folder / "workbench" / "bench.dll").c_str())) {
                return library;
            }
        }
        return nullptr;
    }

    template <typename Function>
    Function* find(const char* name) const {
        const FARPROC address = library_ == nullptr ? nullptr : GetProcAddress(library_, name);
        Function* function = nullptr;
        std::memcpy(&function, &address, sizeof(function));
        return function;
    }

    HMODULE library_;
    std::filesystem::path folder_;
};

} // namespace torvane::bench
