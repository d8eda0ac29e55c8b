// The template model: exact unit arithmetic through a device's resolution, slot order and look-up,
// and the placing, fitting, centring, turning and effects of a page's pictures, on devices of 96
// and 1200 pixels per inch.

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

#include "orvanta/foundation/MulDiv.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/printing/PrintTemplatePage.h"
#include "orvanta/printing/PrintUnits.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST(MulDiv, RoundsHalvesAwayFromZeroOnA64BitProductAndAnswersMinusOneOnZeroOrOverflow) {
    const struct {
        int value, numerator, denominator, expected;
    } cases[] = {
        {1, 1, 2, 1},
        {-1, 1, 2, -1},
        {1, 1, -2, -1},
        {-7, 2, -4, 4},
        {1, 1, 3, 0},
        {-2, 1, 3, -1},
        {7, 5, 0, -1},
        {0, 9, 0, -1},
        {INT_MAX, 2, 1, -1},
        {INT_MAX, INT_MAX, INT_MAX, INT_MAX},
        {INT_MIN, 1, 1, INT_MIN},
        {INT_MIN, -1, 1, -1},
        {INT_MIN, INT_MIN, INT_MIN, INT_MIN},
        {65536, 65536, 2, -1},
        {65536, 65536, 4, 1073741824},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, MulDiv(c.value, c.numerator, c.denominator))
            << c.value << " * " << c.numerator << " / " << c.denominator;
}

TEST(PrintUnits, ThousandthsAndPixelsConvertThroughEachAxisResolutionAndRound) {
    const struct {
        int dpiX, dpiY;
        CRect thousandths, pixels;
    } toPixels[] = {
        {96, 96, {0, 0, 1000, 3500}, {0, 0, 96, 336}},
        {1200, 1200, {0, 0, 1000, 3500}, {0, 0, 1200, 4200}},
        {96, 96, {5, 6, -5, -6}, {0, 1, 0, -1}},  // 0.48 and 0.576: rounded, not truncated
        {1200, 1200, {5, 6, -5, -6}, {6, 7, -6, -7}},
        {300, 600, {1000, 2000, 3000, 4000}, {300, 1200, 900, 2400}},
    };
    for (const auto& c : toPixels) {
        auto dc = deviceAt(c.dpiX, c.dpiY);
        EXPECT_EQ(c.pixels, inches1000thToPixels(dc.get(), c.thousandths)) << c.dpiX << "x" << c.dpiY;
        EXPECT_EQ(c.pixels.topLeft(), inches1000thToPixels(dc.get(), c.thousandths.topLeft()));
        EXPECT_EQ(Size(c.pixels.right, c.pixels.bottom),
                  inches1000thToPixels(dc.get(), Size(c.thousandths.right, c.thousandths.bottom)));
    }
    const struct {
        int dpiX, dpiY;
        CRect pixels, thousandths;
    } toThousandths[] = {
        {96, 96, {1, 48, 7, -1}, {10, 500, 73, -10}},
        {1200, 1200, {1, 48, 7, -1}, {1, 40, 6, -1}},
        {300, 600, {3, 3, 300, 600}, {10, 5, 1000, 1000}},
    };
    for (const auto& c : toThousandths) {
        auto dc = deviceAt(c.dpiX, c.dpiY);
        EXPECT_EQ(c.thousandths, pixelsToInches1000th(dc.get(), c.pixels)) << c.dpiX << "x" << c.dpiY;
        EXPECT_EQ(c.thousandths.topLeft(), pixelsToInches1000th(dc.get(), c.pixels.topLeft()));
    }
}

