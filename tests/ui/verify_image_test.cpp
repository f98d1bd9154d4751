#include "tests/ui/copy_ui_test.h"
#include "tests/ui/driver/input.h"
#include "tests/ui/expect_soon.h"

#include <gmock/gmock.h>

#include <string>

namespace torvane::driver {
namespace {

namespace fs = std::filesystem;

using ::testing::EndsWith;
using ::testing::StartsWith;

constexpr int kAlsoSha256 = 1320;
constexpr int kKnownMd5 = 1322;
constexpr int kMadeMd5 = 1324;
constexpr int kMd5Verdict = 1325;
constexpr int kKnownSha256 = 1327;
constexpr int kMadeSha256 = 1329;
constexpr int kSha256Verdict = 1330;

class VerifyImageTest : public CopyUiTest {
  protected:
    /// A small source: what is shown is a verification.
    [[nodiscard]] BenchFolder layOutBench() const override {
        return copyBench().drive("1-source", R"({"number": 1, "bus": "nvme", "size": "2 MiB", "road": "nvme-query",
            "backing": {"pattern": "noise", "seed": 7},
            "identity": {"product": "SOURCE", "revision": "1", "serial": "SRC-1"}})");
    }

    /// A forensic image with both hash files.
    [[nodiscard]] fs::path makeImage() const {
        const fs::path folder = emptyFolder("verified");
        const CopyDialogWindow dialog = openForensic("SOURCE", folder);
        press(dialog.window().child(kAlsoSha256));
        dialog.start();
        expectBoxOver(dialog, "****** VERIFY HASH ******", "Would you like to Verify the Image HASH?", BoxIcon::kNone,
                      "Yes");
        expectBoxOver(dialog, "****** VERIFY SUCCEEDED ******", "CREATED File has been verified", BoxIcon::kNone, "OK");
        dialog.leave();
        return onlyFile(folder, ".img");
    }
    static std::string text(const CopyDialogWindow& dialog, int id) { return dialog.window().child(id).text(); }
    static void setText(const CopyDialogWindow& dialog, int id, const std::string& text) {
        SendMessageA(dialog.window().child(id).handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    static void expectVerdict(const CopyDialogWindow& dialog, int id, const std::string& verdict) {
        expectSoon([&] { EXPECT_EQ(text(dialog, id), verdict); });
    }
};

TEST_F(VerifyImageTest, FindsTheHashFilesAndComparesTheImageWithThem) {
    const fs::path image = makeImage();
    const std::string line = readFile(image.string() + ".sha256");
    EXPECT_THAT(line, EndsWith(" *" + image.filename().string() + "\n"));

    const CopyDialogWindow dialog = openVerifyImage(image);
    EXPECT_EQ(dialog.window().text(), "Verify Image");
    EXPECT_THAT(text(dialog, kImagePathText), StartsWith("Image: "));
    EXPECT_EQ(text(dialog, kKnownMd5).size(), 32U);
    EXPECT_EQ(text(dialog, kKnownSha256), line.substr(0, 64));
    dialog.start();
    expectBoxOver(dialog, "****** VERIFY SUCCEEDED ******", "CREATED File has been verified", BoxIcon::kNone, "OK");
    EXPECT_EQ(text(dialog, kMadeMd5), text(dialog, kKnownMd5));
    EXPECT_EQ(text(dialog, kMadeSha256), text(dialog, kKnownSha256));
    expectVerdict(dialog, kMd5Verdict, "agrees with the expected one");
    expectVerdict(dialog, kSha256Verdict, "agrees with the expected one");

    // Another MD5, and no SHA-256; as others write it.
    setText(dialog, kKnownMd5, "00:01:02:03:04:05:06:07 08 09 0A 0B 0C 0D 0E 0F");
    setText(dialog, kKnownSha256, "");
    await("the next verification begins", [&] {
        dialog.start();
        return waitUntil([&] { return !dialog.window().enabled(); }, std::chrono::seconds(3));
    });
    expectBoxOver(dialog, "****** VERIFY FAILED ******", "CREATED File has NOT been verified", BoxIcon::kNone, "OK");
    expectVerdict(dialog, kMd5Verdict, "does NOT agree with the expected one");
    EXPECT_EQ(text(dialog, kMadeSha256), "");
    EXPECT_EQ(text(dialog, kSha256Verdict), "");

    setText(dialog, kKnownMd5, "00 01");
    dialog.start();
    expectBoxOver(dialog, "***** DIGEST NOT USABLE *****",
                  "The MD5 has too few digits, or too many. Nothing was read. It has 32 digits", BoxIcon::kStop, "OK");
    dialog.leave();
}

} // namespace
} // namespace torvane::driver
