// PrintTemplateControl: dragging an overhanging picture along its one free axis, clamped so the
// slot never shows a gap; clicks and commands on slots through the application's helper.

#include <gtest/gtest.h>

#include "orvanta/platform/Cursor.h"
#include "orvanta/printing/PrintTemplateControl.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

struct Helper : PrintTemplateControlHelper {
    CString requestText(const CString& slot, const CString& text) override {
        ++asked;
        return u"Summer";
    }
    int requestContextMenuCommand(bool isEmpty, int type) override { return command; }
    int asked = 0;
    int command = None;
};

// A 2 x 1 inch slot holding a 3:2 photo: at 96 dpi its working copy (192 x 128) overhangs by 32
// pixels downward, centred at -16. The control is the page's size plus its margins: scale 1.
class TemplateControl : public ::testing::Test {
protected:
    void SetUp() override {
        design = PrintTemplate::create(u"t", u"", 8500, 11000);
        design->addSlot(PrintTemplateSlot::create(u"p", CRect(1000, 1000, 3000, 2000),
                                                  PrintTemplateSlot::Image, nullptr));
        design->addSlot(
            PrintTemplateSlot::create(u"t", CRect(1000, 3000, 5000, 3500), PrintTemplateSlot::Text, nullptr));
        writeQuadrantJpeg(dir.file("a.jpg"), 3000, 2000);
        page = PrintTemplatePage::create();
        page->setTemplate(design);
        OwnedPtr<Asset> asset = assetOf(dir.file("a.jpg"));
        page->setAsset(screen.get(), u"p", asset);
        control = PrintTemplateControl::create(&helper);
        control->setRect(0, 0, 836, 1076);
        control->setPage(page);
    }
    void mouse(UINT message, int x, int y) {
        bool handled = false;
        control->handleMessage(message, 0, MAKELPARAM(x, y), &handled);
    }

    TempDir dir;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    Helper helper;
    OwnedPtr<PrintTemplate> design;
    OwnedPtr<PrintTemplatePage> page;
    OwnedPtr<PrintTemplateControl> control;
};

}  // namespace

TEST_F(TemplateControl, APictureDragsAlongItsOverhangAndNoFurther) {
    ASSERT_DOUBLE_EQ(1.0, control->getScale());
    // The pointer shows the way over the picture, and nothing special over the text.
    mouse(WM_MOUSEMOVE, 120, 120);
    EXPECT_EQ(Platform::Cursor::system(IDC_SIZENS), control->getCursor());
    mouse(WM_MOUSEMOVE, 200, 300);
    EXPECT_EQ(nullptr, control->getCursor());
    const struct {
        int dx, dy, offsetY;
    } cases[] = {{0, 10, -6}, {0, 100, 0}, {0, -10, -26}, {0, -100, -32}, {50, 0, -16}};
    for (const auto& c : cases) {
        page->setOffset(screen.get(), u"p", 0, -16);
        mouse(WM_LBUTTONDOWN, 120, 120);
        EXPECT_EQ(PrintTemplateControl::DragVertical, control->getDragMode());
        mouse(WM_MOUSEMOVE, 120 + c.dx, 120 + c.dy);
        mouse(WM_LBUTTONUP, 120 + c.dx, 120 + c.dy);
        EXPECT_EQ(PrintTemplateControl::DragNone, control->getDragMode());
        EXPECT_EQ(CPoint(0, c.offsetY), page->getOffset(screen.get(), u"p")) << c.dx << "," << c.dy;
    }
}

TEST_F(TemplateControl, CommandsClearTurnAndEditTheSlotUnderTheRightButton) {
    const struct {
        int command;
        int x, y;
        bool imageEmpty;
        int rotation;
        const char16_t* text;
    } cases[] = {
        {PrintTemplateControlHelper::Rotate90, 120, 120, false, 90, u""},
        {PrintTemplateControlHelper::Rotate270, 120, 120, false, 0, u""},
        {PrintTemplateControlHelper::EditText, 200, 300, false, 0, u"Summer"},
        {PrintTemplateControlHelper::ClearSlot, 200, 300, false, 0, u""},
        {PrintTemplateControlHelper::ClearSlot, 120, 120, true, 0, u""},
    };
    for (const auto& c : cases) {
        helper.command = c.command;
        mouse(WM_RBUTTONDOWN, c.x, c.y);
        EXPECT_EQ(c.imageEmpty, page->isSlotEmpty(u"p")) << c.command;
        EXPECT_EQ(c.rotation, page->getRotation(u"p")) << c.command;
        EXPECT_EQ(CString(c.text), page->getText(u"t")) << c.command;
    }
    // A left click on a text slot edits it too.
    mouse(WM_LBUTTONDOWN, 200, 300);
    EXPECT_EQ(2, helper.asked);
}
