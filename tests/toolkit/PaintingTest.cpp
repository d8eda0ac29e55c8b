// Pictures on screen: each mode of a Painting places and scales a strip's frame as stated, the mask
// colour never reaches the screen, and changes of source and frame behave at the edges.

#include <gtest/gtest.h>

#include "orvanta/foundation/Resource.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/toolkit/Painting.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr COLORREF kBack = RGB(250, 250, 250);
constexpr COLORREF kMask = RGB(255, 0, 255);
constexpr COLORREF kRed = RGB(200, 20, 20);
constexpr COLORREF kBlue = RGB(20, 40, 210);

// In a 60 x 40 window, a strip of two 10 x 6 frames (red, blue) with a one-pixel border of the mask
// colour: the rectangle each mode gets, a point inside the frame's colour, one on its see-through
// border.
TEST(PaintingTest, EachModePlacesAndScalesTheFrameAndTheMaskColourStaysOffScreen) {
    UiHarness ui(CSize(60, 40));
    ui.root()->setBkColor(kBack);
    Strips strips;
    strips.add(1, {kRed, kBlue}, CSize(10, 6), kMask, 1);
    const struct {
        Painting::Mode mode;
        CRect rect;
        CPoint inside, border;
    } cases[] = {
        {Painting::ModeNatural, CRect(25, 17, 35, 23), CPoint(30, 20), CPoint(25, 17)},
        {Painting::ModeNaturalInPlace, CRect(5, 5, 15, 11), CPoint(10, 8), CPoint(5, 5)},
        {Painting::ModeStretch, CRect(0, 0, 60, 40), CPoint(30, 20), CPoint(0, 0)},
        {Painting::ModeFit, CRect(0, 0, 60, 40), CPoint(30, 20), CPoint(30, 1)},  // 60 x 36, centred
        {Painting::ModeTile, CRect(0, 0, 60, 40), CPoint(15, 9), CPoint(10, 6)},
        {Painting::ModeStretchHorizontal, CRect(0, 17, 60, 23), CPoint(30, 20), CPoint(30, 17)},
        {Painting::ModeStretchVertical, CRect(25, 0, 35, 40), CPoint(30, 20), CPoint(25, 20)},
        {Painting::ModeTileHorizontal, CRect(0, 17, 60, 23), CPoint(15, 20), CPoint(10, 20)},
        {Painting::ModeTileVertical, CRect(25, 0, 35, 40), CPoint(30, 9), CPoint(30, 6)},
    };
    for (const auto& c : cases) {
        OwnedPtr<Painting> painting = Painting::create(Resource(1, &strips), 2, kMask, c.mode);
        ui.root()->add(painting);
        if (c.mode == Painting::ModeNaturalInPlace) painting->setRect(c.rect);
        ui.runUntilIdle();
        EXPECT_EQ(painting->getRect(), c.rect) << c.mode;
        EXPECT_EQ(ui.pixel(c.inside.x, c.inside.y), kRed) << c.mode;
        EXPECT_EQ(ui.pixel(c.border.x, c.border.y), kBack) << c.mode;
        painting->setFrame(1);
        ui.runUntilIdle();
        EXPECT_EQ(ui.pixel(c.inside.x, c.inside.y), kBlue) << c.mode;
        EXPECT_EQ(countColour(ui.pixels(), kMask), 0) << c.mode;
        ui.root()->remove(painting);
    }
}

TEST(PaintingTest, SourcesFramesAndSizesAtTheEdges) {
    UiHarness ui(CSize(60, 40));
    ui.root()->setBkColor(kBack);
    Strips strips;
    strips.add(1, {kRed, kBlue}, CSize(10, 6), kMask, 1);
    strips.add(2, {kBlue, kRed, kBlue}, CSize(80, 50), kMask, 0);

    // No source: nothing drawn, no frames.
    OwnedPtr<Painting> empty = Painting::create(Resource(99, &strips), 3, kMask, Painting::ModeStretch);
    ui.root()->add(empty);
    ui.runUntilIdle();
    EXPECT_EQ(empty->getFrameCount(), 0);
    EXPECT_EQ(countColour(ui.pixels(), kBack), 60 * 40);

    // A frame past the end draws nothing; a new source brings it back to 0. A natural picture takes
    // its source's size, larger than the room it stands in.
    OwnedPtr<Painting> natural = Painting::create(Resource(1, &strips), 2, kMask, Painting::ModeNatural);
    EXPECT_EQ(natural->getSize(), CSize(10, 6));
    natural->setFrame(5);
    ui.root()->add(natural);
    ui.runUntilIdle();
    EXPECT_EQ(ui.pixel(30, 20), kBack);
    natural->setBitmap(Resource(2, &strips), 3, kMask);
    EXPECT_EQ(natural->getFrame(), 0);
    EXPECT_EQ(natural->getMinSize(), CSize(80, 50));
    ui.runUntilIdle();
    EXPECT_EQ(ui.pixel(30, 20), kBlue);

    // A Dib is drawn from its own rows, all of them without a transparent colour.
    OwnedPtr<DibSection> dib = DibSection::create(4, 2, 3);
    const unsigned char rows[] = {255, 0,  255, 10, 20, 30, 10, 20, 30, 10,  20, 30,  // rows of 12 bytes
                                  10,  20, 30,  10, 20, 30, 10, 20, 30, 255, 0,  255};
    std::memcpy(dib->getBits(), rows, sizeof rows);
    ui.root()->remove(natural);
    for (COLORREF transparent : {kNoTransparentColor, kMask}) {
        OwnedPtr<Painting> picture = Painting::create(dib.get(), transparent, Painting::ModeNaturalInPlace);
        ui.root()->add(picture);
        picture->setRect(CRect(0, 0, 4, 2));
        ui.runUntilIdle();
        EXPECT_EQ(ui.pixel(1, 0), RGB(30, 20, 10));
        EXPECT_EQ(ui.pixel(0, 0), transparent == kMask ? kBack : kMask);
        EXPECT_EQ(ui.pixel(3, 1), transparent == kMask ? kBack : kMask);
        ui.root()->remove(picture);
    }
}

}  // namespace
