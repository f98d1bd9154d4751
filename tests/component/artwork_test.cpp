// The pictures that the program carries for fine screens, and how it knows those that lie beside it.

#include "base/checksum.h"
#include "base/scale.h"
#include "resources/resource_ids.h"
#include "tests/component/package_folder.h"
#include "tests/component/scratch_folder.h"
#include "ui/embedded_picture.h"
#include "ui/gdi_plus.h"
#include "ui/shipped_pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace torvane {
namespace {

using ::testing::UnorderedElementsAreArray;

class Artwork : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(gdiPlus_.start()); }

    /// The pictures that lie beside the program.
    [[nodiscard]] static std::vector<std::filesystem::path> shippedFiles() {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(testing::packageFolder())) {
            if (entry.path().extension() == ".png") {
                files.push_back(entry.path());
            }
        }
        return files;
    }

    static PixelSize sizeOf(Gdiplus::Image& picture) {
        return {static_cast<int>(picture.GetWidth()), static_cast<int>(picture.GetHeight())};
    }

    GdiPlusSession gdiPlus_;
};

TEST_F(Artwork, EveryPictureBesideTheProgramHasItsLargerRenderings) {
    ASSERT_GE(shippedFiles().size(), 27U);
    for (const std::filesystem::path& file : shippedFiles()) {
        const std::string name = file.filename().string();
        Gdiplus::Bitmap picture(file.wstring().c_str());
        ASSERT_EQ(picture.GetLastStatus(), Gdiplus::Ok) << name;
        for (const int dpi : kRenderingDpis) {
            const auto rendering = embeddedRendering(name, dpi);
            ASSERT_TRUE(rendering) << name << " at " << dpi;
            EXPECT_TRUE(sizeOf(*rendering) == Scale{dpi}.px(sizeOf(picture))) << name << " at " << dpi;
        }
    }
}

TEST_F(Artwork, TutorialHasItsLargerRenderings) {
    for (const int dpi : kRenderingDpis) {
        const auto rendering = embeddedRendering("tutorial.png", dpi);
        ASSERT_TRUE(rendering) << dpi;
        EXPECT_TRUE(sizeOf(*rendering) == Scale{dpi}.px(PixelSize{640, 420})) << dpi;
    }
}

TEST_F(Artwork, WhatIsNotCarriedIsNoPicture) {
    EXPECT_FALSE(embeddedRendering("race-car.png", 96)) << "the file beside the program is for 96";
    EXPECT_FALSE(embeddedRendering("no-such.png", 144));
    EXPECT_FALSE(embeddedPicture(IDR_TUTORIAL_PICTURE)) << "the test's program has none";
}

TEST_F(Artwork, KnowsThePicturesBesideTheProgramByTheirBytes) {
    std::vector<std::string> files;
    for (const std::filesystem::path& file : shippedFiles()) {
        files.push_back(file.filename().string());
    }
    std::vector<std::string> known;
    for (const ShippedPicture& picture : shippedPictures()) {
        known.emplace_back(picture.name);
        const std::string bytes = testing::readFile((testing::packageFolder() / picture.name).string());
        EXPECT_EQ(picture.size, bytes.size()) << picture.name;
        EXPECT_EQ(picture.checksum, crc32({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}))
            << picture.name;
    }
    EXPECT_THAT(known, UnorderedElementsAreArray(files));
}

} // namespace
} // namespace torvane
