#pragma once

#include "jobs/job_kind.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace torvane {

class Jobs;

/// A job's leave to be at work. It travels into the job's thread; where it ends, the job has ended.
///
/// A job shows that it runs by its flag. Who asks it to stop lowers the flag, and for a job that heeds this it stays
/// down whatever others raise meanwhile. The job looks at it when it has moved a block or read a segment.
class JobClaim {
  public:
    JobClaim(JobClaim&& other) noexcept;
    JobClaim& operator=(JobClaim&& other) noexcept;
    JobClaim(const JobClaim&) = delete;
    JobClaim& operator=(const JobClaim&) = delete;
    ~JobClaim();

    /// Raises the flag. False, and the flag stays down, when the job was asked to stop since it began, or when its kind
    /// raises none beside who is at work (`JobFlag::kUnlessHeld`).
    [[nodiscard]] bool raise();

    /// Raises the flag, and forgets that the job was asked to stop: for a second part that the user has agreed to
    /// since.
    void raiseAnew();

    /// Lowers the flag; the job may have more to do with its drives. A flag that was left up goes down with it.
    void lower();

    /// True while the flag is up: the job goes on.
    [[nodiscard]] bool isRaised() const;

    /// True once the job was asked to stop. Never for a kind that pays no heed.
    [[nodiscard]] bool stopAsked() const;

    /// A flag that is up now stays up when the job ends, until somebody asks to stop or another job lowers its own.
    void leaveRaised();

  private:
    friend class Jobs;
    JobClaim(Jobs& jobs, std::uint64_t number) : jobs_(&jobs), number_(number) {}
    void release();

    Jobs* jobs_; ///< null: given away
    std::uint64_t number_;
};

/// Who is at work. Any thread may ask and claim; a question and the claim after it are two things, `begin` is one.
class Jobs {
  public:
    /// What keeps a job from beginning.
    struct Obstacle {
        bool flag = false; ///< a flag is up that the job waits for
        JobKinds kinds;    ///< who is at work that the job waits for

        explicit operator bool() const { return flag || !kinds.empty(); }
    };

    Jobs() = default;
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;

    /// A claim, if nothing stands in the way. The claim must not outlive this.
    [[nodiscard]] std::optional<JobClaim> begin(JobKind kind);

    [[nodiscard]] Obstacle whyNot(JobKind kind) const;

    /// True while a flag is up, be it one that was left up.
    [[nodiscard]] bool active() const;

    /// The kinds that are at work, with and without a flag.
    [[nodiscard]] JobKinds atWork() const;

    /// From now on `changed` is called when a job has begun and when one has ended, on the thread in which it did,
    /// after the fact. To be set once, before any job begins.
    void watch(std::function<void()> changed) { changed_ = std::move(changed); }

    /// Asks every job to stop that heeds it, also one that has not raised its flag yet, and lowers every flag.
    void askToStop();

  private:
    friend class JobClaim;

    struct Entry {
        std::uint64_t number;
        JobKind kind;
        bool flagUp = false;
        bool stopAsked = false;
        bool leavesFlagUp = false;
    };

    [[nodiscard]] std::optional<JobClaim> enter(JobKind kind);
    void erase(std::uint64_t number);
    void tellChange() const;

    // With the mutex held.
    [[nodiscard]] Obstacle obstacleFor(JobKind kind) const;
    [[nodiscard]] JobKinds kindsAtWork() const;
    [[nodiscard]] bool mayRaise(const Entry& entry) const;
    [[nodiscard]] bool anyFlagUp() const;
    [[nodiscard]] Entry& entry(std::uint64_t number);
    void lower(Entry& entry);

    std::function<void()> changed_;
    mutable std::mutex mutex_; ///< for everything below
    std::vector<Entry> entries_;
    std::uint64_t lastNumber_ = 0;
    bool flagLeftUp_ = false;
};

} // namespace torvane
