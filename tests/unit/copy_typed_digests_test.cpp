#include "copy/dialogs/typed_digests.h"

#include "copy/engine/digest_text.h"
#include "tests/support/scripted_prompts.h"

#include <gtest/gtest.h>

#include <string>

namespace torvane {
namespace {

constexpr const char* kMd5 = "90 01 50 98 3C D2 4F B0 D6 96 3F 7D 28 E1 7F 72";
constexpr const char* kSha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
constexpr const char* kNotUsable = "***** DIGEST NOT USABLE *****";

class TypedDigests : public ::testing::Test {
  protected:
    testing::ScriptedPrompts user_;
};

TEST_F(TypedDigests, MayBeBothOrOne) {
    const auto md5 = digestIn<Md5Digest>(kMd5);
    const auto sha256 = digestIn<Sha256Digest>(kSha256);
    EXPECT_EQ(requireDigests(kMd5, kSha256), (Digests{.md5 = md5, .sha256 = sha256}));
    EXPECT_EQ(requireDigests(kMd5, "  "), (Digests{.md5 = md5, .sha256 = {}}));
    EXPECT_EQ(requireDigests("", kSha256), (Digests{.md5 = {}, .sha256 = sha256}));
}

TEST_F(TypedDigests, MustNotBothBeMissing) {
    user_.expectStop("***** NO DIGEST *****", "There is nothing to compare the image with. Nothing was read. Type or "
                                              "paste its MD5 or its SHA-256");
    EXPECT_EQ(requireDigests("", " "), std::nullopt);
}

TEST_F(TypedDigests, ThatCannotBeReadAreToldOneAtATime) {
    user_.expectStop(kNotUsable, "The MD5 holds a character that is no digit. Nothing was read. It has 32 digits from "
                                 "0 to 9 and from A to F");
    EXPECT_EQ(requireDigests("xyz", "xyz"), std::nullopt);
    user_.expectStop(kNotUsable, "The SHA-256 has too few digits, or too many. Nothing was read. It has 64 digits");
    EXPECT_EQ(requireDigests(kMd5, kMd5), std::nullopt);
}

} // namespace
} // namespace torvane