TEST(PrintTemplate, SlotsGoInCodeUnitOrderAndALookUpOfAnUnknownNameAddsAnEmptyEntryThatEndsWalks) {
    OwnedPtr<PrintTemplate> design = PrintTemplate::create(u"t", u"d", 8500, 11000);
    for (const char16_t* name : {u"b", u"B", u"a", u"A"})
        design->addSlot(
            PrintTemplateSlot::create(name, CRect(0, 0, 10, 10), PrintTemplateSlot::Image, nullptr));
    design->addSlot(PrintTemplateSlot::create(u"a", CRect(1, 2, 3, 4), PrintTemplateSlot::Text, u"x"));
    EXPECT_EQ(4, design->getSlotCount());
    EXPECT_EQ(CRect(1, 2, 3, 4), design->getSlot(u"a")->getRect());

    auto walk = [&] {
        CString names;
        OwnedPtr<PrintTemplate::SlotIterator> slots = design->getSlots();
        for (bool more = slots->first(); more; more = slots->next()) names += slots->current()->getName();
        return names.toUtf8();
    };
    EXPECT_EQ("ABab", walk());
    EXPECT_EQ(nullptr, design->getSlot(u"Z"));
    EXPECT_EQ(5, design->getSlotCount());
    EXPECT_EQ("AB", walk());
    // Landscape only when wider than high: a square is portrait.
    for (const auto& [width, height, orientation] :
         {std::tuple{8500, 11000, 1}, {11000, 8500, 2}, {5000, 5000, 1}})
        EXPECT_EQ(orientation,
                  OwnedPtr<PrintTemplate>(PrintTemplate::create(u"", u"", width, height))->getOrientation());
}

