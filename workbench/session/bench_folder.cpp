#include "workbench/session/bench_folder.h"

#include "base/ascii.h"
#include "workbench/session/win32_text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <utility>

namespace torvane::bench {
namespace {

constexpr const char* kStateFile = "state.json";
constexpr const char* kNewStateFile = "state.json.new";
constexpr const char* kLogFile = "bench.log";
constexpr const char* kHurryFile = "hurry";

// Holds the bench's mutex. One that a dead process left behind is as good as a free one: every change under it is a
// single file operation.
class Held {
  public:
    explicit Held(HANDLE mutex) : mutex_(mutex) { WaitForSingleObject(mutex_, INFINITE); }
    ~Held() { ReleaseMutex(mutex_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

  private:
    HANDLE mutex_;
};

std::string programName() {
    std::array<wchar_t, 1024> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const std::filesystem::path name = std::filesystem::path(std::wstring(path.data(), length)).filename();
    std::string text = utf8FromWide(name.wstring());
    std::replace(text.begin(), text.end(), ' ', '_'); // a word of the log
    return text;
}

std::string timeText() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", unsigned{now.wYear},
                  unsigned{now.wMonth}, unsigned{now.wDay}, unsigned{now.wHour}, unsigned{now.wMinute},
                  unsigned{now.wSecond}, unsigned{now.wMilliseconds});
    return text.data();
}

} // namespace

BenchFolder::BenchFolder(std::filesystem::path folder, const BenchDescription& bench)
    : folder_(std::move(folder)), bench_(bench), program_(programName()),
      mutex_(CreateMutexW(nullptr, FALSE, objectName(L"lock").c_str())),
      log_(CreateFileW((folder_ / kLogFile).c_str(), FILE_APPEND_DATA | SYNCHRONIZE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr)),
      revisionMapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(LONG),
                                          objectName(L"revision").c_str())) {
    if (revisionMapping_) {
        void* view = MapViewOfFile(revisionMapping_.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(LONG));
        revision_ = static_cast<std::atomic<LONG>*>(view);
    }
}

BenchFolder::~BenchFolder() {
    if (revision_ != nullptr) {
        UnmapViewOfFile(revision_);
    }
}

// The same for every spelling of the folder's path that differs in case alone: FNV-1a of its lower-case form.
std::wstring BenchFolder::objectName(const wchar_t* kind) const {
    std::uint64_t hash = 0xCBF29CE484222325ULL;
    for (const wchar_t c : folder_.wstring()) {
        hash = (hash ^ lowerAscii(c)) * 0x100000001B3ULL;
    }
    return L"Local\\torvane-bench-" + std::to_wstring(hash) + L"-" + kind;
}

BenchState BenchFolder::readState() const {
    std::ifstream file(folder_ / kStateFile, std::ios::binary);
    const std::string text = file ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string();
    return text.empty() ? firstState(bench_) : stateFromText(text, bench_);
}

void BenchFolder::writeState(const BenchState& state) const {
    {
        std::ofstream file(folder_ / kNewStateFile, std::ios::binary | std::ios::trunc);
        file << stateText(state);
    }
    MoveFileExW((folder_ / kNewStateFile).c_str(), (folder_ / kStateFile).c_str(), MOVEFILE_REPLACE_EXISTING);
}

BenchState BenchFolder::state() {
    const std::lock_guard cacheLock(cacheMutex_);
    const LONG revision = revision_ == nullptr ? -1 : revision_->load();
    if (revision == -1 || revision != cachedRevision_) {
        const Held held(mutex_.get());
        cached_ = readState();
        cachedRevision_ = revision;
    }
    return cached_;
}

void BenchFolder::changeState(const std::function<void(BenchState&)>& change) {
    const Held held(mutex_.get());
    BenchState state = readState();
    change(state);
    writeState(state);
    if (revision_ != nullptr) {
        revision_->fetch_add(1);
    }
}

void BenchFolder::log(const LogLine& line) {
    const std::string prefix =
        timeText() + " pid=" + std::to_string(GetCurrentProcessId()) + " program=" + program_ + " ";
    const std::string whole = prefix + line.text() + "\n";
    const Held held(mutex_.get());
    DWORD written = 0;
    WriteFile(log_.get(), whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
}

void BenchFolder::wait(std::uint32_t longest) const {
    using std::chrono::milliseconds;
    constexpr milliseconds kBetweenLooks{20};
    const auto now = [] { return std::chrono::steady_clock::now(); };
    const auto end = now() + milliseconds(longest);
    const std::wstring hurry = (folder_ / kHurryFile).wstring();
    while (now() < end && GetFileAttributesW(hurry.c_str()) == INVALID_FILE_ATTRIBUTES) {
        const auto left = std::chrono::ceil<milliseconds>(end - now());
        Sleep(static_cast<DWORD>(std::clamp(left, milliseconds(0), kBetweenLooks).count()));
    }
}

} // namespace torvane::bench
