#pragma once

#include "copy/jobs/copy_system.h"

namespace torvane {

struct AppState;

/// The copy jobs' world as it is: diskpart, Win32 files, CryptoAPI and CNG, the program's boxes, log and drive list.
class WindowsCopySystem : public CopySystem {
  public:
    explicit WindowsCopySystem(AppState& state) : state_(state) {}

    bool isStillTheSource(const DriveRecord& drive) override;
    bool isStillTheDestination(const DriveRecord& drive) override;
    void rememberPartitionTable(DriveRecord& drive) override;
    std::optional<std::string> readTableAnew(const DriveRecord& drive) override;

    DiskChange cleanDisk(DriveRecord& drive) override;
    std::vector<std::string> volumesOn(const DriveRecord& drive) override;
    std::optional<bool> isReadOnly(const DriveRecord& drive) override;
    void setDriveStatus(const DriveRecord& drive, const std::string& text) override;

    ImageFileName nextImageName(std::string_view folder, const DriveRecord& source) override;
    bool fileExists(const std::string& path) override;
    std::unique_ptr<ImageFile> openImage(const std::string& path, ImageUse use) override;
    bool writeTextFile(const std::string& path, std::string_view text) override;
    bool saveText(const std::string& path, std::string_view text, TextUse use) override;

    std::unique_ptr<BlockHasher> makeHasher(DigestKind kind, HasherFailure& failure) override;

    std::int64_t tick() override;
    LocalMoment now() override;
    MachineNames machineNames() override;

    void logError(const std::string& text) override;
    void logJob(const std::string& text) override;
    void print(const std::string& line) override;
    void stop(const char* caption, const char* text) override;
    void inform(const char* caption, const char* text) override;
    bool ask(const char* caption, const char* text) override;
    bool askDefaultNo(const char* caption, const char* text) override;

  private:
    AppState& state_;
};

} // namespace torvane
