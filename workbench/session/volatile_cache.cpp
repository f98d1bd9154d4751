#include "workbench/session/volatile_cache.h"

#include "workbench/description/error_names.h"

#include <algorithm>
#include <vector>

namespace torvane::bench {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Stands before the bytes that lay under a write.
struct Place {
    std::uint64_t offset;
    std::uint64_t length;
};

// The file, which nobody else has in hand meanwhile, in this process or another one.
class HeldFile {
  public:
    explicit HeldFile(const std::filesystem::path& path)
        : file_(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr, OPEN_ALWAYS, 0, nullptr)) {
        OVERLAPPED start{};
        LockFileEx(file_.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &start);
    }
    ~HeldFile() {
        OVERLAPPED start{};
        UnlockFileEx(file_.get(), 0, MAXDWORD, MAXDWORD, &start);
    }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    void append(const void* bytes, std::size_t length) const {
        DWORD done = 0;
        SetFilePointer(file_.get(), 0, nullptr, FILE_END);
        WriteFile(file_.get(), bytes, static_cast<DWORD>(length), &done, nullptr);
    }

    // False at the end of the file.
    [[nodiscard]] bool next(void* bytes, std::size_t length) const {
        DWORD done = 0;
        return ReadFile(file_.get(), bytes, static_cast<DWORD>(length), &done, nullptr) != 0 && done == length;
    }

    void rewind() const { SetFilePointer(file_.get(), 0, nullptr, FILE_BEGIN); }

    void empty() const {
        rewind();
        SetEndOfFile(file_.get());
    }

  private:
    UniqueHandle file_;
};

struct Underneath {
    std::uint64_t offset;
    std::vector<std::uint8_t> bytes;
};

std::vector<Underneath> everythingIn(const HeldFile& file) {
    std::vector<Underneath> all;
    file.rewind();
    for (Place place{}; file.next(&place, sizeof place);) {
        Underneath one{.offset = place.offset, .bytes = std::vector<std::uint8_t>(place.length)};
        if (!file.next(one.bytes.data(), one.bytes.size())) {
            break;
        }
        all.push_back(std::move(one));
    }
    return all;
}

} // namespace

VolatileCache::VolatileCache(const std::filesystem::path& benchFolder, const DriveDescription& drive)
    : file_(benchFolder / "backing" / (drive.backing.file + ".unflushed")) {}

DWORD VolatileCache::write(const DriveContent& content, HANDLE handle, std::uint64_t offset,
                           std::span<const std::uint8_t> data, const std::function<bool()>& isPluggedIn) const {
    const HeldFile file(file_);
    if (!isPluggedIn()) {
        return kErrorDeviceNotConnected;
    }
    std::vector<std::uint8_t> underneath(data.size());
    if (const DWORD error = content.read(handle, offset, underneath); error != 0) {
        return error;
    }
    const Place place{.offset = offset, .length = underneath.size()};
    file.append(&place, sizeof place);
    file.append(underneath.data(), underneath.size());
    return content.write(handle, offset, data);
}

void VolatileCache::flush() const {
    HeldFile(file_).empty();
}

void VolatileCache::lose(const DriveContent& content) const {
    const UniqueHandle handle = content.open(GENERIC_READ | GENERIC_WRITE, nullptr); // makes the folder, too
    const HeldFile file(file_);
    const std::vector<Underneath> all = everythingIn(file);
    // Backwards: where two writes met, the first one's is the older.
    std::for_each(all.rbegin(), all.rend(), [&](const Underneath& one) {
        static_cast<void>(content.write(handle.get(), one.offset, one.bytes));
    });
    file.empty();
}

void loseUnflushed(const std::filesystem::path& benchFolder, const DriveDescription& drive) {
    if (drive.faults.volatileCache) {
        VolatileCache(benchFolder, drive).lose(DriveContent(benchFolder, drive));
    }
}

} // namespace torvane::bench
