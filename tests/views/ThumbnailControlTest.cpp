// The thumbnail grid in a real window tree on the offscreen display: what scrolling leaves on the
// screen, the grid's arithmetic, and the selection rules of keys and mouse in one table each.

#include <SDL.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <set>
#include <thread>

#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MouseTracker.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Tooltip.h"
#include "orvanta/views/ThumbnailControl.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"
#include "tests/support/UiHarness.h"
#include "tests/support/XvfbServer.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

using Cell = ThumbnailControl::Cell;

// Assets whose files are gone, so the store shows what it holds: a thumbnail of each asset's own
// colour and size, with a mark in its corner so that a shift by a pixel shows.
struct Catalogue {
    Catalogue(int count, CSize thumb) : list(MemAssetList::create()) {
        static OwnedPtr<IntelJpegCodec> codec = [] {
            OwnedPtr<IntelJpegCodec> c = IntelJpegCodec::create();
            CodecManager::registerCodec(c);
            return c;
        }();
        EXPECT_TRUE(ThumbnailDb::createFile(dir.wide("thumbs.db"), 1024, 0));
        store = ThumbnailDb::create(dir.wide("thumbs.db"), thumb, codec);
        for (int i = 0; i < count; ++i) {
            OwnedPtr<Asset> asset =
                Asset::create(UniqueID::create(), dir.wide(std::to_string(i) + ".gone"), nullptr, nullptr);
            const int width = thumb.cx - 6 * (i % 3), height = thumb.cy - 4 * (i % 4);
            OwnedPtr<Image> picture = Image::create(
                makeDib(width, height,
                        [i](int x, int y) {
                            return x < 4 && y < 4 ? Rgb{255, 255, 255}
                                                  : Rgb{(37 * i) % 256, (91 * i) % 200, 250 - (13 * i) % 200};
                        }),
                false);
            EXPECT_TRUE(store->putThumbnail(asset->getID(), picture, FILETIME{1, 0}, false));
            list->addAsset(asset, false);
        }
    }
    TempDir dir;
    OwnedPtr<MemAssetList> list;
    OwnedPtr<ThumbnailDb> store;
};

// Colours cells and annotations by index, refuses the cells listed, and shows the focus.
class TestHelper : public ThumbnailControlHelper {
public:
    std::set<int> refused;
    bool takeClicks = false;
    std::vector<Direction> arrows;
    // What the pointer did, as "+4" (entered cell 4's picture) or "-4b" (left its bottom annotation).
    std::vector<std::string> pointer;
    std::vector<UINT> edits;

    COLORREF getCellBkColor(const Cell& cell) override { return RGB(200, 180 + (index(cell) * 7) % 70, 190); }
    void drawAnnotation(HDC dc, const Cell& cell, Padding::Side side) override {
        if (side != Padding::Bottom) return;
        const CRect whole = getThumbnailControl()->cellRect(cell, true);
        dc->fillRect(
            CRect(whole.left + 2, whole.bottom - 5, whole.left + 4 + index(cell) % 20, whole.bottom - 2),
            RGB(0, 0, 0));
    }
    void drawFocusHighlight(HDC dc, const Cell& cell, bool) override {
        dc->frameRect(getThumbnailControl()->cellRect(cell, true), RGB(255, 0, 0));
    }
    bool canSelectCell(const Cell& cell) override { return !refused.count(index(cell)); }
    bool onClick(const Cell&, ClickEvent) override { return takeClicks; }
    bool onEditCommand(UINT message) override {
        edits.push_back(message);
        return message == WM_PASTE;
    }
    bool onMouse(const Cell& cell, MouseEvent event) override {
        pointer.push_back((event == MouseEvent::Enter ? "+" : "-") + std::to_string(index(cell)));
        return false;
    }
    // The caption below each picture is hot and tells the cell's number.
    bool onMouseAnnotation(const Cell& cell, Padding::Side side, MouseEvent event) override {
        pointer.push_back((event == MouseEvent::Enter ? "+" : "-") + std::to_string(index(cell)) +
                          (side == Padding::Bottom ? "b" : "o"));
        if (side != Padding::Bottom) return false;
        if (event == MouseEvent::Leave) {
            removeTooltip(index(cell));
            return false;
        }
        const CRect whole = getThumbnailControl()->cellRect(cell, true);
        addTooltip(CString::fromUtf8("Photo " + std::to_string(index(cell))), index(cell),
                   CRect(whole.left, whole.bottom - 9, whole.right, whole.bottom));
        return true;
    }
    void moveToNext(Direction direction, bool extend) override {
        arrows.push_back(direction);
        ThumbnailControlHelper::moveToNext(direction, extend);
    }

private:
    int index(const Cell& cell) { return getThumbnailControl()->cellIndex(cell); }
};

