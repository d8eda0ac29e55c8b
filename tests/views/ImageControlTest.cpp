// The picture view and its plug-ins on the offscreen display: where the picture stands and which
// part of it shows, the red-eye click against the command-line host's, and the crop frame's rules.

#include <gtest/gtest.h>

#include <functional>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/editing/DibMask.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/views/ImageControl.h"
#include "orvanta/views/MaskingPlugin.h"
#include "orvanta/views/RedeyePlugin.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Four quadrants of their own colours: red, green / blue, white.
Dib* quadrants(int width, int height) {
    return makeDib(width, height, [=](int x, int y) {
        const bool right = x >= width / 2, bottom = y >= height / 2;
        return bottom ? (right ? Rgb{255, 255, 255} : Rgb{0, 0, 255})
                      : (right ? Rgb{0, 255, 0} : Rgb{255, 0, 0});
    });
}

struct View {
    explicit View(Image* image, CSize size = CSize(300, 200)) : ui(size) {
        control = ImageControl::create(image, true);
        control->setBkColor(RGB(128, 128, 128));
        control->setRect(CRect(CPoint(0, 0), size));
        ui.root()->add(control);
        ui.runUntilIdle();
    }
    UiHarness ui;
    ImageControl* control;
};

TEST(ImageControl, TheVisiblePartStandsFittedInTheDisplayRectangleAndShowsAlone) {
    struct Case {
        double zoom;
        DibPoint center;
        int alignX;
        CRect display;
        DibRect visible;
        int edgeAtTopLeft;  // the edge code 2 pixels inside the display's top left corner
    };
    // A 400 x 200 picture in 300 x 200: fitted at 0.75 to 300 x 150, never enlarged.
    const Case cases[] = {
        {1.0, DibPoint(0.1, 0.9), Control::AlignUnset, CRect(0, 25, 300, 175), DibRect(0, 0, 1, 1), -1},
        {1.0, DibPoint(0.5, 0.5), Control::AlignRight, CRect(0, 25, 300, 175), DibRect(0, 0, 1, 1), -1},
        {2.0, DibPoint(0.5, 0.5), Control::AlignUnset, CRect(0, 0, 300, 200),
         DibRect(0.25, 1.0 / 6, 0.75, 5.0 / 6), 0},
        {2.0, DibPoint(0.0, 0.0), Control::AlignUnset, CRect(0, 0, 300, 200), DibRect(0, 0, 0.5, 2.0 / 3),
         -1},
    };
    View view(Image::create(quadrants(400, 200), false));
    view.control->setEdgeTolerance(8);
    for (const Case& c : cases) {
        view.control->setAlignment(c.alignX, Control::AlignUnset);
        view.control->setCenter(c.center.X(), c.center.Y());
        view.control->setZoom(c.zoom, true);
        EXPECT_EQ(c.display, view.control->getDisplayRect());
        const DibRect v = view.control->getVisibleRect();
        EXPECT_NEAR(c.visible.L(), v.L(), 0.01);
        EXPECT_NEAR(c.visible.T(), v.T(), 0.01);
        EXPECT_NEAR(c.visible.R(), v.R(), 0.01);
        EXPECT_NEAR(c.visible.B(), v.B(), 0.01);
        const CRect d = c.display;
        EXPECT_EQ(c.edgeAtTopLeft,
                  view.control->hitEdge(d.left + 2, d.top + 2, d.left, d.top, d.right, d.bottom));
    }
    // Zoomed on the top left quadrant, only red shows: the part is scaled, not the whole.
    view.control->setCenter(0.25, 0.25);
    view.control->setZoom(4.0, true);
    view.ui.runUntilIdle();
    for (int y = 0; y < 200; y += 7)
        for (int x = 0; x < 300; x += 7) ASSERT_EQ(RGB(255, 0, 0), view.ui.pixel(x, y)) << x << "," << y;
    // No client area, no rectangle.
    view.control->setRect(CRect(0, 0, 0, 0));
    EXPECT_TRUE(view.control->getDisplayRect().isEmpty());
}

