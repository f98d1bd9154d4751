#pragma once

#include "copy/rescue/rescue_run.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace torvane {

struct DriveRecord;

/// The drive that is rescued, by a handle of its own.
class RescueDrive {
  public:
    virtual ~RescueDrive() = default;

    /// As `RescueSource::read`. A read that does not come back is left once `mayWait`, which is asked several times a
    /// second, says no.
    [[nodiscard]] virtual SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes,
                                            const std::function<bool()>& mayWait) = 0;

    /// Looks for the same drive, whatever its number is by now. True: it is read there from now on. Another drive that
    /// does not answer holds the look up, which is left as a read is.
    [[nodiscard]] virtual bool findAgain(const std::function<bool()>& mayWait) = 0;
};

/// An image that is rescued to.
class RescueImage : public RescueTarget {
  public:
    /// Bytes.
    [[nodiscard]] virtual std::uint64_t size() = 0;
    /// False where its file system fills up with zeros what lies before a byte that is written.
    [[nodiscard]] virtual bool keepsHoles() = 0;
    /// Fills the whole span, or fails.
    [[nodiscard]] virtual bool read(std::uint64_t offset, std::span<std::byte> bytes) = 0;
};

/// What a rescue needs of the system beside what all copies do (`CopySystem`).
class RescueSystem {
  public:
    virtual ~RescueSystem() = default;

    /// By its number, which it was just found to have. `destination`, where there is one, is never taken for it later.
    /// Null when the drive is not there.
    [[nodiscard]] virtual std::unique_ptr<RescueDrive> openDrive(const DriveRecord& drive,
                                                                 const DriveRecord* destination) = 0;

    /// An image that exists, to be written in any order; nobody else may write to it meanwhile. Null when it cannot be
    /// opened.
    [[nodiscard]] virtual std::unique_ptr<RescueImage> openImage(const std::string& path) = 0;

    /// None when there is no such file, or when it is larger than any map or record.
    [[nodiscard]] virtual std::optional<std::string> readText(const std::string& path) = 0;

    /// Between two looks for a drive that has gone.
    virtual void pause() = 0;
};

} // namespace torvane
