// Desktop: the wallpaper's size for each style (the examples a reader can check by hand), the file's
// format following its extension, and needsCrop's shape rule. The screen's size from the display,
// the desktop's settings and a picture of the screen's shape filled or fitted are tested through
// `orvanta wallpaper`, in processes of their own.

#include "orvanta/desktop/Desktop.h"

#include <gtest/gtest.h>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class DesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        orvantaIUInit();
        Desktop::setSize(CSize(1024, 768));
    }
    void TearDown() override { Desktop::setSize(CSize(0, 0)); }

    // The picture in the file, read back through its codec.
    static Dib* readBack(const CString& path) {
        auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(path));
        return codec->read(path, nullptr, 0, 0);
    }

    TempDir dir;
};

const Rgb kRed{200, 30, 40}, kGreen{0, 255, 0};

}  // namespace

TEST_F(DesktopTest, TheWallpaperIsThePictureScaledByTheStyleToTheScreenNeverCropped) {
    struct Row {
        int width, height, style, wallpaperWidth, wallpaperHeight;
    };
    for (const Row& row : std::initializer_list<Row>{{1600, 1200, Desktop::kFit, 1024, 768},
                                                     {1000, 1000, Desktop::kFit, 768, 768},
                                                     {1000, 1000, Desktop::kFill, 1024, 1024},
                                                     {1000, 1000, 7, 768, 768},  // anything but fill fits
                                                     {300, 1000, Desktop::kFit, 230, 768}}) {  // 230.4 cut
        SCOPED_TRACE(::testing::Message() << row.width << "x" << row.height << " style " << row.style);
        OwnedPtr<Dib> picture = makeDib(row.width, row.height, [](int, int) { return kRed; });
        const CString path = dir.wide("wallpaper.bmp");
        ASSERT_TRUE(Desktop::createWallpaper(picture, path, static_cast<Desktop::Style>(row.style),
                                             RGB(kGreen.r, kGreen.g, kGreen.b)));
        OwnedPtr<Dib> wallpaper = readBack(path);
        ASSERT_EQ(CSize(row.wallpaperWidth, row.wallpaperHeight), wallpaper->getSize());
        // The picture covers all of it: the fill colour shows nowhere.
        EXPECT_EQ(kRed, pixelAt(wallpaper, 0, 0));
        EXPECT_EQ(kRed, pixelAt(wallpaper, row.wallpaperWidth - 1, row.wallpaperHeight - 1));
    }
    OwnedPtr<Dib> line = makeDib(4000, 1, [](int, int) { return kRed; });
    EXPECT_FALSE(Desktop::createWallpaper(line, dir.wide("line.bmp"), Desktop::kFit, 0)) << "0 rows high";
}

TEST_F(DesktopTest, TheFileIsWrittenInTheFormatOfItsExtensionByAnImageCodecOnly) {
    OwnedPtr<Dib> picture = makeDib(64, 48, [](int x, int y) { return Rgb{x * 4, y * 5, 9}; });
    ASSERT_TRUE(Desktop::writeAsBmp(picture, dir.wide("wallpaper.jpg")));
    EXPECT_EQ(std::string("\xFF\xD8\xFF"), readFileBytes(dir.file("wallpaper.jpg")).substr(0, 3));
    EXPECT_FALSE(Desktop::writeAsBmp(picture, dir.wide("wallpaper.txt")));
    EXPECT_FALSE(Desktop::writeAsBmp(picture, dir.wide("wallpaper.avi")))
        << "a video codec writes no picture";
    EXPECT_FALSE(Desktop::writeAsBmp(picture, dir.wide("missing/wallpaper.bmp")));
}

TEST_F(DesktopTest, NeedsCropIsTrueForAPictureOfTheScreensShape) {
    for (const auto& [width, height, sameShape] :
         {std::tuple{800, 600, true}, {2048, 1536, true}, {900, 600, false}, {768, 1024, false}}) {
        OwnedPtr<Dib> picture = makeDib(width, height, [](int, int) { return kGreen; });
        const CString path = dir.wide("picture.bmp");
        ASSERT_TRUE(Desktop::writeAsBmp(picture, path));
        EXPECT_EQ(sameShape, Desktop::needsCrop(path)) << width << "x" << height;
    }
    EXPECT_FALSE(Desktop::needsCrop(dir.wide("missing.bmp")));
}
