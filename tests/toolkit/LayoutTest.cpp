// Placing children: alignment, margins and clamping; layouts that children's changes start, and the
// guard against layouts within layouts.

#include <gtest/gtest.h>

#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/Label.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

TEST(LayoutTest, PlaceChildFollowsAlignmentMarginsAndClamping) {
    const CRect bounds(10, 20, 110, 70);  // 100 x 50
    struct Case {
        int h, v;
        CRect start;
        CRect margins;
        bool clamp;
        CRect expected;
    } cases[] = {
        {Control::AlignFill, Control::AlignFill, CRect(0, 0, 5, 5), CRect(1, 2, 3, 4), true,
         CRect(11, 22, 107, 66)},
        {Control::AlignLeft, Control::AlignTop, CRect(50, 50, 70, 60), CRect(), true, CRect(10, 20, 30, 30)},
        {Control::AlignRight, Control::AlignBottom, CRect(0, 0, 20, 10), CRect(0, 0, 5, 5), true,
         CRect(85, 55, 105, 65)},
        {Control::AlignCenter, Control::AlignCenter, CRect(0, 0, 20, 10), CRect(), true,
         CRect(50, 40, 70, 50)},
        // Larger than the bounds: clamped, it is cut to them; without clamping it overflows evenly.
        {Control::AlignCenter, Control::AlignCenter, CRect(0, 0, 140, 70), CRect(), true,
         CRect(10, 20, 110, 70)},
        {Control::AlignCenter, Control::AlignCenter, CRect(0, 0, 140, 70), CRect(), false,
         CRect(-10, 10, 130, 80)},
        // Unset keeps the position, clamped into the bounds.
        {Control::AlignUnset, Control::AlignUnset, CRect(100, 60, 130, 90), CRect(), true,
         CRect(100, 60, 110, 70)},
    };
    for (const Case& c : cases) {
        OwnedPtr<Box> box = Box::create(RGB(1, 2, 3), c.start);
        box->setAlignment(c.h, c.v);
        setMargins(box, c.margins);
        Container::placeChild(box, bounds, c.clamp, c.clamp);
        EXPECT_EQ(box->getRect(), c.expected) << c.h << "," << c.v;
    }
}

// Counts the layouts a container runs.
class CountingContainer : public Container {
public:
    static CountingContainer* create() { return new CountingContainer(); }
    int layouts = 0;
    Control* addDuringLayout = nullptr;
    void layout() override {
        ++layouts;
        if (addDuringLayout) {
            Control* child = addDuringLayout;
            addDuringLayout = nullptr;
            setLayoutBusy(true);
            add(child);
            setLayoutBusy(false);
        }
        Container::layout();
    }

private:
    CountingContainer() : Container(false) {}
};

TEST(LayoutTest, ChildrenChangesLayOutAgainWithoutRecursion) {
    UiHarness ui(CSize(200, 150));
    CountingContainer* panel = CountingContainer::create();
    panel->setMinSize(150, 100);
    panel->setRect(CRect(0, 0, 150, 100));
    ui.root()->add(panel);
    OwnedPtr<Label> label = Label::create(u"Hello", DT_LEFT | DT_SINGLELINE);
    label->setAlignment(Control::AlignRight, Control::AlignBottom);
    panel->add(label);
    const int before = panel->layouts;
    const CSize oldSize = label->getMinSize();
    label->setText(u"Hello, a longer text");
    EXPECT_GT(label->getMinSize().cx, oldSize.cx);
    EXPECT_EQ(panel->layouts, before + 1);  // a child of its own size lays the whole container out

    // A child with no size of its own is placed alone: it fills the content rectangle.
    OwnedPtr<Box> filler = Box::create(RGB(0, 0, 0), CRect(0, 0, 1, 1));
    filler->setMinSize(1, 1);
    panel->setBorderWidth(3, Style::kBorders);
    panel->add(filler);
    EXPECT_EQ(filler->getRect(), CRect(3, 3, 147, 97));
    const int afterFill = panel->layouts;
    filler->setMargin(2, Style::kBorders);
    EXPECT_EQ(panel->layouts, afterFill);
    EXPECT_EQ(filler->getRect(), CRect(5, 5, 145, 95));

    // Adding a child inside a layout does not start another one.
    panel->addDuringLayout = Box::create(RGB(5, 5, 5), CRect(0, 0, 10, 10));
    const int beforeNested = panel->layouts;
    panel->layout();
    EXPECT_EQ(panel->layouts, beforeNested + 1);
    EXPECT_EQ(panel->getChildCount(), 3);
}

}  // namespace
