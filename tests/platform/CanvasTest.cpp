// Canvases: state, clips and the viewport origin; XOR drawing that undoes itself; pictures drawn
// straight from pixel rows; recordings; and JPEG blocks that go into a PDF file untouched.

#include <cairo.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <random>

#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/TextLayout.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace Orvanta::Platform;
using namespace OrvantaTest;

namespace {

// A white image canvas and its pixels as COLORREFs.
struct ImageCanvas {
    cairo_surface_t* surface;
    std::unique_ptr<Canvas> canvas;
    ImageCanvas(int width, int height)
        : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)) {
        canvas = std::make_unique<Canvas>(surface, Canvas::Kind::Bitmap);
        canvas->fillRect(CRect(0, 0, width, height), RGB(255, 255, 255));
    }
    ~ImageCanvas() {
        canvas.reset();
        cairo_surface_destroy(surface);
    }
    COLORREF at(int x, int y) const {
        cairo_surface_flush(surface);
        const auto* p =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface) + x * 4;
        return RGB(p[2], p[1], p[0]);
    }
    std::vector<COLORREF> all() const {
        std::vector<COLORREF> out;
        for (int y = 0; y < cairo_image_surface_get_height(surface); ++y)
            for (int x = 0; x < cairo_image_surface_get_width(surface); ++x) out.push_back(at(x, y));
        return out;
    }
};

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kRed = RGB(255, 0, 0);

TEST(CanvasTest, ClipsAndOriginsAreKeptInDeviceSpaceAndRestored) {
    struct Case {
        const char* what;
        std::function<void(Canvas&)> draw;
        std::vector<std::pair<CPoint, COLORREF>> probes;
    } cases[] = {
        {"viewport origin moves drawing",
         [](Canvas& c) {
             c.setViewportOrigin(CPoint(10, 5));
             c.fillRect(CRect(0, 0, 4, 4), kRed);
         },
         {{CPoint(10, 5), kRed}, {CPoint(13, 8), kRed}, {CPoint(14, 9), kWhite}, {CPoint(0, 0), kWhite}}},
        {"a clip set before the origin moves stays put",
         [](Canvas& c) {
             c.intersectClipRect(CRect(0, 0, 12, 12));
             c.setViewportOrigin(CPoint(8, 8));
             c.fillRect(CRect(0, 0, 10, 10), kRed);
             EXPECT_EQ(c.getClipBox(), CRect(-8, -8, 4, 4));
         },
         {{CPoint(8, 8), kRed}, {CPoint(11, 11), kRed}, {CPoint(12, 12), kWhite}}},
        {"restore brings back the clip and the origin",
         [](Canvas& c) {
             const int level = c.save();
             c.setViewportOrigin(CPoint(20, 20));
             c.intersectClipRect(CRect(0, 0, 2, 2));
             c.restore(level);
             c.fillRect(CRect(0, 0, 30, 30), kRed);
         },
         {{CPoint(0, 0), kRed}, {CPoint(29, 29), kRed}}},
        {"a clip region replaces the clip",
         [](Canvas& c) {
             c.intersectClipRect(CRect(0, 0, 5, 5));
             Region region(CRect(20, 0, 25, 5));
             region.unite(CRect(0, 20, 5, 25));
             c.selectClipRegion(&region);
             c.fillRect(CRect(0, 0, 30, 30), kRed);
         },
         {{CPoint(2, 2), kWhite}, {CPoint(22, 2), kRed}, {CPoint(2, 22), kRed}, {CPoint(22, 22), kWhite}}},
        {"a frame is drawn inside the rectangle",
         [](Canvas& c) { c.frameRect(CRect(2, 2, 12, 12), kRed, 2); },
         {{CPoint(2, 2), kRed},
          {CPoint(3, 3), kRed},
          {CPoint(4, 4), kWhite},
          {CPoint(11, 11), kRed},
          {CPoint(12, 12), kWhite}}},
    };
    for (const Case& c : cases) {
        ImageCanvas image(32, 32);
        c.draw(*image.canvas);
        for (const auto& [point, colour] : c.probes)
            EXPECT_EQ(image.at(point.x, point.y), colour) << c.what << " at " << point.x << "," << point.y;
    }
}

