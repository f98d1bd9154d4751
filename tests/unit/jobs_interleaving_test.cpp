#include "jobs/jobs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// Several threads do at random what jobs do. In every other round each step is taken together with one of a model, and
// all that can be asked must be answered as the model does; in the rounds between, the threads run freely, and what
// must hold in any interleaving is looked at.

namespace torvane {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 2500;
constexpr int kHistoriesOfAThread = 10; // in one round: 100,000 in all
constexpr int kStepsOfAHistory = 8;

bool isDriveJob(JobKind kind) {
    return kind == JobKind::kClone || kind == JobKind::kImage || kind == JobKind::kForensicImage ||
           kind == JobKind::kImageToDrive || kind == JobKind::kRescue || kind == JobKind::kDiskChange;
}
bool isReadTest(JobKind kind) {
    return kind == JobKind::kShortTest || kind == JobKind::kCriticalTest || kind == JobKind::kNistTest;
}
bool isStoppableTest(JobKind kind) {
    return kind == JobKind::kCriticalTest || kind == JobKind::kNistTest;
}
bool isShownAsCopy(JobKind kind) {
    return kind == JobKind::kVerifyImage || (isDriveJob(kind) && kind != JobKind::kDiskChange);
}
bool heedsStop(JobKind kind) {
    return kind == JobKind::kScan || isShownAsCopy(kind) || isStoppableTest(kind);
}

/// What `Jobs` must do, told once more: a list of who is at work, one step at a time.
class Model {
  public:
    struct Claim {
        JobKind kind;
        bool up = false;
        bool stopped = false;
        bool leaves = false;
    };

    /// The new claim's name; 0 when somebody is in the way.
    int begin(JobKind kind) {
        if (!mayBegin(kind)) {
            return 0;
        }
        Claim claim{.kind = kind};
        claim.up = kind == JobKind::kScan || kind == JobKind::kDiskChange || isStoppableTest(kind);
        claims_[++last_] = claim;
        return last_;
    }
    bool raise(int name) {
        Claim& claim = claims_.at(name);
        const bool held = atWork(JobKind::kScan) || anyAtWork(isDriveJob) || atWork(JobKind::kVerifyImage);
        claim.up = !claim.stopped && (claim.kind != JobKind::kMounting || !held);
        return claim.up;
    }
    void raiseAnew(int name) {
        claims_.at(name).stopped = false;
        claims_.at(name).up = true;
    }
    void lower(int name) {
        Claim& claim = claims_.at(name);
        if (!claim.up) {
            return;
        }
        claim.up = left_ = false;
        for (auto& [other, each] : claims_) {
            if (isStoppableTest(claim.kind) && isStoppableTest(each.kind) && each.up) {
                each.up = false;
                each.stopped = true;
            }
        }
    }
    void leaveRaised(int name) { claims_.at(name).leaves = true; }
    void end(int name) {
        if (claims_.at(name).up && claims_.at(name).leaves) {
            left_ = true;
        } else {
            lower(name);
        }
        claims_.erase(name);
    }
    void askToStop() {
        left_ = false;
        for (auto& [name, claim] : claims_) {
            claim.up = false;
            claim.stopped = heedsStop(claim.kind);
        }
    }

    [[nodiscard]] const Claim& claim(int name) const { return claims_.at(name); }
    [[nodiscard]] bool active() const {
        return left_ || std::ranges::any_of(claims_, [](const auto& each) { return each.second.up; });
    }
    [[nodiscard]] bool atWork(JobKind kind) const {
        return std::ranges::any_of(claims_, [kind](const auto& each) { return each.second.kind == kind; });
    }
    [[nodiscard]] bool mayBegin(JobKind kind) const {
        const bool waitsForFlag = kind == JobKind::kScan || kind == JobKind::kClone || kind == JobKind::kImageToDrive ||
                                  kind == JobKind::kRescue || kind == JobKind::kVerifyImage ||
                                  kind == JobKind::kDiskChange;
        if (kind == JobKind::kMounting) {
            return true;
        }
        const bool waitsForReadTests = kind == JobKind::kScan || kind == JobKind::kDiskChange;
        return (!waitsForFlag || !active()) && !atWork(JobKind::kScan) &&
               (kind == JobKind::kShortTest || !anyAtWork(isDriveJob)) &&
               (!isShownAsCopy(kind) || !atWork(JobKind::kVerifyImage)) &&
               (!waitsForReadTests || !anyAtWork(isReadTest));
    }

