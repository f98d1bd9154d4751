#include <gtest/gtest.h>

#include <hpdf.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace {

// A PNG of 3 x 2 pixels, 8-bit RGB, all of one colour (W3C Portable Network Graphics: signature, IHDR, IDAT, IEND).
constexpr std::array<unsigned char, 73> kPicture = {
    0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00, 0x00, 0x00,
    0x03, 0x00, 0x00, 0x00, 0x02, 0x08, 0x02, 0x00, 0x00, 0x00, 0x12, 0x16, 0xf1, 0x4d, 0x00, 0x00, 0x00, 0x10, 0x49,
    0x44, 0x41, 0x54, 0x78, 0xda, 0x63, 0x50, 0x48, 0x58, 0x00, 0x41, 0x0c, 0x70, 0x16, 0x00, 0x40, 0x94, 0x06, 0xc1,
    0x70, 0xe7, 0x21, 0x50, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82};

void onError(HPDF_STATUS error, HPDF_STATUS detail, void*) {
    ADD_FAILURE() << "error " << std::hex << error << ", detail " << std::dec << detail;
}

std::string saved(HPDF_Doc document) {
    HPDF_SaveToStream(document);
    std::vector<HPDF_BYTE> bytes(HPDF_GetStreamSize(document));
    auto size = static_cast<HPDF_UINT32>(bytes.size());
    HPDF_ReadFromStream(document, bytes.data(), &size);
    return {bytes.begin(), bytes.begin() + size};
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

// The report's three libraries, linked into a Windows program: a page with text and a picture, compressed.
TEST(PdfLibrary, WritesACompressedPageWithAPicture) {
    HPDF_Doc document = HPDF_New(onError, nullptr);
    ASSERT_NE(document, nullptr);
    HPDF_SetCompressionMode(document, HPDF_COMP_ALL);
    HPDF_Page page = HPDF_AddPage(document);
    HPDF_Image picture = HPDF_LoadPngImageFromMem(document, kPicture.data(), static_cast<HPDF_UINT>(kPicture.size()));
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(HPDF_Image_GetWidth(picture), 3U);
    EXPECT_EQ(HPDF_Image_GetHeight(picture), 2U);
    HPDF_Page_DrawImage(page, picture, 10, 20, 30, 40);
    HPDF_Page_BeginText(page);
    HPDF_Page_SetFontAndSize(page, HPDF_GetFont(document, "Helvetica", nullptr), 12);
    HPDF_Page_TextOut(page, 100, 100, "Torvane");
    HPDF_Page_EndText(page);

    const std::string bytes = saved(document);
    EXPECT_EQ(bytes.substr(0, 5), "%PDF-");
    EXPECT_TRUE(contains(bytes, "/Subtype /Image"));
    EXPECT_TRUE(contains(bytes, "/FlateDecode"));
    EXPECT_TRUE(contains(bytes, "/Helvetica"));
    EXPECT_TRUE(contains(bytes, "%%EOF"));
    HPDF_Free(document);
}
