#include "tests/ui/driver/bench_folder.h"
#include "tests/ui/driver/shipped_resources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <filesystem>

namespace torvane::driver {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::UnorderedElementsAre;

// What the system reads in the program's file before it runs a line of it.

TEST(ShippedManifestTest, AsksForAnAdministrator) {
    EXPECT_THAT(shippedManifest(),
                HasSubstr(R"(<requestedExecutionLevel level="requireAdministrator" uiAccess="false"/>)"));
}

TEST(ShippedManifestTest, TakesTheCommonControlsOfVersionSix) {
    EXPECT_THAT(
        shippedManifest(),
        HasSubstr(R"(<assemblyIdentity type="win32" name="Microsoft.Windows.Common-Controls" version="6.0.0.0")"));
}

TEST(ShippedManifestTest, HasUtf8AsItsCodePage) {
    EXPECT_THAT(shippedManifest(),
                HasSubstr(R"(<activeCodePage xmlns="http://schemas.microsoft.com/SMI/2019/WindowsSettings">UTF-8<)"));
}

TEST(ShippedManifestTest, ScalesItselfForEachMonitor) {
    EXPECT_THAT(
        shippedManifest(),
        HasSubstr(
            R"(<dpiAwareness xmlns="http://schemas.microsoft.com/SMI/2016/WindowsSettings">PerMonitorV2, System<)"));
    EXPECT_THAT(shippedManifest(),
                HasSubstr(R"(<dpiAware xmlns="http://schemas.microsoft.com/SMI/2005/WindowsSettings">true<)"));
    EXPECT_THAT(shippedManifest(), Not(HasSubstr("gdiScaling"))) << "the system would scale once more";
}

TEST(ShippedVersionTest, NamesTheProgramAndItsVersion) {
    const ShippedVersion version = shippedVersion();
    EXPECT_EQ(version.file, "1.2.0.0");
    EXPECT_EQ(version.product, "1.2.0.0");
    EXPECT_EQ(version.fileText, "1.2.0.0");
    EXPECT_THAT(version.productText, MatchesRegex(R"(1\.2\.0\+\w+-?\w*)")) << "with the build behind it";
    EXPECT_EQ(version.productName, "Torvane");
    EXPECT_EQ(version.description, "Torvane: examine, rescue and prepare drives");
    EXPECT_EQ(version.originalFileName, "Torvane.exe");
}

TEST(ShippedIconTest, HasAPictureForEveryPlaceThatShowsIt) {
    EXPECT_THAT(shippedIconWidths(), UnorderedElementsAre(16, 20, 24, 32, 40, 48, 64, 256));
}

TEST(ShippedArtworkTest, HasLargerRenderingsOfEveryPictureBesideTheProgram) {
    int pictures = 0;
    for (const auto& file : std::filesystem::directory_iterator(packageFolder())) {
        if (file.path().extension() != ".png") {
            continue;
        }
        ++pictures;
        const PngSize size = pngSize(readFile(file.path()));
        for (const int dpi : {120, 144, 192}) {
            const PngSize scaled{MulDiv(size.width, dpi, 96), MulDiv(size.height, dpi, 96)};
            EXPECT_TRUE(shippedRenderingSize(file.path().filename().string(), dpi) == scaled) << file.path() << dpi;
        }
    }
    EXPECT_EQ(pictures, 27);
}

TEST(ShippedArtworkTest, HasLargerRenderingsOfItsTutorial) {
    EXPECT_TRUE((shippedRenderingSize("tutorial.png", 120) == PngSize{800, 525}));
    EXPECT_TRUE((shippedRenderingSize("tutorial.png", 144) == PngSize{960, 630}));
    EXPECT_TRUE((shippedRenderingSize("tutorial.png", 192) == PngSize{1280, 840}));
}

} // namespace
} // namespace torvane::driver
