// The lists driven by posted input: the selection by keys, clicks and drags in one and several rows,
// type-ahead, the column list sorted in the user's language by a header click and a hundred thousand
// rows scrolled by repainting only what scrolling uncovers, owner-drawn items, and the drop-down's
// list in its pop-up, with the opening and closing keys it shares with the date picker (where the
// pop-up lies is checked on a real X server, in XvfbTest).

#include <SDL.h>
#include <gtest/gtest.h>

#include <functional>

#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/ListBox.h"
#include "orvanta/toolkit/ListView.h"
#include "orvanta/toolkit/WidgetLook.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Paints each item's first cell in a colour of its own and counts what it was asked to draw.
class Swatches : public ListItemPainter {
public:
    static Swatches* create(int height) { return new Swatches(height); }
    int getItemHeight() override { return mHeight; }
    void drawItem(HDC dc, const CRect& rect, int item, int column, UINT state, COLORREF) override {
        ++drawn;
        if (column == 0)
            dc->fillRect(CRect(rect.left + 2, rect.top + 2, rect.left + 12, rect.bottom - 2), colourOf(item));
    }
    static COLORREF colourOf(int item) { return RGB(item % 200, 40, 90); }
    int drawn = 0;

private:
    explicit Swatches(int height) : mHeight(height) {}
    int mHeight;
};

// The pixel in the middle of a row's first few columns, in the window's coordinates.
CPoint rowPoint(ListControl* list, int row, int x = 10) {
    const CRect r = list->getRowRect(row);
    return CPoint(list->getRect().left + r.left + x, list->getRect().top + (r.top + r.bottom) / 2);
}

TEST(ListBoxTest, KeysClicksAndDragsMoveTheSelectionAndTellTheUserMadeChanges) {
    CommandLog log;
    UiHarness ui(CSize(240, 200));
    ListBox* list = ListBox::create(4, false, &log);
    list->setRect(CRect(10, 10, 200, 10 + 2 + 5 * list->getRowHeight()));
    const char16_t* names[] = {u"Album", u"Été 2025", u"été 2026", u"Famille",
                               u"Zoo",   u"Émile",    u"Fleurs",   u"Ski"};
    for (const char16_t* name : names) list->addString(name);
    ui.root()->add(list, true);
    list->setFocus();
    ui.runUntilIdle();
    struct Step {
        std::function<void()> act;
        std::vector<int> selected;
        int focus, top;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.pressKey(SDLK_DOWN); }, {0}, 0, 0, 1},
        {[&] { ui.pressKey(SDLK_END); }, {7}, 7, 3, 2},
        {[&] { ui.pressKey(SDLK_PAGEUP); }, {3}, 3, 3, 3},  // to the top row in view
        {[&] { ui.pressKey(SDLK_PAGEUP); }, {0}, 0, 0, 4},  // then a page further
        {[&] { ui.typeText("é"); }, {1}, 1, 0, 5},          // type-ahead, whatever the case
        {[&] { ui.typeText("t"), ui.typeText("é 2026"); }, {2}, 2, 0, 6},
        {[&] { ui.pressKey(SDLK_DOWN), ui.typeText("f"); }, {6}, 6, 2, 8},  // a key starts the search anew
        {[&] { ui.click(rowPoint(list, 2)); }, {2}, 2, 2, 9},
        {[&] { ui.click(rowPoint(list, 2)); }, {2}, 2, 2, 9},  // no change, no command
        {[&] {
             ui.mouseDown(rowPoint(list, 3));
             ui.mouseMove(rowPoint(list, 5));
             ui.mouseUp(rowPoint(list, 5));
         },
         {5},
         5,
         2,
         11},
        {[&] { list->setCurSel(6); }, {6}, 6, 2, 11},
        {[&] { ui.pressKey(SDLK_RETURN); }, {6}, 6, 2, 12},  // activated
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(list->getSelectedRows(), s.selected);
        EXPECT_EQ(list->getFocusRow(), s.focus);
        EXPECT_EQ(list->getTopRow(), s.top);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    EXPECT_EQ(log.commands.back().second, CommandListener::kItemActivated);
    // The selected row is highlighted, the others are not.
    EXPECT_EQ(ui.pixel(rowPoint(list, 6, 150).x, rowPoint(list, 6, 150).y), WidgetLook::selectionColor(true));
    EXPECT_EQ(ui.pixel(rowPoint(list, 5, 150).x, rowPoint(list, 5, 150).y),
              Platform::getSysColor(COLOR_WINDOW));
}