class Commands : public CommandListener {
public:
    void onCommand(Control*, int command) override { heard.push_back(command); }
    std::vector<int> heard;
};

struct Grid {
    Grid(int rows, int cols, int count, CSize window = CSize(230, 170), bool offscreen = true)
        : ui(window, CPoint(40, 30), offscreen), catalogue(count, CSize(40, 30)), helper(new TestHelper()) {
        control = ThumbnailControl::create(rows, cols, 40, 30, catalogue.store, true, &commands, helper);
        control->setAnnotation(6, Padding::Bottom);
        control->setPadding(5, Padding::kAll);
        control->setAutoSpacing(3);
        control->setBkColor(RGB(240, 240, 240));
        control->setRect(CRect(CPoint(0, 0), window));
        ui.root()->add(control);
        control->setList(catalogue.list);
        control->setFocus();
        ui.runUntilIdle();
    }
    std::set<int> selected() {
        std::set<int> indices;
        for (int i = 0; i < catalogue.list->getCount(); ++i)
            if (control->getSelection()->isSelected(catalogue.list->getID(i))) indices.insert(i);
        return indices;
    }
    CPoint centre(int index) {
        const CRect r = control->cellRect(control->cellFromIndex(index), false);
        return CPoint((r.left + r.right) / 2, (r.top + r.bottom) / 2);
    }

    Commands commands;  // outlives the window tree, which tells it of the control's end
    UiHarness ui;
    Catalogue catalogue;
    TestHelper* helper;
    ThumbnailControl* control;
};

TEST(ThumbnailControl, ScrollingThenPaintingEqualsAFullRepaintForEveryDistanceAndFillOrder) {
    // Rows growing (filled row by row) and columns growing (filled column by column).
    for (const auto& [rows, cols] : {std::pair{ThumbnailControl::kGrow, ThumbnailControl::kFit},
                                     std::pair{ThumbnailControl::kFit, ThumbnailControl::kGrow}}) {
        Grid grid(rows, cols, 61);
        // Marks that straddle the scrolling: a selection, the current cell and a shadow.
        grid.control->setShadows(makeDib(9, 9,
                                         [](int x, int y) {
                                             return Rgb{x * 20, y * 20, 90};
                                         }),
                                 nullptr);
        grid.control->moveTo(grid.control->cellFromIndex(14), false);
        grid.control->select(grid.control->cellFromIndex(15));
        grid.control->setFirstRow(0);
        grid.control->setFirstCol(0);
        grid.ui.runUntilIdle();
        const bool down = rows == ThumbnailControl::kGrow;
        const int page = down ? grid.control->getVisibleRows(false) : grid.control->getVisibleCols(false);
        for (int distance = 1; distance <= page + 1; ++distance) {
            for (int sign : {1, -1}) {
                SCOPED_TRACE(testing::Message() << (down ? "rows" : "columns") << " by " << sign * distance);
                const bool moved = down ? grid.control->scrollBy(sign * distance, 0)
                                        : grid.control->scrollBy(0, sign * distance);
                ASSERT_TRUE(moved);
                grid.ui.runUntilIdle();
                const std::vector<std::uint32_t> scrolled = grid.ui.pixels();
                grid.ui.repaintAll();
                ASSERT_EQ(scrolled, grid.ui.pixels());
            }
        }
        // Past the end nothing moves.
        EXPECT_FALSE(down ? grid.control->scrollBy(-1, 0) : grid.control->scrollBy(0, -1));
    }
}

