#pragma once

#include "copy/jobs/copy_job.h"
#include "copy/jobs/job_account.h"
#include "copy/rescue/rescue_system.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace torvane {

/// The source for as long as the rescue is wanted: a read that does not come back, and a drive that has gone, are
/// waited for until somebody asks the job to stop.
class WantedSource : public RescueSource {
  public:
    /// `isTheSource`: whether the drive, which has come back, still holds what was copied of it.
    WantedSource(const CopyJob& job, RescueDrive& drive, std::function<bool()> isTheSource)
        : job_(job), drive_(drive), isTheSource_(std::move(isTheSource)) {}

    SourceAnswer read(std::uint64_t offset, std::span<std::byte> bytes) override;
    bool awaitReturn() override;

  private:
    /// Whether to wait on for what is under way: most of it comes back within seconds of the job's end.
    [[nodiscard]] std::function<bool()> patience() const;

    const CopyJob& job_;
    RescueDrive& drive_;
    std::function<bool()> isTheSource_;
};

/// Shows how the rescue goes, and keeps its map.
class JobWatch : public RescueWatch {
  public:
    JobWatch(const CopyJob& job, JobAccount& account) : job_(job), account_(account) {}

    /// Not when its map cannot be saved any more, either: work that no map tells of is lost with the next crash.
    bool isWanted() override;
    std::int64_t now() override { return job_.system.tick(); }
    bool saveMap(const SourceMap& map, const MapStatus& status) override;
    void show(const RescueFigures& figures, const SourceMap& map) override;

    /// The rescue was ended because its map could not be saved.
    [[nodiscard]] bool hasLostItsMap() const { return lostItsMap_; }

    /// The same as `show`, however lately something was shown.
    void showNow(const RescueFigures& figures, const SourceMap& map);

    /// What has become of it, without a place that is read.
    void showEnd(const RescueFigures& figures, const SourceMap& map);

  private:
    void tell(const RescueFigures& figures, const SourceMap& map, std::optional<std::uint64_t> place);

    const CopyJob& job_;
    JobAccount& account_;
    int unsaved_ = 0; ///< maps in a row that could not be saved
    bool lostItsMap_ = false;
    std::optional<std::int64_t> shownAt_;
    std::uint64_t most_ = 0; ///< bytes rescued; a flush that fails takes some of them back
};

} // namespace torvane
