#pragma once

#include "admin/disk_part.h"
#include "base/helper_thread.h"
#include "base/tool_watch.h"
#include "records/drive_record.h"
#include "scan/stop_grace.h"
#include "state/held_log_rows.h"
#include "state/scan_tables.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace torvane {

class JobClaim;
class ScanWatch;

/// What of a drive can be asked before its turn in the scan.
struct DriveQuestions {
    std::function<DriveRecordPtr(std::int32_t driveNumber)> probe; ///< null: there is no such drive
    std::function<ReadOnlyAnswer(std::int32_t driveNumber)> askReadOnly;
};

/// Asks the drives one after the other while the scan waits for their reports: probes each, and asks for its read-only
/// attribute. The scan's thread takes the answers in the same order, and finds rows and records as if it had asked in
/// each drive's turn: rows are held back until then.
///
/// Another thread asks. Where the system has no room for one, each question is asked when its answer is taken.
class DrivesAhead {
  public:
    using StartThread = std::function<std::thread(std::function<void()>)>;

    /// Begins. A stop of the claim's job ends the tool at work as it ends the scan's own (scan/stop_grace.h), and no
    /// other begins. `watch` is asked to show for whom the scan waits.
    DrivesAhead(DriveQuestions questions, const JobClaim& claim, ScanWatch& watch,
                const StartThread& start = &startHelperThread<std::function<void()>>);
    /// Waits for the question at work; asks no other.
    ~DrivesAhead();
    DrivesAhead(const DrivesAhead&) = delete;
    DrivesAhead& operator=(const DrivesAhead&) = delete;

    /// The record of the drive, with the rows of its probe. Null when there is no such drive.
    [[nodiscard]] DriveRecordPtr takeDrive(std::int32_t driveNumber);

    /// The answer of a drive that was taken, with the rows of the question. Nothing is loaded when it was not asked
    /// because the scan was stopped.
    [[nodiscard]] ReadOnlyAnswer takeReadOnly(std::int32_t driveNumber);

  private:
    /// What the asking thread's tools are told. Asked on that thread; the scan's asks who is at work.
    class Watch : public ToolWatch {
      public:
        explicit Watch(const JobClaim& claim) : claim_(claim), grace_(claim) {}
        [[nodiscard]] bool mayBegin() override;
        [[nodiscard]] bool mayGoOn(const ToolAtWork& tool) override;
        void ended() override;
        [[nodiscard]] std::optional<ToolAtWork> atWork();

      private:
        const JobClaim& claim_;
        StopGrace grace_;
        std::mutex mutex_; ///< for the tool
        std::optional<ToolAtWork> atWork_;
    };

    template <typename Answer>
    struct Question {
        bool answered = false;
        Answer answer{};
        HeldLogRows rows;
    };
    struct Slot {
        Question<DriveRecordPtr> drive;
        Question<ReadOnlyAnswer> readOnly;
    };

    void askAll();
    [[nodiscard]] ReadOnlyAnswer askWatched(std::int32_t driveNumber);
    template <typename Answer, typename Ask>
    void answer(Question<Answer>& question, Ask ask);
    template <typename Answer>
    [[nodiscard]] Answer take(Question<Answer>& question);
    [[nodiscard]] Slot& slot(std::int32_t driveNumber) { return slots_[static_cast<std::size_t>(driveNumber)]; }
    [[nodiscard]] bool ending();

    DriveQuestions questions_;
    ScanWatch& scanWatch_;
    Watch watch_;

    std::mutex mutex_; ///< for all below but the thread
    std::condition_variable changed_;
    std::array<Slot, kMaxDrives> slots_;
    bool ending_ = false;

    std::thread thread_; // last: it uses all of the above at once
};

} // namespace torvane