TEST(ThumbnailControl, GridArithmeticFollowsTheShapeAndTheList) {
    struct Case {
        int rows, cols, count;
        CSize window;
        int numRows, numCols;
        Cell probe;
        int probeIndex;
    };
    // Cells are 59 x 55 with spacing (40 + 2 * 5 + 2 * 3 + 3, 30 + 2 * 5 + 3 + 9 + 3).
    const Case cases[] = {
        {ThumbnailControl::kGrow, 3, 10, CSize(230, 170), 4, 3, Cell(3, 1), 10},  // index past the end
        {ThumbnailControl::kGrow, ThumbnailControl::kFit, 10, CSize(230, 170), 4, 3, Cell(1, 2), 5},
        {ThumbnailControl::kFit, ThumbnailControl::kGrow, 10, CSize(230, 40), 1, 10, Cell(0, 4), 4},  // short
        {2, ThumbnailControl::kGrow, 7, CSize(230, 170), 2, 4, Cell(1, 3), 7},
        {ThumbnailControl::kGrow, 3, 0, CSize(230, 170), 0, 3, Cell(0, 0), 0},
    };
    for (const Case& c : cases) {
        Grid grid(c.rows, c.cols, c.count, c.window);
        ThumbnailControl* control = grid.control;
        SCOPED_TRACE(testing::Message() << c.rows << " x " << c.cols << " of " << c.count);
        EXPECT_EQ(c.numRows, control->getNumRows());
        EXPECT_EQ(c.numCols, control->getNumCols());
        EXPECT_EQ(c.probeIndex, control->cellIndex(c.probe));
        EXPECT_EQ(c.probeIndex < c.count, control->getAsset(c.probe) != nullptr);
        for (int i = 0; i < c.count; ++i) ASSERT_EQ(i, control->cellIndex(control->cellFromIndex(i)));
    }
    // Without a list there are no rows and nothing to paint; a resize reflows a fitted grid.
    Grid grid(ThumbnailControl::kGrow, ThumbnailControl::kFit, 10);
    grid.control->setList(nullptr);
    EXPECT_EQ(0, grid.control->getNumRows());
    grid.control->setList(grid.catalogue.list);
    grid.control->setRect(CRect(0, 0, 130, 170));
    EXPECT_EQ(2, grid.control->getNumCols());
    EXPECT_EQ(5, grid.control->getNumRows());
}

