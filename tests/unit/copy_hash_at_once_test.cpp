#include "copy/engine/hash_at_once.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <future>
#include <string>

namespace torvane {
namespace {

/// Keeps what it was given, or fails; waits for the other one where it is told to.
class RecordingHasher : public BlockHasher {
  public:
    bool add(std::span<const std::byte> bytes) override {
        begun.set_value();
        if (waitsFor != nullptr) {
            waitsFor->get_future().get();
        }
        std::ranges::transform(bytes, std::back_inserter(text), [](std::byte each) { return static_cast<char>(each); });
        return adds;
    }
    bool finish(std::span<std::uint8_t> digest) override {
        std::ranges::fill(digest, std::uint8_t{7});
        return adds;
    }

    std::string text;
    bool adds = true;
    std::promise<void> begun;
    std::promise<void>* waitsFor = nullptr;
};

constexpr std::array kBytes{std::byte{'a'}, std::byte{'b'}};

TEST(HashAtOnce, GivesBothTheBytes) {
    RecordingHasher first;
    RecordingHasher second;
    const AddedAtOnce added = addAtOnce(&first, &second, kBytes);
    EXPECT_TRUE(added.first);
    EXPECT_TRUE(added.second);
    EXPECT_EQ(first.text, "ab");
    EXPECT_EQ(second.text, "ab");
}

// Neither would end if it had to wait until the other is done.
TEST(HashAtOnce, BothAreAtWorkAtOnce) {
    RecordingHasher first;
    RecordingHasher second;
    first.waitsFor = &second.begun;
    second.waitsFor = &first.begun;
    const AddedAtOnce added = addAtOnce(&first, &second, kBytes);
    EXPECT_TRUE(added.first && added.second);
}

TEST(HashAtOnce, TellsWhichHasFailed) {
    RecordingHasher good;
    RecordingHasher bad;
    bad.adds = false;
    const AddedAtOnce added = addAtOnce(&good, &bad, kBytes);
    EXPECT_TRUE(added.first);
    EXPECT_FALSE(added.second);
    RecordingHasher other;
    RecordingHasher alsoBad;
    alsoBad.adds = false;
    EXPECT_FALSE(addAtOnce(&alsoBad, &other, kBytes).first);
}

TEST(HashAtOnce, WithoutOneOfThemGivesTheOther) {
    RecordingHasher first;
    EXPECT_TRUE(addAtOnce(&first, nullptr, kBytes).second);
    EXPECT_EQ(first.text, "ab");
    RecordingHasher second;
    second.adds = false;
    const AddedAtOnce added = addAtOnce(nullptr, &second, kBytes);
    EXPECT_TRUE(added.first);
    EXPECT_FALSE(added.second);
    EXPECT_EQ(second.text, "ab");
}

TEST(HashAtOnce, ADigestThatIsRefusedIsNone) {
    RecordingHasher hasher;
    Md5Digest sevens{};
    sevens.fill(7);
    EXPECT_EQ(digestOf<Md5Digest>(hasher), sevens);
    hasher.adds = false;
    EXPECT_EQ(digestOf<Sha256Digest>(hasher), std::nullopt);
}

} // namespace
} // namespace torvane
