#pragma once

#include "discovery/drive_io.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace torvane::testing {

/// A drive of any size without a byte of memory: every 512 bytes repeat their number as "LBA=" and twelve digits, and
/// what is written is remembered alone. `fate` decides how a transfer ends.
class PatternedDrive : public DriveIo {
  public:
    struct Transfer {
        std::uint64_t offset;
        std::size_t length;

        bool operator==(const Transfer&) const = default;
    };

    bool canReach(const DriveRecord&, std::uint64_t offset) override {
        return fate(offset) != TransferOutcome::kNotReached;
    }

    TransferOutcome read(const DriveRecord&, std::uint64_t offset, std::span<std::byte> bytes) override {
        reads.push_back({offset, bytes.size()});
        const TransferOutcome outcome = fate(offset);
        // A read that fails has moved something nevertheless.
        const std::size_t moved = outcome == TransferOutcome::kWhole ? bytes.size() : bytes.size() / 3;
        for (std::size_t i = 0; i < moved; ++i) {
            bytes[i] = byteAt(offset + i);
        }
        return outcome;
    }

    TransferOutcome write(const DriveRecord&, std::uint64_t offset, std::span<const std::byte> bytes) override {
        writes.push_back({offset, bytes.size()});
        return fate(offset);
    }

    TransferOutcome flush(const DriveRecord&) override {
        ++flushes;
        return flushFate;
    }

    static std::string textOf(std::span<const std::byte> bytes) {
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    std::function<TransferOutcome(std::uint64_t offset)> fate = [](std::uint64_t) { return TransferOutcome::kWhole; };
    std::vector<Transfer> reads;
    std::vector<Transfer> writes;
    TransferOutcome flushFate = TransferOutcome::kWhole;
    std::atomic<int> flushes{0};

  private:
    static std::byte byteAt(std::uint64_t offset) {
        char text[32];
        std::snprintf(text, sizeof text, "LBA=%012llu", static_cast<unsigned long long>(offset / 512));
        return static_cast<std::byte>(text[offset % 16]);
    }
};

} // namespace torvane::testing
