#include "copy/engine/windows_image_file.h"

#include "base/owned_handle.h"
#include "base/positioned_io.h"
#include "base/system_path.h"
#include "copy/engine/whole_sectors.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace torvane {

namespace {

constexpr DWORD kReading = GENERIC_READ | FILE_READ_ATTRIBUTES;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

UniqueFile openFile(const std::string& path, DWORD access, DWORD share, DWORD disposition, DWORD flags = 0) {
    return UniqueFile(CreateFileW(systemPath(path).c_str(), access, share, nullptr, disposition, flags, nullptr));
}

UniqueFile openOwn(const std::string& path, DWORD disposition) {
    return openFile(path, GENERIC_READ | GENERIC_WRITE | FILE_WRITE_ATTRIBUTES | FILE_READ_ATTRIBUTES, kShareAll,
                    disposition);
}

/// One handle, through the system's cache.
class WindowsImageFile : public ImageFile {
  public:
    /// `flushing`: a handle of its own for flushing, because requests of one handle wait for each other; without one
    /// the file's serves.
    explicit WindowsImageFile(UniqueFile file, UniqueFile flushing = {})
        : file_(std::move(file)), flushing_(std::move(flushing)) {}

    TransferOutcome read(std::span<std::byte> bytes) override { return readNext(file_.get(), bytes); }
    TransferOutcome write(std::span<const std::byte> bytes) override { return writeNext(file_.get(), bytes); }
    TransferOutcome flush() override { return flushFile(flushing_ ? flushing_.get() : file_.get()); }
    bool rewind() override { return SetFilePointer(file_.get(), 0, nullptr, FILE_BEGIN) != INVALID_SET_FILE_POINTER; }

    std::uint64_t size() override {
        LARGE_INTEGER size{};
        return GetFileSizeEx(file_.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
    }

  protected:
    [[nodiscard]] HANDLE handle() const { return file_.get(); }

  private:
    UniqueFile file_;
    UniqueFile flushing_;
};

/// A finished image, read from its medium: whole sectors through a handle without buffering, what is less than a sector
/// at the end, and whatever cannot be read so, through the ordinary one.
class MediumImageFile : public WindowsImageFile {
  public:
    MediumImageFile(UniqueFile file, UniqueFile medium)
        : WindowsImageFile(std::move(file)), medium_(std::move(medium)), alignment_(alignmentOf(medium_.get())) {}

    TransferOutcome read(std::span<std::byte> bytes) override {
        const std::uint64_t place = std::exchange(position_, position_ + bytes.size());
        const std::size_t whole = medium_ ? wholeSectors(place, bytes, alignment_) : 0;
        if (whole != 0) {
            SetLastError(NO_ERROR);
            const TransferOutcome outcome = readAt(medium_.get(), place, bytes.first(whole));
            if (outcome != TransferOutcome::kWhole && GetLastError() != ERROR_INVALID_PARAMETER) {
                return outcome;
            }
            if (outcome != TransferOutcome::kWhole) {
                medium_.reset(); // what it takes for whole sectors it does not tell
                return readAt(handle(), place, bytes);
            }
        }
        const std::span<std::byte> rest = bytes.subspan(whole);
        return rest.empty() ? TransferOutcome::kWhole : readAt(handle(), place + whole, rest);
    }

    bool rewind() override {
        position_ = 0;
        return WindowsImageFile::rewind();
    }

  private:
    /// Bytes of a sector as the volume tells them (FILE_STORAGE_INFO: the least that can be read unbuffered).
    static std::size_t alignmentOf(HANDLE file) {
        FILE_STORAGE_INFO info{};
        const BOOL told = GetFileInformationByHandleEx(file, FileStorageInfo, &info, sizeof info);
        return unbufferedAlignment(told != FALSE ? info.LogicalBytesPerSector : 0);
    }

    UniqueFile medium_;
    std::size_t alignment_; // bytes
    std::uint64_t position_ = 0;
};

std::unique_ptr<ImageFile> openNew(const std::string& path) {
    UniqueFile file = openOwn(path, CREATE_NEW);
    if (!file) {
        return nullptr;
    }
    return std::make_unique<WindowsImageFile>(std::move(file), openFile(path, GENERIC_WRITE, kShareAll, OPEN_EXISTING));
}

/// `file`: a handle of the file that is there already.
std::unique_ptr<ImageFile> readFromMedium(UniqueFile file, const std::string& path) {
    if (!file) {
        return nullptr;
    }
    UniqueFile medium = openFile(path, GENERIC_READ, kShareAll, OPEN_EXISTING, FILE_FLAG_NO_BUFFERING);
    if (!medium) {
        return std::make_unique<WindowsImageFile>(std::move(file));
    }
    return std::make_unique<MediumImageFile>(std::move(file), std::move(medium));
}

std::unique_ptr<ImageFile> openSource(const std::string& path) {
    UniqueFile file = openFile(path, kReading, FILE_SHARE_READ, OPEN_EXISTING);
    return file ? std::make_unique<WindowsImageFile>(std::move(file)) : nullptr;
}

} // namespace

std::unique_ptr<ImageFile> openWindowsImage(const std::string& path, ImageUse use) {
    switch (use) {
    case ImageUse::kNew:
        return openNew(path);
    case ImageUse::kAgain:
        return readFromMedium(openOwn(path, OPEN_EXISTING), path);
    case ImageUse::kCheck:
        return readFromMedium(openFile(path, kReading, kShareAll, OPEN_EXISTING), path);
    case ImageUse::kSource:
        break;
    }
    return openSource(path);
}

} // namespace torvane