TEST(ThumbnailControl, SelectionFollowsTheAnchorAndTheCurrentCell) {
    // 10 assets in rows of 3 (rows growing) or columns of 3 (columns growing); cell 4 refused.
    struct Step {
        std::function<void(Grid&)> act;
        std::set<int> selected;
        int current;
        int anchor;
    };
    const auto key = [](int sdlKey, bool shift = false, bool control = false) {
        return [=](Grid& g) { g.ui.pressKey(sdlKey, shift, control); };
    };
    const auto click = [](int index, WPARAM keys = 0) {
        return [=](Grid& g) {
            // The keys held are read as the messages are handled.
            SDL_SetModState((keys & MK_SHIFT) ? KMOD_LSHIFT : (keys & MK_CONTROL) ? KMOD_LCTRL : KMOD_NONE);
            g.ui.click(g.centre(index));
            g.ui.runUntilIdle();
            SDL_SetModState(KMOD_NONE);
        };
    };
    struct Table {
        int rows, cols, mode;
        std::vector<Step> steps;
    };
    const Table tables[] = {
        {ThumbnailControl::kGrow,
         3,
         ThumbnailControl::kReplace,
         {{key(SDLK_RIGHT), {0}, 0, 0},
          {key(SDLK_RIGHT), {1}, 1, 1},
          {key(SDLK_RIGHT), {2}, 2, 2},
          {key(SDLK_RIGHT), {3}, 3, 3},             // columns fixed: on to the next row
          {key(SDLK_DOWN, true), {3, 5, 6}, 6, 3},  // 4 refused, still crossed
          {key(SDLK_LEFT, true), {3, 5}, 5, 3},
          {key(SDLK_LEFT, true), {3}, 4, 3},  // the refused cell can be current
          {key(SDLK_END), {9}, 9, 9},
          {key(SDLK_DOWN), {9}, 9, 9},
          {key(SDLK_HOME, true), {0, 1, 2, 3, 5, 6, 7, 8, 9}, 0, 9},
          {click(7), {7}, 7, 7},
          {click(5, MK_CONTROL), {5, 7}, 5, 5},
          {click(5, MK_CONTROL), {7}, 5, 5},
          {click(8, MK_SHIFT), {5, 6, 7, 8}, 8, 5},
          {key(SDLK_SPACE, false, true), {5, 6, 7}, 8, 8},
          {click(6), {6}, 6, 6}}},
        {3,
         ThumbnailControl::kGrow,
         ThumbnailControl::kReplace,
         {{key(SDLK_DOWN), {0}, 0, 0},
          {key(SDLK_UP), {0}, 0, 0},
          {key(SDLK_DOWN), {1}, 1, 1},
          {key(SDLK_DOWN), {2}, 2, 2},
          {key(SDLK_DOWN), {3}, 3, 3},  // rows fixed: wraps to the next column
          {key(SDLK_RIGHT, true), {3, 5, 6}, 6, 3},
          {key(SDLK_RIGHT), {9}, 9, 9},
          {key(SDLK_RIGHT), {9}, 9, 9}}},  // columns growing: no wrap past the last one
        {ThumbnailControl::kGrow,
         3,
         ThumbnailControl::kKeep,
         {{click(1), {1}, 1, 1},
          {key(SDLK_RIGHT), {1}, 2, 2},  // moving keeps the selection and the anchor follows
          {key(SDLK_DOWN, true), {1, 2, 3, 5}, 5, 2},
          {key(SDLK_LEFT, true), {1, 2, 3}, 4, 2}}},  // only the old range is taken back
        {ThumbnailControl::kGrow,
         3,
         ThumbnailControl::kSingle,
         {{key(SDLK_RIGHT), {0}, 0, 0}, {key(SDLK_DOWN, true), {3}, 3, 3}}},
    };
    for (const Table& table : tables) {
        Grid grid(table.rows, table.cols, 10);
        grid.helper->refused = {4};
        grid.control->setSelectionMode(table.mode);
        for (std::size_t i = 0; i < table.steps.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "table " << (&table - tables) << " step " << i);
            table.steps[i].act(grid);
            grid.ui.runUntilIdle();
            EXPECT_EQ(table.steps[i].selected, grid.selected());
            EXPECT_EQ(table.steps[i].current, grid.control->cellIndex(grid.control->getCurrent()));
            EXPECT_EQ(table.steps[i].anchor, grid.control->cellIndex(grid.control->getAnchor()));
            EXPECT_EQ(nullptr, Platform::Window::getCapture())
                << "a click over is no drag: the mouse is free";
        }
        // The arrows reached the helper first; every change was heard after the fact.
        EXPECT_FALSE(grid.helper->arrows.empty());
        EXPECT_NE(std::count(grid.commands.heard.begin(), grid.commands.heard.end(),
                             ThumbnailControl::kSelectionChanged),
                  0);
    }
}

