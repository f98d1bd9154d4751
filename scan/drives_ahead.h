#pragma once

#include "admin/disk_part.h"
#include "base/helper_thread.h"
#include "base/tool_watch.h"
#include "records/device_identity.h"
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

/// Asks for the read-only attribute of one drive after the other while the scan waits for their reports. Each is probed
/// for it, which also wakes one that sleeps; of that probe nothing stays but what tells the drive from others. The
/// scan's thread probes each drive itself in its turn, and takes the answer for it: rows are held back until then, and
/// an answer that was given of another drive does not count.
///
/// Another thread asks. Where the system has no room for one, each question is asked when its answer is taken. Two are
/// never asked at once: diskpart's script and its results have one name each.
class DrivesAhead {
  public:
    using StartThread = std::function<std::thread(std::function<void()>)>;

    /// Begins. A stop of the claim's job ends the tool at work as it ends the scan's own (scan/stop_grace.h), and no
    /// other begins. `watch` is asked to show for whom the scan waits.
    DrivesAhead(DriveQuestions questions, const JobClaim& claim, ScanWatch& watch,
                const StartThread& start = &startHelperThread<std::function<void()>>);
    /// As `finish`, but rows that are still held are not told.
    ~DrivesAhead();
    DrivesAhead(const DrivesAhead&) = delete;
    DrivesAhead& operator=(const DrivesAhead&) = delete;

    /// The answer for the drive of a record that was probed just now, after the rows of the questions up to its number.
    /// Drives are taken in the order of their numbers. Asks in the drive's turn where nobody has asked about this very
    /// drive. None when the scan was stopped before; nothing is loaded when it was stopped meanwhile.
    [[nodiscard]] std::optional<ReadOnlyAnswer> takeReadOnly(const DriveRecord& record);

    /// Waits for the probe or the question at work and begins no other; then tells the rows of questions whose answers
    /// nobody has taken. The last call.
    void finish();

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

    /// What tells a drive from another one that got its number.
    struct SeenDrive {
        DeviceIdentity device;
        std::int64_t sizeBytes = 0;
    };
    struct Slot {
        bool passed = false; ///< the asking thread is done with this number
        SeenDrive drive;
        std::optional<ReadOnlyAnswer> answer; ///< none: not asked
        HeldLogRows rows;                     ///< of the question
    };

    void askAll();
    [[nodiscard]] Slot askAbout(std::int32_t driveNumber);
    [[nodiscard]] std::optional<SeenDrive> look(std::int32_t driveNumber) const;
    [[nodiscard]] bool beginQuestion();
    void pass(std::int32_t driveNumber, Slot seen);

    [[nodiscard]] ReadOnlyAnswer askInTurn(std::int32_t driveNumber);
    template <typename Reached>
    void await(Reached reached);
    void giveOutRows(std::int32_t lastNumber);
    void endThread();

    [[nodiscard]] static bool isOf(const SeenDrive& seen, const DriveRecord& record);
    [[nodiscard]] Slot& slot(std::int32_t driveNumber) { return slots_[static_cast<std::size_t>(driveNumber)]; }
    [[nodiscard]] bool ending();

    DriveQuestions questions_;
    ScanWatch& scanWatch_;
    Watch watch_;

    std::mutex mutex_; ///< for all below but the thread; a slot that was passed is the scan's
    std::condition_variable changed_;
    std::array<Slot, kMaxDrives> slots_;
    bool asking_ = false;     ///< the asking thread's question is at work
    bool asksInTurn_ = false; ///< the scan's thread has one of its own, which goes first
    bool ending_ = false;

    std::thread thread_; // last: it uses all of the above at once
};

} // namespace torvane