  private:
    [[nodiscard]] bool anyAtWork(bool (*of)(JobKind)) const {
        return std::ranges::any_of(claims_, [of](const auto& each) { return of(each.second.kind); });
    }

    std::map<int, Claim> claims_;
    int last_ = 0;
    bool left_ = false;
};

/// How many of each sort hold a claim: counted behind its begin and before its end, so never too many.
struct Holders {
    std::atomic<int> scans{0};
    std::atomic<int> driveJobs{0};
    std::atomic<int> recordUsers{0};

    void count(JobKind kind, int by) {
        scans += kind == JobKind::kScan ? by : 0;
        driveJobs += isDriveJob(kind) ? by : 0;
        recordUsers += isDriveJob(kind) || isReadTest(kind) ? by : 0;
    }
};

/// Where all threads wait for each other. Not the library's barrier: some runtimes spin in it without an end.
class Meeting {
  public:
    void wait() {
        std::unique_lock lock(mutex_);
        const int own = number_;
        if (++here_ == kThreads) {
            here_ = 0;
            ++number_;
            all_.notify_all();
            return;
        }
        all_.wait(lock, [&] { return number_ != own; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable all_;
    int here_ = 0;
    int number_ = 0; ///< meetings held
};

/// What the threads of one round share.
struct Round {
    bool stepped = false; ///< together with the model
    bool leaves = false;  ///< flags may be left up: otherwise each that is up has its claim
    Jobs jobs;
    std::mutex step; ///< a step and the model's, when stepped
    Model model;
    Holders holders;
};

struct Held {
    JobClaim claim;
    JobKind kind;
    int name; ///< the model's
    bool seenStopped = false;
};

class Worker {
  public:
    Worker(Round& round, std::uint32_t seed) : round_(round), random_(seed) {}

    void run() {
        for (int history = 0; history < kHistoriesOfAThread; ++history) {
            if (history != 0) {
                endAll();
            }
            for (int step = 0; step < kStepsOfAHistory; ++step) {
                takeStep();
            }
        }
    }
    void endAll() {
        while (!held_.empty()) {
            inStep([this] { end(held_.size() - 1); });
        }
    }
    [[nodiscard]] const std::vector<Held>& held() const { return held_; }

  private:
    template <typename Step>
    void inStep(const Step& step) {
        if (!round_.stepped) {
            step();
            checkOwn();
            return;
        }
        const std::lock_guard lock(round_.step);
        step();
        compare();
    }

    void takeStep() {
        const auto what = draw(8);
        inStep([&] {
            if (held_.empty() || what < 3) {
                begin(static_cast<JobKind>(draw(kJobKinds)));
                return;
            }
            const std::size_t which = draw(static_cast<std::uint32_t>(held_.size()));
            switch (what) {
            case 3:
                raise(held_[which]);
                break;
            case 4:
                held_[which].claim.lower();
                model([&] { round_.model.lower(held_[which].name); });
                break;
            case 5:
                leaveOrRaiseAnew(held_[which]);
                break;
            case 6:
                round_.jobs.askToStop();
                model([&] { round_.model.askToStop(); });
                break;
            default:
                end(which);
            }
        });
    }

    void begin(JobKind kind) {
        std::optional<JobClaim> claim = round_.jobs.begin(kind);
        int name = 0;
        model([&] {
            name = round_.model.begin(kind);
            EXPECT_EQ(claim.has_value(), name != 0) << static_cast<int>(kind);
        });
        if (!claim) {
            return;
        }
        round_.holders.count(kind, 1);
        EXPECT_LE(round_.holders.driveJobs, 1);
        EXPECT_TRUE(!(kind == JobKind::kScan) || round_.holders.recordUsers == 0);
        EXPECT_TRUE(!(isDriveJob(kind) || isReadTest(kind)) || round_.holders.scans == 0);
        held_.push_back({std::move(*claim), kind, name});
    }
    void raise(Held& held) {
        const bool up = held.claim.raise();
        EXPECT_FALSE(up && held.seenStopped) << "a stopped job came up again";
        model([&] { EXPECT_EQ(up, round_.model.raise(held.name)); });
    }
    void leaveOrRaiseAnew(Held& held) {
        if (round_.leaves) {
            held.claim.leaveRaised();
            model([&] { round_.model.leaveRaised(held.name); });
        } else if (round_.stepped) { // otherwise who was stopped stays so
            held.claim.raiseAnew();
            round_.model.raiseAnew(held.name);
        }
    }
    void end(std::size_t which) {
        round_.holders.count(held_[which].kind, -1);
        const int name = held_[which].name;
        held_.erase(held_.begin() + static_cast<std::ptrdiff_t>(which)); // the others move
        model([&] { round_.model.end(name); });
    }

    template <typename Step>
    void model(const Step& step) {
        if (round_.stepped) {
            step();
        }
    }

    /// In any interleaving: who was stopped stays so, and whose claim lasts is at work.
    void checkOwn() {
        const JobKinds atWork = round_.jobs.atWork();
        for (Held& held : held_) {
            held.seenStopped = held.seenStopped || held.claim.stopAsked();
            EXPECT_FALSE(held.seenStopped && held.claim.isRaised());
            EXPECT_TRUE(!held.seenStopped || (heedsStop(held.kind) && held.claim.stopAsked()));
            EXPECT_TRUE(atWork.contains(held.kind));
        }
    }
    void compare() {
        EXPECT_EQ(round_.jobs.active(), round_.model.active());
        const auto kind = static_cast<JobKind>(draw(kJobKinds));
        EXPECT_EQ(round_.jobs.atWork().contains(kind), round_.model.atWork(kind)) << static_cast<int>(kind);
        EXPECT_EQ(!round_.jobs.whyNot(kind), round_.model.mayBegin(kind)) << static_cast<int>(kind);
        for (const Held& held : held_) {
            EXPECT_EQ(held.claim.isRaised(), round_.model.claim(held.name).up);
            EXPECT_EQ(held.claim.stopAsked(), round_.model.claim(held.name).stopped);
        }
    }

    std::uint32_t draw(std::uint32_t below) { return static_cast<std::uint32_t>(random_() % below); }

    Round& round_;
    std::mt19937 random_;
    std::vector<Held> held_;
};

/// All threads wait: what is asked is answered from who holds what.
void checkQuiet(Round& round, const std::vector<Worker>& workers) {
    JobKinds atWork;
    bool up = false;
    for (const Worker& worker : workers) {
        for (const Held& held : worker.held()) {
            atWork.add(held.kind);
            up = up || held.claim.isRaised();
        }
    }
    EXPECT_EQ(round.jobs.atWork(), atWork);
    EXPECT_TRUE(!up || round.jobs.active());
    EXPECT_TRUE(up || !round.jobs.active() || round.leaves);
}

void checkEnded(Round& round) {
    EXPECT_TRUE(round.jobs.atWork().empty());
    EXPECT_TRUE(!round.jobs.active() || round.leaves);
    round.jobs.askToStop();
    EXPECT_FALSE(round.jobs.active());
    EXPECT_TRUE(round.jobs.begin(JobKind::kScan));
}

TEST(JobsInterleaving, HoldsWhatItPromisesInAHundredThousandHistories) {
    std::optional<Round> round;
    std::vector<Worker> workers;
    Meeting meeting;
    const auto thread = [&](std::size_t own) {
        for (int number = 0; number < kRounds && !::testing::Test::HasFailure(); ++number) {
            if (own == 0) {
                workers.clear();
                round.emplace();
                round->stepped = number % 2 == 0;
                round->leaves = number % 4 < 2;
                for (int i = 0; i < kThreads; ++i) {
                    workers.emplace_back(*round, static_cast<std::uint32_t>(number * kThreads + i));
                }
            }
            meeting.wait();
            workers[own].run();
            meeting.wait();
            if (own == 0) {
                checkQuiet(*round, workers);
            }
            meeting.wait();
            workers[own].endAll();
            meeting.wait();
            if (own == 0) {
                checkEnded(*round);
            }
            meeting.wait(); // everybody learns alike whether something has failed
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (std::size_t i = 0; i < kThreads; ++i) {
        threads.emplace_back(thread, i);
    }
    for (std::thread& each : threads) {
        each.join();
    }
}

} // namespace
} // namespace torvane
