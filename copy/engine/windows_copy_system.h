#pragma once

#include "copy/engine/copy_system.h"

namespace torvane {

struct AppState;

/// The copy jobs' world as it is: Win32 drives and files, CryptoAPI, the program's boxes, log and drive list.
class WindowsCopySystem : public CopySystem {
  public:
    explicit WindowsCopySystem(AppState& state) : state_(state) {}

    FetchOutcome fetch(const DriveRecord& drive, std::uint64_t offset, std::span<std::byte> bytes) override;
    bool write(DriveRecord& drive, std::uint64_t offset, std::span<const std::byte> bytes) override;
    void cleanDestination() override;

    ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) override;
    std::unique_ptr<ImageFile> createImage(const std::string& path) override;
    std::unique_ptr<ImageFile> reopenImage(const std::string& path) override;
    std::unique_ptr<ImageFile> openImage(const std::string& path) override;
    bool writeTextFile(const std::string& path, std::string_view text) override;

    std::unique_ptr<BlockHasher> makeHasher(HasherFailure& failure) override;

    std::int64_t tick() override;
    LocalMoment now() override;

    void log(const char* category, const std::string& text) override;
    void print(const std::string& line) override;
    void stop(const char* caption, const char* text) override;
    void inform(const char* caption, const char* text) override;
    bool ask(const char* caption, const char* text) override;
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override;

  private:
    AppState& state_;
};

} // namespace torvane