TEST(ListBoxTest, SeveralRowsAreChosenWithControlAndShift) {
    UiHarness ui(CSize(240, 200));
    ListBox* list = ListBox::create(4, true);
    list->setRect(CRect(10, 10, 200, 190));
    for (int i = 0; i < 8; ++i) list->addString(CString::fromUtf8("Photo " + std::to_string(i)));
    ui.root()->add(list, true);
    ui.runUntilIdle();
    struct Step {
        std::function<void()> act;
        std::vector<int> selected;
    };
    const Step steps[] = {
        {[&] { ui.click(rowPoint(list, 1)); }, {1}},
        {[&] { ui.pressKey(SDLK_DOWN, true), ui.pressKey(SDLK_DOWN, true); }, {1, 2, 3}},
        {[&] { ui.pressKey(SDLK_DOWN, false, true), ui.pressKey(SDLK_DOWN, false, true); },
         {1, 2, 3}},  // focus only
        {[&] { ui.pressKey(SDLK_SPACE, false, true); }, {1, 2, 3, 5}},
        {[&] { ui.pressKey(SDLK_UP, true); }, {4, 5}},  // from the anchor, 5, to 4
        {[&] { ui.pressKey(SDLK_HOME, true); }, {0, 1, 2, 3, 4, 5}},
        {[&] { ui.pressKey(SDLK_END); }, {7}},
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(list->getSelectedRows(), s.selected);
    }
    list->deleteString(7);
    list->insertString(0, u"First");
    EXPECT_EQ(list->getSelectedRows(), std::vector<int>{});
    list->setSelected(3, true);
    list->insertString(0, u"Before");
    EXPECT_EQ(list->getSelectedRows(), std::vector<int>{4});
}

class ListViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        ui = std::make_unique<UiHarness>(CSize(400, 260));
        view = ListView::create(9, true, &log);
        view->setRect(CRect(0, 0, 400, 260));
        view->insertColumn(0, u"Name", 150);
        view->insertColumn(1, u"Size", 100, DT_RIGHT, true);
        ui->root()->add(view, true);
    }
    std::vector<std::u16string> column(int c) const {
        std::vector<std::u16string> out;
        for (int i = 0; i < view->getItemCount(); ++i) out.push_back(view->getItemText(i, c).str());
        return out;
    }
    // A point on a column's header.
    CPoint header(int c) const { return CPoint(c == 0 ? 40 : 200, 8); }

    CommandLog log;  // outlives the list that tells it
    std::unique_ptr<UiHarness> ui;
    ListView* view;
};

TEST_F(ListViewTest, AHeaderClickSortsInTheLanguagesOrderAndTheSelectionFollowsItsItems) {
    const char16_t* rows[][2] = {{u"zoe", u"12 MB"},    {u"Zoé", u"1.5 MB"}, {u"Eve", u""},
                                 {u"apple", u"200 KB"}, {u"Émile", u"3 MB"}, {u"éclair", u"12 MB"}};
    for (const auto& r : rows) view->setItemText(view->insertItem(-1, r[0]), 1, r[1]);
    view->setSelected(1, true);  // Zoé
    view->setFocusRow(1);
    ui->runUntilIdle();
    struct Click {
        int column;
        std::vector<std::u16string> names;
    };
    const Click clicks[] = {
        // Accents and case come after the letters: "Émile" among the e's, "zoe" before "Zoé".
        {0, {u"apple", u"éclair", u"Émile", u"Eve", u"zoe", u"Zoé"}},
        {0, {u"Zoé", u"zoe", u"Eve", u"Émile", u"éclair", u"apple"}},
        // By the number the size begins with; none first, equal ones in the order they stood.
        {1, {u"Eve", u"Zoé", u"Émile", u"zoe", u"éclair", u"apple"}},
        {1, {u"apple", u"zoe", u"éclair", u"Émile", u"Zoé", u"Eve"}},
    };
    for (const Click& c : clicks) {
        ui->click(header(c.column));
        ui->runUntilIdle();
        EXPECT_EQ(column(0), c.names);
        ASSERT_EQ(view->getSelectedRows().size(), 1u);
        EXPECT_EQ(view->getItemText(view->getSelectedRows()[0], 0).str(), u"Zoé");
        EXPECT_EQ(view->getFocusRow(), view->getSelectedRows()[0]);
    }
    EXPECT_EQ(log.commands.size(), 4u);
    EXPECT_EQ(log.commands[0].second, CommandListener::kSortChanged);
    // Dragging a title's edge widens its column; a press there sorts nothing.
    ui->mouseDown(CPoint(150, 8));
    ui->mouseMove(CPoint(190, 8));
    ui->mouseUp(CPoint(190, 8));
    ui->mouseDown(CPoint(290, 8));
    ui->mouseMove(CPoint(10, 8));
    ui->mouseUp(CPoint(10, 8));
    ui->runUntilIdle();
    EXPECT_EQ(view->getColumnWidth(0), 190);
    EXPECT_EQ(view->getColumnWidth(1), ListView::kMinColumnWidth);
    EXPECT_EQ(log.commands.size(), 4u);
}

