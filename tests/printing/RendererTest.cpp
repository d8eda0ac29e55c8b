// The renderers: boxes by the platform's drawing rules, placeholders, and the roads a picture takes
// to a page: the working copy for the screen, the file decoded no larger than the maximum
// resolution for print, and its JPEG bytes embedded as they are in a PDF when nothing changed them.

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string_view>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/PrintDocument.h"
#include "orvanta/printing/PrintTemplatePageRenderer.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

struct Paper {
    explicit Paper(int size = 20) : dib(DibSection::create(size, size, 4)) {
        canvas = Platform::Canvas::createForBitmap(dib->getHBitmap());
        canvas->fillRect(CRect(0, 0, size, size), 0xFFFFFF);
    }
    bool allWhite() {
        const CSize size = dib->getSize();
        for (int y = 0; y < size.cy; ++y)
            for (int x = 0; x < size.cx; ++x)
                if (pixelAt(dib, x, y) != Rgb{255, 255, 255}) return false;
        return true;
    }
    OwnedPtr<DibSection> dib;
    std::unique_ptr<Platform::Canvas> canvas;
};

constexpr Rgb kWhite{255, 255, 255}, kBlack{0, 0, 0}, kGrey{128, 128, 128};

}  // namespace

// The box (5, 5)-(15, 15) in black over grey: a hairline closes on its right and bottom edges, a wide
// solid pen is centred on the edges, a wide dotted one stays inside the frame. The pixels checked lie
// on the diagonal: "4B" is black at (4, 4); W white, G the grey fill.
TEST(DrawBox, HairlinesCoverTheEdgesWidePensSitOnOrInsideTheFrame) {
    const struct {
        int width;
        bool dotted;
        COLORREF fill;
        const char* diagonal;
    } cases[] = {{1, false, 0x808080, "5B 15B 10G 16W"},
                 {1, true, 0x808080, "5W 6B 14B 15W 10G"},
                 {3, false, 0x808080, "3W 4B 6B 7G 15B 16W"},
                 {3, true, 0x808080, "4W 5B 7B 8G 14B 15W"},
                 {1, false, kNoColor, "10W 15B"}};
    const Rgb kColours[] = {kBlack, kGrey, kWhite};
    for (const auto& c : cases) {
        Paper paper;
        drawBox(paper.canvas.get(), CRect(5, 5, 15, 15), c.fill, c.width, 0, c.dotted);
        std::istringstream points(c.diagonal);
        int at;
        for (char colour; points >> at >> colour;)
            EXPECT_EQ(kColours[std::string_view("BGW").find(colour)], pixelAt(paper.dib, at, at))
                << "width " << c.width << (c.dotted ? " dotted" : "") << " at " << at;
    }
    // A hairline also covers the right edge away from the corner.
    Paper paper;
    drawBox(paper.canvas.get(), CRect(5, 5, 15, 15), 0x808080, 1, 0, false);
    EXPECT_EQ(kBlack, pixelAt(paper.dib, 15, 9));
}

namespace {

class PageRendering : public ::testing::Test {
protected:
    void SetUp() override {
        design = PrintTemplate::create(u"t", u"", 8500, 11000);
        design->addSlot(
            PrintTemplateSlot::create(u"a", CRect(500, 500, 4500, 3500), PrintTemplateSlot::Image, nullptr));
        design->addSlot(
            PrintTemplateSlot::create(u"b", CRect(500, 4000, 4500, 7000), PrintTemplateSlot::Image, nullptr));
        design->addSlot(
            PrintTemplateSlot::create(u"c", CRect(500, 7500, 2500, 9000), PrintTemplateSlot::Image, nullptr));
        page = PrintTemplatePage::create();
        page->setTemplate(design);
        renderer = PrintTemplatePageRenderer::create();
        writeQuadrantJpeg(dir.file("small.jpg"), 640, 480);
        writeQuadrantJpeg(dir.file("large.jpg"), 1600, 1200);
    }
    // The page drawn on Letter at 300 dpi, printable everywhere, into page.pdf.
    void printPage(unsigned maxDpi, bool directJpeg) {
        auto document = Platform::PrintDocument::create(dir.path());
        renderer->draw(document->startPage(DeviceCaps{300, 300, 2550, 3300, 0, 0, 2550, 3300}), 0, 0, page,
                       maxDpi, directJpeg);
        ASSERT_TRUE(document->finish() && document->keepAs(dir.file("page.pdf")));
    }
    void place(const char16_t* slot, const std::string& file) {
        OwnedPtr<Asset> asset = assetOf(dir.file(file));
        page->setAsset(Platform::Canvas::createScreenContext().get(), slot, asset);
    }