TEST(CanvasTest, XorDrawingTwiceLeavesThePicture) {
    ImageCanvas image(40, 30);
    std::mt19937 rng(3);
    for (int i = 0; i < 30; ++i)
        image.canvas->fillRect(CRect(rng() % 40, rng() % 30, rng() % 40 + 1, rng() % 30 + 1),
                               RGB(rng() % 256, rng() % 256, rng() % 256));
    const auto before = image.all();
    image.canvas->setXorMode(true);
    image.canvas->setNullBrush();
    image.canvas->setPen(0, 1, Canvas::PenStyle::Dot);
    for (int pass = 0; pass < 2; ++pass) {
        image.canvas->rectangle(CRect(3, 4, 30, 25));
        image.canvas->fillRect(CRect(10, 10, 20, 15), 0);
        image.canvas->moveTo(CPoint(0, 29));
        image.canvas->lineTo(CPoint(39, 29));
        if (pass == 0) {
            EXPECT_NE(image.all(), before);
        }
    }
    EXPECT_EQ(image.all(), before);
}

// Rows drawn twice their size with the nearest pixel: each source pixel becomes a 2x2 block. The
// source rectangle's y counts from the bottom edge, whichever way the rows are stored.
TEST(CanvasTest, StretchingFromRowsTakesTheNearestPixelOrFilters) {
    for (int channels : {3, 4}) {
        for (bool bottomUp : {false, true}) {
            OwnedPtr<Dib> dib = makeDib(
                6, 5,
                [](int x, int y) {
                    return Rgb{x * 40, y * 50, 7};
                },
                channels);
            BITMAPINFO info = *dib->getBitmapInfo();
            std::vector<unsigned char> rows(dib->getBits(), dib->getBits() + dib->getBitsSize());
            if (bottomUp) {
                const int stride = Dib::strideFor(6, channels);
                for (int y = 0; y < 5; ++y)
                    std::copy_n(dib->getBits() + y * stride, stride, rows.begin() + (4 - y) * stride);
                info.bmiHeader.biHeight = 5;
            }
            ImageCanvas image(20, 20);
            image.canvas->setStretchMode(COLORONCOLOR);
            // Source (1, 1)-(5, 4) from the bottom: columns 1..4, top rows 0..2.
            EXPECT_EQ(image.canvas->stretchDIBits(2, 2, 8, 6, 1, 2, 4, 3, rows.data(), info), 3);
            for (int y = 0; y < 6; ++y)
                for (int x = 0; x < 8; ++x)
                    ASSERT_EQ(image.at(2 + x, 2 + y), RGB((1 + x / 2) * 40, (y / 2) * 50, 7))
                        << channels << " " << bottomUp << " at " << x << "," << y;
            EXPECT_EQ(image.at(1, 1), kWhite);
            EXPECT_EQ(image.at(10, 8), kWhite);
        }
    }
    // Filtered, a fine checkerboard shrunk four times is its mean grey.
    OwnedPtr<Dib> board = makeDib(16, 16, [](int x, int y) {
        return (x + y) % 2 ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
    });
    OwnedPtr<Image> picture = Image::create(board, false);
    ImageCanvas image(8, 8);
    picture->draw(image.canvas.get(), 0, 0, 4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) {
            const int grey = GetRValue(image.at(x, y));
            EXPECT_NEAR(grey, 128, 2) << x << "," << y;
        }
}