TEST(ThumbnailControl, TheMouseBandsDragsAndDefersToTheHelper) {
    Grid grid(ThumbnailControl::kGrow, ThumbnailControl::kFit, 40);
    ThumbnailControl* control = grid.control;
    // A band from the gap before cell 0 to the middle of cell 4 (rows of 3) takes 0, 1, 3 and 4.
    grid.ui.mouseDown(CPoint(1, 1));
    grid.ui.mouseMove(grid.centre(4));
    grid.ui.mouseUp(grid.centre(4));
    grid.ui.runUntilIdle();
    EXPECT_EQ((std::set<int>{0, 1, 3, 4}), grid.selected());

    // Dragging them to the right half of cell 7 drops before 8, and the bar is drawn between.
    grid.ui.mouseDown(grid.centre(1));
    const CRect seven = control->cellRect(control->cellFromIndex(7), true);
    const CPoint target(seven.right - 3, (seven.top + seven.bottom) / 2);
    grid.ui.mouseMove(CPoint(grid.centre(1).x + 10, grid.centre(1).y));
    grid.ui.mouseMove(target);
    grid.ui.runUntilIdle();
    EXPECT_TRUE(control->isDragging());
    EXPECT_NE(grid.ui.pixel(seven.right, target.y), grid.ui.pixel(seven.right + 10, target.y));
    // The dragged picture follows the pointer, framed in black.
    const int offset = ThumbnailControl::kDragPictureOffset;
    EXPECT_EQ(RGB(0, 0, 0), grid.ui.pixel(target.x + offset, target.y + offset + 5));
    EXPECT_NE(RGB(0, 0, 0), grid.ui.pixel(target.x + offset + 5, target.y + offset + 5));
    grid.ui.mouseUp(target);
    grid.ui.runUntilIdle();
    EXPECT_EQ(8, control->getDropIndex());
    EXPECT_EQ(ThumbnailControl::kDropped, grid.commands.heard.back());
    const std::vector<std::uint32_t> after = grid.ui.pixels();
    grid.ui.repaintAll();
    EXPECT_EQ(after, grid.ui.pixels());  // no bar left behind

    // Dropped on another window of the program the cells say which; where there is none, nothing.
    Platform::Window* other = Platform::Window::create(nullptr, CRect(300, 60, 420, 160), WS_POPUP, nullptr);
    other->show(true);
    for (const CPoint& outside : {CPoint(300, 50), CPoint(600, 50)}) {
        grid.commands.heard.clear();
        grid.ui.mouseDown(grid.centre(1));
        grid.ui.mouseMove(CPoint(grid.centre(1).x + 10, grid.centre(1).y));
        grid.ui.mouseMove(outside);
        grid.ui.mouseUp(outside);
        grid.ui.runUntilIdle();
        EXPECT_EQ(-1, control->getDropIndex());
        EXPECT_EQ(outside.x == 300 ? other : nullptr, control->getDropWindow());
        EXPECT_EQ(outside.x == 300, std::count(grid.commands.heard.begin(), grid.commands.heard.end(),
                                               ThumbnailControl::kDropped) == 1);
    }
    other->destroy();

    // Held below the window, a band scrolls the grid on the timer, keeping its first corner.
    grid.ui.mouseDown(CPoint(1, 1));
    grid.ui.mouseMove(CPoint(100, 400));
    grid.ui.runFor(300);
    EXPECT_GT(control->getFirstRow(), 0);
    grid.ui.mouseUp(CPoint(100, 400));
    grid.ui.runUntilIdle();
    EXPECT_TRUE(grid.selected().count(0) && grid.selected().count(control->getFirstRow() * 3 + 3));

    // A helper that takes clicks leaves the selection alone.
    grid.helper->takeClicks = true;
    const std::set<int> before = grid.selected();
    grid.ui.click(grid.centre(2 + 3 * control->getFirstRow()));
    grid.ui.runUntilIdle();
    EXPECT_EQ(before, grid.selected());
}

TEST(ThumbnailControl, ThePointerIsToldToTheHelperWhichShowsAHandAndATooltipOverItsCaption) {
    Grid grid(ThumbnailControl::kGrow, ThumbnailControl::kFit, 10);
    const CRect four = grid.control->cellRect(grid.control->cellFromIndex(4), true);
    const CPoint caption(four.left + 20, four.bottom - 4), picture = grid.centre(4);
    enum Act { Move, Rest, Press, Leave };
    struct Step {
        Act act;
        CPoint at;
        int cursor;  // 0: not looked at
        bool tooltip;
    };
    const Step steps[] = {
        {Move, picture, IDC_ARROW, false},
        {Move, CPoint(picture.x + 2, picture.y + 2), IDC_ARROW, false},  // within the picture: nothing new
        {Rest, caption, IDC_HAND, true},
        {Move, CPoint(caption.x + 3, caption.y), IDC_HAND, true},  // still in the caption
        {Move, grid.centre(5), IDC_ARROW, false},
        {Rest, caption, IDC_HAND, true},
        {Press, caption, 0, false},
        {Move, grid.centre(0), IDC_ARROW, false},
        {Leave, CPoint(), 0, false},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(testing::Message() << "step " << (&step - steps));
        if (step.act == Leave) grid.ui.mouseLeave();
        if (step.act == Press) grid.ui.click(step.at);
        if (step.act == Move || step.act == Rest) grid.ui.mouseMove(step.at);
        grid.ui.runFor(step.act == Rest ? Platform::MouseTracker::kDefaultHoverTime + 200 : 0);
        EXPECT_TRUE(!step.cursor || step.cursor == Platform::Cursor::current()->getId());
        const Tooltip* tooltip = grid.control->getTooltipWindow();
        EXPECT_EQ(step.tooltip, tooltip && tooltip->isShown());
        EXPECT_TRUE(!step.tooltip || tooltip->getText().str() == u"Photo 4");
    }
    EXPECT_EQ((std::vector<std::string>{"+4", "-4", "+4b", "-4b", "+5", "-5", "+4b", "-4b", "+0", "-0"}),
              grid.helper->pointer);
    EXPECT_TRUE(grid.control->getHotCell().isNull());
}

