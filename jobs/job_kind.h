#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace torvane {

/// What may be at work beside the window.
enum class JobKind : std::uint8_t {
    kScan,
    kClone,
    kImage,
    kForensicImage,
    kImageToDrive,
    kRescue,      ///< of a failing drive, into an image or onto another drive
    kVerifyImage, ///< of an image of some day, with its digests
    kDiskChange,  ///< read-only attribute set or cleared, disk cleaned
    kMounting,    ///< automatic mounting enabled or disabled
    kShortTest,
    kCriticalTest,
    kNistTest,
    kCount, ///< how many there are; no kind
};

inline constexpr auto kJobKinds = static_cast<std::size_t>(JobKind::kCount);

/// A set of kinds.
class JobKinds {
  public:
    constexpr JobKinds() = default;
    constexpr JobKinds(std::initializer_list<JobKind> kinds) {
        for (const JobKind kind : kinds) {
            add(kind);
        }
    }

    constexpr void add(JobKind kind) { bits_ |= bit(kind); }

    [[nodiscard]] constexpr bool contains(JobKind kind) const { return (bits_ & bit(kind)) != 0; }
    [[nodiscard]] constexpr bool empty() const { return bits_ == 0; }

    friend constexpr JobKinds operator|(JobKinds a, JobKinds b) { return JobKinds(a.bits_ | b.bits_); }
    friend constexpr JobKinds operator&(JobKinds a, JobKinds b) { return JobKinds(a.bits_ & b.bits_); }
    bool operator==(const JobKinds&) const = default;

  private:
    constexpr explicit JobKinds(std::uint32_t bits) : bits_(bits) {}
    static constexpr std::uint32_t bit(JobKind kind) { return 1U << static_cast<unsigned>(kind); }

    std::uint32_t bits_ = 0;
};

} // namespace torvane