TEST(CanvasTest, ARecordingReplaysAsDrawnDirectly) {
    auto draw = [](Canvas& c) {
        c.fillRect(CRect(1, 1, 20, 12), RGB(10, 200, 30));
        c.setPen(RGB(200, 0, 200), 2);
        c.setBrush(RGB(0, 0, 255));
        c.rectangle(CRect(5, 5, 25, 18));
        c.setTextColor(RGB(0, 0, 0));
        CRect text(0, 0, 30, 20);
        c.drawText(u"Ab", &text, DT_LEFT | DT_SINGLELINE);
    };
    ImageCanvas direct(30, 20);
    draw(*direct.canvas);
    auto recording = Canvas::createRecording(CRect(0, 0, 30, 20));
    draw(*recording);
    ImageCanvas replayed(30, 20);
    recording->replayOnto(*replayed.canvas, CPoint());
    EXPECT_EQ(replayed.all(), direct.all());
}

TEST(CanvasTest, TextIsMeasuredAndDrawnInsideItsRectangle) {
    UiHarness::useTestEnvironment();
    ImageCanvas image(120, 40);
    CRect measured(0, 0, 0, 0);
    image.canvas->drawText(u"Photos", &measured, DT_CALCRECT | DT_SINGLELINE);
    EXPECT_EQ(measured.size(), TextLayout(u"Photos", FontDescription::defaultFont()).getSize());
    EXPECT_EQ(image.all(), std::vector<COLORREF>(120 * 40, kWhite));  // measuring draws nothing
    CRect box(10, 10, 30, 30);
    image.canvas->drawText(u"Photos and more", &box, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
    int inked = 0;
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 120; ++x)
            if (image.at(x, y) != kWhite) {
                ++inked;
                EXPECT_TRUE(box.contains(CPoint(x, y))) << x << "," << y;
            }
    EXPECT_GT(inked, 20);
}

std::string makeJpeg(const TempDir& dir) {
    const std::string path = dir.file("source.jpg");
    const std::string command = "convert -size 64x48 gradient:red-blue -quality 85 " + path + " 2>/dev/null";
    return std::system(command.c_str()) == 0 ? readFileBytes(path) : std::string();
}

TEST(CanvasTest, AJpegBlockGoesIntoAPdfPageUntouched) {
    TempDir dir;
    std::string jpeg = makeJpeg(dir);
    if (jpeg.empty() || std::system("command -v pdfimages >/dev/null") != 0)
        GTEST_SKIP() << "ImageMagick's convert or poppler's pdfimages is not installed";
    std::string pdf;
    auto page = Canvas::createPdf(
        [&pdf](const unsigned char* data, unsigned length) {
            pdf.append(reinterpret_cast<const char*>(data), length);
            return true;
        },
        300, 200);
    ASSERT_TRUE(page);
    EXPECT_TRUE(canDrawJpegDirect(page.get(), jpeg.data(), static_cast<int>(jpeg.size())));
    EXPECT_FALSE(canDrawJpegDirect(page.get(), pdf.data(), 0));
    EXPECT_TRUE(
        Image::drawJpegDirect(page.get(), 20, 30, jpeg.data(), static_cast<int>(jpeg.size()), 64, 48, 2.5));
    page->finish();
    writeFileBytes(dir.file("page.pdf"), pdf);
    ASSERT_EQ(std::system(("pdfimages -j " + dir.file("page.pdf") + " " + dir.file("out")).c_str()), 0);
    EXPECT_EQ(readFileBytes(dir.file("out-000.jpg")), jpeg);

    // Anywhere else, the block is refused and nothing is drawn.
    ImageCanvas image(10, 10);
    EXPECT_FALSE(canDrawJpegDirect(image.canvas.get(), jpeg.data(), static_cast<int>(jpeg.size())));
    EXPECT_FALSE(Image::drawJpegDirect(image.canvas.get(), 0, 0, jpeg.data(), static_cast<int>(jpeg.size()),
                                       64, 48, 1.0));
    auto recording = Canvas::createRecording(CRect(0, 0, 10, 10));
    EXPECT_FALSE(canDrawJpegDirect(recording.get(), jpeg.data(), static_cast<int>(jpeg.size())));
}

}  // namespace
