#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace torvane {

/// A monitoring value that the drive does not report.
inline constexpr std::int32_t kNotReported = -1;

/// The counters that tell a drive's health: raw values of its ATA SMART attributes.
///
/// Every table with something to say of each counter asserts that it names them all: add one here, and the compiler
/// names the tables that have to follow.
enum class Counter : std::uint8_t {
    kReallocatedSectors,    ///< sectors that the drive replaced by spare ones
    kPowerOnHours,          ///< hours
    kReportedUncorrectable, ///< errors that the drive told its host of
    kReallocationEvents,    ///< attempts to replace a sector
    kPendingSectors,        ///< sectors that wait to be replaced
    kOfflineUncorrectable,  ///< sectors that the drive's own scans could not read
    kCount                  ///< how many there are; names no counter
};

inline constexpr auto kCounterCount = static_cast<std::size_t>(Counter::kCount);

/// One value for each counter, born as not reported.
class Counters {
  public:
    constexpr Counters() { fill(kNotReported); }

    constexpr void fill(std::int32_t value) { values_.fill(value); }

    [[nodiscard]] constexpr std::int32_t& operator[](Counter counter) {
        return values_[static_cast<std::size_t>(counter)];
    }
    [[nodiscard]] constexpr std::int32_t operator[](Counter counter) const {
        return values_[static_cast<std::size_t>(counter)];
    }

    friend constexpr bool operator==(const Counters&, const Counters&) = default;

  private:
    std::array<std::int32_t, kCounterCount> values_{};
};

/// For the assertion below a table: true when its rows and `elsewhere`, the counters that something else than the table
/// looks after, name every counter once.
template <typename Rows>
[[nodiscard]] consteval bool namesEachCounterOnce(const Rows& rows, std::initializer_list<Counter> elsewhere = {}) {
    std::array<int, kCounterCount> times{};
    for (const auto& row : rows) {
        ++times[static_cast<std::size_t>(row.counter)];
    }
    for (const Counter counter : elsewhere) {
        ++times[static_cast<std::size_t>(counter)];
    }
    return std::ranges::all_of(times, [](int count) { return count == 1; });
}

} // namespace torvane