TEST(ImageControl, RedEyeClickedAtZoomTwoEqualsTheHostsRedEyeAtThatPicturePoint) {
    ORVANTA_REQUIRE_TESTDATA();
    if (!toolAvailable()) GTEST_SKIP() << "the orvanta host is not named ($ORVANTA_TOOL)";
    CodecManager::registerCodec(BmpCodec::create());
    const std::string source = testDataPath("redeye/redeye-boldredeye-576x433.bmp");
    OwnedPtr<ImageCodec> bmp = BmpCodec::create();
    CSize size;
    OwnedPtr<Image> picture = Image::create(bmp->read(CString::fromUtf8(source), &size, 0, 0), true);
    ASSERT_TRUE(picture && picture->getDib());

    // The right eye's pupil is around (432, 193); the view is centred near it.
    View view(picture, CSize(400, 320));
    view.control->setCenter(0.7, 0.45);
    view.control->setZoom(2.0, true);
    view.control->setPlugin(RedeyePlugin::create(20, IDC_CROSS));
    view.ui.runUntilIdle();
    const CRect display = view.control->getDisplayRect();
    const CRect part = view.control->getVisibleRect().mapTo(CRect(0, 0, size.cx, size.cy));
    // The picture pixel under the display pixel that shows (430, 195), by the display's own scale.
    const CPoint click(display.left + (430 - part.left) * display.width() / part.width() + 1,
                       display.top + (195 - part.top) * display.height() / part.height() + 1);
    const double px = part.left + (click.x - display.left + 0.5) * part.width() / display.width();
    const double py = part.top + (click.y - display.top + 0.5) * part.height() / display.height();
    view.ui.click(click);
    view.ui.runUntilIdle();
    ASSERT_EQ(1, picture->getUndoCount());
    // Only the corrected box was scaled again: the screen is what scaling the whole anew shows.
    const std::vector<std::uint32_t> clicked = view.ui.pixels();
    view.control->setImage(picture);
    view.ui.repaintAll();
    EXPECT_EQ(clicked, view.ui.pixels());

    TempDir dir;
    ASSERT_GT(bmp->write(picture->getDib(), dir.wide("view.bmp"), ImageQualityHigh), 0);
    char point[64];
    std::snprintf(point, sizeof point, "%.9f,%.9f,20", static_cast<int>(px) / double(size.cx) + 0.5 / size.cx,
                  static_cast<int>(py) / double(size.cy) + 0.5 / size.cy);
    const ToolRun run = runTool("edit '" + source + "' '" + dir.file("host.bmp") + "' redeye=" + point);
    ASSERT_EQ(0, run.status) << run.errors;
    EXPECT_EQ(readFileBytes(dir.file("host.bmp")), readFileBytes(dir.file("view.bmp")));
    EXPECT_NE(readFileBytes(source), readFileBytes(dir.file("view.bmp")));
}

TEST(MaskingPlugin, TheFrameFollowsThePointerWithinItsRules) {
    // A 300 x 200 picture fills the 300 x 200 view, so picture and display pixels coincide.
    struct Drag {
        int aspectA, aspectB;
        CPoint from, to;
        CRect expected;
    };
    const CRect start(60, 40, 240, 160);
    const Drag drags[] = {
        {0, 0, CPoint(150, 100), CPoint(150, 100), start},                     // inside, no movement
        {0, 0, CPoint(150, 100), CPoint(170, 90), CRect(80, 30, 260, 150)},    // moved
        {0, 0, CPoint(150, 100), CPoint(290, 100), CRect(120, 40, 300, 160)},  // pushed back inside
        {0, 0, CPoint(240, 100), CPoint(250, 10), CRect(60, 40, 250, 160)},    // right side: height kept
        {0, 0, CPoint(240, 100), CPoint(10, 100), CRect(60, 40, 80, 160)},     // past the left: minSize
        {0, 0, CPoint(60, 40), CPoint(100, 60), CRect(100, 60, 240, 160)},     // top left corner
        {1, 1, CPoint(210, 160), CPoint(200, 150), CRect(90, 40, 200, 150)},   // square (first 120 wide)
    };
    for (const Drag& d : drags) {
        SCOPED_TRACE(testing::Message() << d.from.x << "," << d.from.y << " to " << d.to.x << "," << d.to.y);
        View view(Image::create(quadrants(300, 200), false), CSize(300, 200));
        DibMask mask(d.aspectA, d.aspectB, CSize(300, 200));
        mask.set(start, CRect(0, 0, 300, 200));
        MaskingPlugin* plugin = MaskingPlugin::create(mask, 20, 6, false);
        view.control->setPlugin(plugin);
        view.ui.runUntilIdle();
        view.ui.mouseDown(d.from);
        view.ui.mouseMove(d.to);
        view.ui.mouseUp(d.to);
        view.ui.runUntilIdle();
        DibMask after = mask;
        plugin->getMask(after);
        EXPECT_EQ(d.expected, after.mapTo(CRect(0, 0, 300, 200)));
        // Two rings around the frame, black outside and white inside; faded outside, sharp inside.
        const CRect f = d.expected;
        EXPECT_EQ(RGB(0, 0, 0), view.ui.pixel(f.left - 2, (f.top + f.bottom) / 2 + 9));
        EXPECT_EQ(RGB(255, 255, 255), view.ui.pixel(f.left - 1, (f.top + f.bottom) / 2 + 9));
        EXPECT_EQ(RGB(255, 0, 0), view.ui.pixel(f.left + 3, f.top + 3));
        EXPECT_TRUE(f.left <= 12 || view.ui.pixel(f.left - 10, f.top + 3) != RGB(255, 0, 0));
    }
    // The cursor grid: each hit code's sizing arrow.
    const int arrows[9] = {IDC_SIZENWSE, IDC_SIZENS,   IDC_SIZENESW, IDC_SIZEWE,  IDC_SIZEALL,
                           IDC_SIZEWE,   IDC_SIZENESW, IDC_SIZENS,   IDC_SIZENWSE};
    const int hits[9] = {3, 1, 9, 2, 0, 8, 6, 4, 12};
    OwnedPtr<MaskingPlugin> plugin = MaskingPlugin::create(DibMask(0, 0, CSize(300, 200)), 20, 6, false);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(arrows[i], plugin->getCursorId(MaskingPlugin::cursorIndex(hits[i])));
    EXPECT_EQ(-1, MaskingPlugin::cursorIndex(5));
}

}  // namespace