TEST(PrintTemplate, TheSlotAtAPointIsTheFirstByNameWhoseRectangleHoldsItRightAndBottomEdgesOut) {
    OwnedPtr<PrintTemplate> design = PrintTemplate::create(u"t", u"", 8500, 11000);
    auto dc96 = deviceAt(96);
    EXPECT_EQ(CString(), design->getSlotAt(dc96.get(), 0, 0));
    design->addSlot(
        PrintTemplateSlot::create(u"m", CRect(0, 0, 3000, 3000), PrintTemplateSlot::Image, nullptr));
    design->addSlot(
        PrintTemplateSlot::create(u"b", CRect(1000, 1000, 2000, 2000), PrintTemplateSlot::Image, nullptr));
    const struct {
        int dpi, x, y;
        const char16_t* slot;
    } cases[] = {
        {96, 96, 96, u"b"},       {96, 191, 191, u"b"},     {96, 192, 100, u"m"},
        {96, 100, 192, u"m"},     {96, 288, 10, u""},       {1200, 1200, 2399, u"b"},
        {1200, 2400, 1200, u"m"}, {1200, 3599, 3599, u"m"}, {1200, 3600, 0, u""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(CString(c.slot), design->getSlotAt(deviceAt(c.dpi).get(), c.x, c.y))
            << c.dpi << " dpi at " << c.x << "," << c.y;
}

namespace {

// Every byte plus 40, capped: applied twice it shows.
class BrightenOp : public EditingOp {
public:
    BrightenOp() : EditingOp(8) {}
    Dib* doOp(Dib* dib, UndoOp** undo) override {
        const CSize size = dib->getSize();
        Dib* out = makeDib(size.cx, size.cy, [&](int x, int y) {
            const Rgb c = pixelAt(dib, x, y);
            return Rgb{std::min(c.r + 40, 255), std::min(c.g + 40, 255), std::min(c.b + 40, 255)};
        });
        return out;
    }
};

class TemplatePage : public ::testing::Test {
protected:
    void SetUp() override {
        design = PrintTemplate::create(u"t", u"", 8500, 11000);
        design->addSlot(
            PrintTemplateSlot::create(u"p", CRect(0, 0, 2000, 1000), PrintTemplateSlot::Image, u"Photo"));
        design->addSlot(
            PrintTemplateSlot::create(u"t", CRect(0, 2000, 4000, 2500), PrintTemplateSlot::Text, u"Title"));
        page = PrintTemplatePage::create();
        page->setTemplate(design);
        writeQuadrantJpeg(dir.file("big.jpg"), 3000, 2000);
        big = assetOf(dir.file("big.jpg"));
    }

    TempDir dir;
    OwnedPtr<PrintTemplate> design;
    OwnedPtr<PrintTemplatePage> page;
    OwnedPtr<Asset> big;
};

}  // namespace

// 3000 x 2000 in a 2 x 1 inch slot prints at 1500 x 2000 dpi; the screen's 96 asks for the larger
// ratio (0.064): 192 x 128, resampled from the codec's eighth (375 x 250). Filling the slot on each
// device, the picture overhangs vertically; the offset is kept in thousandths (-16 px at 96 and -200
// at 1200 are both -167). A picture smaller than the slot at 96 dpi loads whole and is enlarged.
TEST_F(TemplatePage, AWorkingCopyIsAtScreenResolutionFilledAndCentredOnEachDevice) {
    writeQuadrantJpeg(dir.file("small.jpg"), 100, 50);
    OwnedPtr<Asset> small = assetOf(dir.file("small.jpg"));
    const struct {
        Asset* asset;
        int dpi;
        CSize copy;
        double zoom;
        int offsetY, thousandths;
    } cases[] = {{big, 96, {192, 128}, 1.0, -16, -167},
                 {big, 1200, {192, 128}, 12.5, -200, -167},
                 {small, 96, {100, 50}, 1.92, 0, 0}};
    for (const auto& c : cases) {
        auto dc = deviceAt(c.dpi);
        page->setAsset(dc.get(), u"p", c.asset);
        ASSERT_TRUE(page->getImage(u"p"));
        EXPECT_EQ(c.copy, page->getImage(u"p")->getSize());
        EXPECT_DOUBLE_EQ(c.zoom, page->getZoom(u"p"));
        EXPECT_EQ(CPoint(0, c.offsetY), page->getOffset(dc.get(), u"p")) << c.dpi;
        EXPECT_EQ(CPoint(0, c.thousandths), page->getOffset(deviceAt(1000).get(), u"p"));
    }
}

TEST_F(TemplatePage, TurnsAddUpModuloThreeSixtyAndEachRefitsAndRecentres) {
    auto dc = deviceAt(96);
    page->setAsset(dc.get(), u"p", big);
    page->rotateSlot(dc.get(), u"p", 90);
    EXPECT_EQ(CSize(128, 192), page->getImage(u"p")->getSize());
    EXPECT_DOUBLE_EQ(1.5, page->getZoom(u"p"));
    EXPECT_EQ(CPoint(0, -96), page->getOffset(dc.get(), u"p"));
    // The red quadrant (top left) is at the top right after a clockwise turn.
    EXPECT_GT(pixelAt(page->getImage(u"p")->getDib(), 120, 5).r, 150);
    for (int i = 0; i < 3; ++i) page->rotateSlot(dc.get(), u"p", 90);
    EXPECT_EQ(0, page->getRotation(u"p"));
    EXPECT_EQ(CSize(192, 128), page->getImage(u"p")->getSize());
    EXPECT_EQ(CPoint(0, -16), page->getOffset(dc.get(), u"p"));
    page->rotateSlot(dc.get(), u"p", -90);
    EXPECT_EQ(-90, page->getRotation(u"p"));
    page->rotateSlot(dc.get(), u"t", 90);
    EXPECT_EQ(0, page->getRotation(u"t"));
    page->rotateSlot(dc.get(), u"p", 180);
    page->setAsset(dc.get(), u"p", big);
    EXPECT_EQ(0, page->getRotation(u"p"));
}

// A picture that cannot be read is kept but leaves its slot empty; a text slot without a label
// goes by its name.
TEST_F(TemplatePage, AnUnreadablePictureLeavesItsSlotEmptyAndATextSlotIsLabelledByItsName) {
    writeFileBytes(dir.file("broken.jpg"), std::string("\xFF\xD8\xFF\xE0 not a picture"));
    OwnedPtr<Asset> broken = assetOf(dir.file("broken.jpg"));
    page->setAsset(deviceAt(96).get(), u"p", broken);
    EXPECT_TRUE(page->getAsset(u"p") == broken.get() && page->isSlotEmpty(u"p"));
    EXPECT_EQ(CString(u"t"), page->getSlotLabel(u"t"));
    page->setText(u"t", u"Summer");
    EXPECT_FALSE(page->isSlotEmpty(u"t"));
}

TEST_F(TemplatePage, AnEffectIsBurntInOnceAndClearingItReloadsThePicture) {
    auto dc = deviceAt(96);
    page->setAsset(dc.get(), u"p", big);
    const int plain = pixelAt(page->getImage(u"p")->getDib(), 10, 10).r;
    OwnedPtr<BrightenOp> brighten = new BrightenOp();
    for (int round = 0; round < 2; ++round) {
        page->setEffect(brighten);
        EXPECT_TRUE(page->isEffectApplied(u"p"));
        EXPECT_EQ(std::min(plain + 40, 255), pixelAt(page->getImage(u"p")->getDib(), 10, 10).r) << round;
    }
    page->setEffect(nullptr);
    EXPECT_EQ(plain, pixelAt(page->getImage(u"p")->getDib(), 10, 10).r);
}