    TempDir dir;
    PrivateTemp tmp;  // what the library leaves in the temporary folder shows here
    OwnedPtr<PrintTemplate> design;
    OwnedPtr<PrintTemplatePage> page;
    OwnedPtr<PrintTemplatePageRenderer> renderer;
};

}  // namespace

// At 300 dpi: 640 x 480 in 4 x 3 inches prints at 160 dpi and goes in as the file's bytes; the same
// file turned is encoded anew (480 x 640); 1600 x 1200 in 2 x 1.5 inches (800 dpi) is capped at
// 300 dpi: 600 x 450, encoded anew. No temporary file stays.
TEST_F(PageRendering, APdfPageTakesUnchangedFilesAsTheyAreAndChangedOrCappedOnesEncodedAnew) {
    if (!haveCommand("pdfimages")) GTEST_SKIP() << "pdfimages (poppler-utils) is not installed";
    place(u"a", "small.jpg");
    place(u"b", "small.jpg");
    page->rotateSlot(Platform::Canvas::createScreenContext().get(), u"b", 90);
    place(u"c", "large.jpg");
    printPage(300, true);

    const std::vector<PdfImage> images = pdfImages(dir.file("page.pdf"));
    ASSERT_EQ(3u, images.size());
    const std::pair<int, int> sizes[] = {{640, 480}, {480, 640}, {600, 450}};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ("jpeg", images[i].encoding);
        EXPECT_EQ(sizes[i], std::make_pair(images[i].width, images[i].height));
    }
    const std::vector<std::string> blocks = pdfJpegs(dir.file("page.pdf"), dir.file("blocks"));
    ASSERT_EQ(3u, blocks.size());
    const std::string source = readFileBytes(dir.file("small.jpg"));
    EXPECT_TRUE(blocks[0] == source);
    EXPECT_FALSE(blocks[1] == source);
    EXPECT_EQ(0u, tmp.count());
}

// With the screen's resolution as the limit the working copy (192 x 144) is drawn, even on a
// printer's page; with no limit the file whole (1600 x 1200), as pixels where no JPEG block is asked
// for; once the file is gone, the screen's limit still draws, any other makes a placeholder.
TEST_F(PageRendering, TheLimitChoosesWorkingCopyOrFileAndAFileThatCannotBeReadBecomesAPlaceholder) {
    if (!haveCommand("pdfimages")) GTEST_SKIP() << "pdfimages (poppler-utils) is not installed";
    place(u"c", "large.jpg");
    const struct {
        unsigned maxDpi;
        bool fileGone;
        std::vector<std::pair<int, int>> sizes;
    } cases[] = {{96, false, {{192, 144}}},
                 {PrintTemplatePageRenderer::kNoDpiLimit, false, {{1600, 1200}}},
                 {96, true, {{192, 144}}},
                 {300, true, {}}};
    for (const auto& c : cases) {
        if (c.fileGone) std::filesystem::remove(dir.file("large.jpg"));
        printPage(c.maxDpi, false);
        std::vector<std::pair<int, int>> sizes;
        for (const PdfImage& image : pdfImages(dir.file("page.pdf"))) {
            sizes.emplace_back(image.width, image.height);
            EXPECT_NE("jpeg", image.encoding);
        }
        EXPECT_EQ(c.sizes, sizes) << c.maxDpi << (c.fileGone ? ", file gone" : "");
    }
}

TEST_F(PageRendering, HiddenPlaceholdersLeaveEmptySlotsAndThePageBlank) {
    auto fakeScreen = [](Paper& paper) {
        DeviceCaps caps;
        caps.dpiX = caps.dpiY = 10;
        paper.canvas->setDeviceCaps(caps);
    };
    Paper hidden(100), shown(100);
    fakeScreen(hidden);
    fakeScreen(shown);
    renderer->hidePlaceholders();
    renderer->draw(hidden.canvas.get(), 0, 0, page, 96, false);
    EXPECT_TRUE(hidden.allWhite());
    renderer->setShowPlaceholders(true);
    renderer->draw(shown.canvas.get(), 0, 0, page, 96, false);
    // At ten to the inch slot "a" has its corner at (5, 5), and the page outline runs along the top.
    EXPECT_EQ(kBlack, pixelAt(shown.dib, 5, 5));
    EXPECT_EQ(kBlack, pixelAt(shown.dib, 50, 0));
}