TEST_F(ListViewTest, AHundredThousandRowsScrollByRepaintingOnlyWhatIsUncovered) {
    OwnedPtr<Swatches> painter = Swatches::create(20);
    view->setPainter(painter);
    view->reserve(100000);
    for (int i = 0; i < 100000; ++i) view->insertItem(-1, CString());
    ui->runUntilIdle();
    const int page = view->getPageSize();
    struct Step {
        std::function<void()> act;
        int top;
        int rowsDrawn;  // at most
    };
    const Step steps[] = {
        {[&] { ui->wheel(-1); }, 3, 3 + 1},
        {[&] { ui->wheel(-2); }, 9, 6 + 1},
        {[&] { ui->wheel(1); }, 6, 3 + 1},
        {[&] { view->setFocus(), ui->pressKey(SDLK_END); }, 100000 - page, page + 1},
        {[&] { ui->pressKey(SDLK_PAGEUP), ui->pressKey(SDLK_PAGEUP); }, 100000 - 2 * page + 1, page + 1},
    };
    for (const Step& s : steps) {
        ui->mouseMove(CPoint(100, 100));
        ui->runUntilIdle();
        painter->drawn = 0;
        s.act();
        ui->runUntilIdle();
        EXPECT_EQ(view->getTopRow(), s.top);
        EXPECT_LE(painter->drawn, s.rowsDrawn * view->getColumnCount());
        EXPECT_GT(painter->drawn, 0);
        // What was moved and what was drawn agree: every visible row shows its own colour.
        for (int row = view->getTopRow(); row < view->getTopRow() + page; ++row) {
            const CPoint p = rowPoint(view, row, 5);
            ASSERT_EQ(ui->pixel(p.x, p.y), Swatches::colourOf(row)) << row;
        }
    }
    view->setPainter(nullptr);
}

TEST(DropDownTest, TheListDropsDownAndAClickInItOrTheKeysChoose) {
    CommandLog log;
    UiHarness ui(CSize(300, 260));
    DropDown* sizes = place(ui.root(), DropDown::create(6, &log), CRect(20, 20, 220, 46), true);
    for (const char16_t* s : {u"10 × 15 cm", u"13 × 18 cm", u"A4", u"A5", u"Letter"}) sizes->addString(s);
    sizes->setCurSel(0);
    ui.runUntilIdle();
    // Escape pressed while the list is open is seen by nobody else (a dialog would close).
    struct EscapeSpy : NotifierListener {
        int escapes = 0;
        void onNotification(void*, const Notification&) override {
            const MSG* msg = OrvantaSystem::instance()->getCurrentMessage();
            escapes += msg && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE);
        }
    } spy;
    OrvantaSystem::instance()->addListener(&spy);
    const auto inList = [&](int row) {
        const CRect r = sizes->getList()->getRowRect(row);
        return CPoint(r.left + 20, (r.top + r.bottom) / 2);
    };
    struct Step {
        std::function<void()> act;
        bool open;
        int choice;
        std::size_t commands;
    };
    const Step steps[] = {
        {[&] { ui.click(CPoint(100, 30)); }, true, 0, 0},
        {[&] {
             ui.setInputWindow(sizes->getPopup()->getHWND());
             ui.mouseMove(inList(3));
             ui.mouseDown(inList(3));
             ui.mouseUp(inList(3));
         },
         false, 3, 1},
        {[&] { ui.setInputWindow(nullptr), ui.pressKey(SDLK_DOWN, false, false, true); }, true, 3, 1},
        {[&] { ui.pressKey(SDLK_UP), ui.pressKey(SDLK_UP); }, true, 3, 1},
        {[&] { ui.pressKey(SDLK_RETURN); }, false, 1, 2},
        {[&] { ui.pressKey(SDLK_F4), ui.pressKey(SDLK_END), ui.pressKey(SDLK_ESCAPE); }, false, 1, 2},
        {[&] { ui.pressKey(SDLK_DOWN); }, false, 2, 3},
        {[&] { ui.typeText("l"); }, false, 4, 4},
        {[&] { ui.click(CPoint(100, 30)), ui.click(CPoint(280, 240)); }, false, 4, 4},  // a press elsewhere
    };
    for (const Step& s : steps) {
        s.act();
        ui.runUntilIdle();
        EXPECT_EQ(sizes->isOpen(), s.open);
        EXPECT_EQ(sizes->getCurSel(), s.choice);
        EXPECT_EQ(log.commands.size(), s.commands);
    }
    EXPECT_EQ(spy.escapes, 0);
    OrvantaSystem::instance()->removeListener(&spy);
}

}  // namespace