// On a private X server, so that another program (xclip) pastes what the grid put on the clipboard.
TEST(ThumbnailControl, CopyAndCutGiveTheSelectedFilesToOtherProgramsAndTheHelperSeesEachFirst) {
    if (!XvfbServer::available() || std::system("command -v xclip >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "Xvfb or xclip is missing";
    XvfbServer server(320, 240);
    ASSERT_TRUE(server.isRunning());
    Platform::Display::instance().close();
    setenv("DISPLAY", server.display().c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("SDL_VIDEODRIVER");
    {
        Grid grid(ThumbnailControl::kGrow, 3, 0, CSize(230, 170), false);
        OwnedPtr<MemAssetList> files = MemAssetList::create();
        const FILETIME time{1, 0};
        for (const char16_t* path : {u"/photos/a.jpg", u"/photos/b b.jpg", u"/photos/c.jpg"})
            files->addAsset(OwnedPtr<Asset>(Asset::create(UniqueID::create(), path, &time, &time)), false);
        grid.control->setList(files);
        grid.control->select(Cell(0, 1));
        grid.control->select(Cell(0, 2));
        const auto paste = [&](const std::string& target) {
            const std::string out = grid.catalogue.dir.file("pasted");
            EXPECT_EQ(0, server.run("xclip -o -selection clipboard -t '" + target + "' > '" + out + "'"));
            return readFileBytes(out);
        };
        grid.ui.pressKey(SDLK_c, false, true);
        grid.ui.runUntilIdle();
        EXPECT_EQ("file:///photos/b%20b.jpg\r\nfile:///photos/c.jpg\r\n", paste("text/uri-list"));
        EXPECT_EQ("copy\nfile:///photos/b%20b.jpg\nfile:///photos/c.jpg",
                  paste("x-special/gnome-copied-files"));
        grid.ui.pressKey(SDLK_x, false, true);
        grid.ui.runUntilIdle();
        EXPECT_EQ("cut\nfile:///photos/b%20b.jpg\nfile:///photos/c.jpg",
                  paste("x-special/gnome-copied-files"));
        for (int key : {SDLK_v, SDLK_z}) grid.ui.pressKey(key, false, true);
        grid.ui.runUntilIdle();
        EXPECT_EQ((std::vector<UINT>{WM_COPY, WM_CUT, WM_PASTE, WM_UNDO}), grid.helper->edits);
    }
    Platform::Display::instance().close();
    unsetenv("DISPLAY");
    UiHarness::useTestEnvironment();
}

TEST(ThumbnailControl, AssetsAddedOnAnotherThreadReachTheGridOnItsOwn) {
    Grid grid(ThumbnailControl::kGrow, 3, 5);
    MemAssetList* list = grid.catalogue.list;
    std::atomic<bool> done{false};
    std::thread adder([&] {
        for (int i = 0; i < 100; ++i) {
            // The new asset's count changes under the list's lock, as the grid's do.
            AssetList::Lock lock(list);
            OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), u"/gone/added.gone", nullptr, nullptr);
            list->addAsset(asset, true);
        }
        done = true;
    });
    while (!done) grid.ui.runUntilIdle();
    adder.join();
    grid.ui.runUntilIdle();
    EXPECT_EQ(35, grid.control->getNumRows());  // 105 in rows of 3
    grid.control->setFirstRow(34);
    grid.ui.runUntilIdle();
    EXPECT_TRUE(grid.control->isValidCell(Cell(34, 2)));
    EXPECT_NE(grid.control->getAsset(Cell(34, 2)), nullptr);
}

}  // namespace
