#include "copy/rescue/leavable_reader.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <future>
#include <memory>

namespace torvane {
namespace {

bool always() {
    return true;
}

TEST(LeavableReader, GivesWhatItsReadGives) {
    LeavableReader reader([](std::uint64_t offset, std::span<std::byte> bytes) {
        std::ranges::fill(bytes, static_cast<std::byte>(offset));
        return offset == 7 ? TransferOutcome::kFailed : TransferOutcome::kWhole;
    });
    std::array<std::byte, 3> bytes{};
    EXPECT_EQ(reader.read(5, bytes, always), TransferOutcome::kWhole);
    EXPECT_EQ(bytes, (std::array{std::byte{5}, std::byte{5}, std::byte{5}}));
    EXPECT_EQ(reader.read(7, bytes, always), TransferOutcome::kFailed);
    EXPECT_EQ(reader.read(6, std::span(bytes).first(1), always), TransferOutcome::kWhole);
    EXPECT_EQ(bytes[0], std::byte{6});
}

TEST(LeavableReader, WaitsForASlowReadAsLongAsItMay) {
    std::atomic<int> looks{0};
    LeavableReader reader([&looks](std::uint64_t, std::span<std::byte>) {
        while (looks < 2) {
            std::this_thread::yield();
        }
        return TransferOutcome::kWhole;
    });
    std::array<std::byte, 1> bytes{};
    EXPECT_EQ(reader.read(0, bytes, [&looks] { return ++looks < 100; }), TransferOutcome::kWhole);
    EXPECT_GE(looks, 2);
}

TEST(LeavableReader, LeavesAReadThatNeverReturnsToItsThread) {
    struct Held {
        std::promise<void> mayEnd;
        std::promise<void> hasEnded;
    };
    const auto held = std::make_shared<Held>();
    const std::weak_ptr<Held> kept = held;
    auto hasEnded = held->hasEnded.get_future();
    {
        auto reader = std::make_unique<LeavableReader>(
            [held = std::make_shared<std::shared_ptr<Held>>(held)](std::uint64_t, std::span<std::byte> bytes) {
                (*held)->mayEnd.get_future().wait();
                std::ranges::fill(bytes, std::byte{1}); // its own memory still
                (*held)->hasEnded.set_value();
                return TransferOutcome::kWhole;
            });
        std::array<std::byte, 100> bytes{};
        EXPECT_EQ(reader->read(0, bytes, [] { return false; }), std::nullopt);
        EXPECT_EQ(bytes[0], std::byte{0});
        EXPECT_EQ(reader->read(0, bytes, always), std::nullopt) << "it cannot be used any more";
    }
    held->mayEnd.set_value();
    hasEnded.wait();
}

} // namespace
} // namespace torvane
