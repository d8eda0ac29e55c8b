// Grid arithmetic: every worked example of the sizing rules, then grids of random specs, gaps,
// borders, padding and margins against an independent computation of the same rules, before and after
// the window is resized, with the screen equal to a full repaint.

#include <gtest/gtest.h>

#include <random>

#include "orvanta/toolkit/GridContainer.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr float kFlex = GridContainer::kFlexible;
constexpr float kFit = GridContainer::kFit;

TEST(GridLayoutTest, TheWorkedExamplesOfTheSizingRules) {
    const struct {
        std::vector<float> specs;
        int client, gap, border;
        std::vector<int> heights;
    } cases[] = {
        {{kFlex}, 100, 0, 0, {100}},
        {{kFlex}, 100, 0, 3, {94}},  // less the borders
        {{0.25f, kFlex, kFlex}, 100, 0, 0, {25, 37, 38}},
        {{kFlex, kFlex, kFlex}, 10, 0, 0, {3, 3, 4}},   // the later ones get the extra pixels
        {{60, 60, kFlex}, 100, 0, 0, {60, 60, 0}},      // overflow: nothing scaled down
        {{1.0f, kFlex}, 100, 0, 0, {1, 99}},            // 1.0 is a pixel, not the whole
        {{kFit, kFlex}, 100, 0, 0, {0, 100}},           // a fit row without children
        {{0.5f, 0.5f, kFlex}, 104, 2, 0, {50, 50, 0}},  // fractions of what the gaps leave
        {{12.75f, kFlex, 0.1f}, 60, 5, 0, {12, 33, 5}},
    };
    for (const auto& c : cases) {
        OwnedPtr<GridContainer> grid = GridContainer::create(static_cast<int>(c.specs.size()), 1);
        grid->setBorderWidth(c.border, Style::kBorders);
        grid->setBorderWidth(c.gap, Style::VerticalGap);
        for (std::size_t i = 0; i < c.specs.size(); ++i) grid->setRowSpec(static_cast<int>(i), c.specs[i]);
        grid->setRect(CRect(0, 0, 50, c.client));
        for (std::size_t i = 0; i < c.heights.size(); ++i)
            EXPECT_EQ(grid->getRowHeight(static_cast<int>(i)), c.heights[i]) << &c - cases << " row " << i;
    }
}

// The same rules, written down again: fractions of what the gaps leave, fits of the largest minimum
// plus margins, pixels truncated; what is left split evenly with the last ones taking the remainder.
std::vector<int> expectedSizes(const std::vector<float>& specs, int available, const std::vector<int>& fits) {
    std::vector<int> sizes(specs.size(), 0);
    int used = 0;
    std::vector<std::size_t> flexible;
    for (std::size_t i = 0; i < specs.size(); ++i) {
        const float s = specs[i];
        if (s == kFlex)
            flexible.push_back(i);
        else
            sizes[i] = s == kFit  ? fits[i]
                       : s < 1.0f ? static_cast<int>(float(available) * s)
                                  : static_cast<int>(s);
        used += sizes[i];
    }
    const int left = available - used;
    const int k = static_cast<int>(flexible.size());
    for (int j = 0; left > 0 && j < k; ++j) sizes[flexible[j]] = left / k + (j >= k - left % k ? 1 : 0);
    return sizes;
}

float randomSpec(std::mt19937& rng) {
    switch (rng() % 4) {
        case 0:
            return kFlex;
        case 1:
            return kFit;
        case 2:
            return static_cast<float>(rng() % 20) / 20.0f;
        default:
            return static_cast<float>(1 + rng() % 60) + (rng() % 2 ? 0.5f : 0.0f);
    }
}

TEST(GridLayoutTest, RandomGridsFollowTheRulesBeforeAndAfterAResize) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 rng(seed);
        UiHarness ui(CSize(150 + rng() % 150, 120 + rng() % 120));
        const int rows = 1 + rng() % 4, cols = 1 + rng() % 4;
        GridContainer* grid = GridContainer::create(rows, cols);
        grid->setAlignment(Control::AlignFill, Control::AlignFill);
        grid->setBkColor(RGB(240, 240, 230));
        const CRect borders(rng() % 4, rng() % 4, rng() % 4, rng() % 4);
        const int widths[] = {borders.left, borders.top, borders.right, borders.bottom};
        for (int side = 0; side < 4; ++side) grid->setBorderWidth(widths[side], 1 << side);
        const CSize gap(rng() % 5, rng() % 5);
        grid->setBorderWidth(gap.cx, Style::HorizontalGap);
        grid->setBorderWidth(gap.cy, Style::VerticalGap);
        const int padding = rng() % 3;
        grid->setCellPadding(padding);
        std::vector<float> rowSpecs(rows), colSpecs(cols);
        for (int r = 0; r < rows; ++r) grid->setRowSpec(r, rowSpecs[r] = randomSpec(rng));
        for (int c = 0; c < cols; ++c) grid->setColSpec(c, colSpecs[c] = randomSpec(rng));
        ui.root()->add(grid);
        struct Child {
            Box* box;
            int row, col;
            CRect margins;
        };
        std::vector<Child> children;
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < cols; ++c) {
                if (rng() % 10 < 3) continue;
                Box* box = Box::create(RGB(rng() % 256, 90, 90), CRect(0, 0, 5 + rng() % 40, 5 + rng() % 30));
                const CRect m(rng() % 4, rng() % 4, rng() % 4, rng() % 4);
                setMargins(box, m);
                grid->add(box, r, c);
                children.push_back({box, r, c, m});
            }

        auto check = [&](const char* when) {
            const CSize client = ui.window()->getRect().size();
            ASSERT_EQ(grid->getRect(), CRect(CPoint(), client)) << when;
            std::vector<int> fitRows(rows, 0), fitCols(cols, 0);
            for (const Child& ch : children) {
                const CSize min = ch.box->getMinSize();
                fitRows[ch.row] = std::max(fitRows[ch.row], min.cy + ch.margins.top + ch.margins.bottom);
                fitCols[ch.col] = std::max(fitCols[ch.col], min.cx + ch.margins.left + ch.margins.right);
            }
            const auto heights = expectedSizes(
                rowSpecs, client.cy - borders.top - borders.bottom - (rows - 1) * gap.cy, fitRows);
            const auto widths = expectedSizes(
                colSpecs, client.cx - borders.left - borders.right - (cols - 1) * gap.cx, fitCols);
            for (int r = 0; r < rows; ++r) EXPECT_EQ(grid->getRowHeight(r), heights[r]) << when << seed;
            for (int c = 0; c < cols; ++c) EXPECT_EQ(grid->getColWidth(c), widths[c]) << when << seed;
            for (const Child& ch : children) {
                int x = borders.left, y = borders.top;
                for (int c = 0; c < ch.col; ++c) x += widths[c] + gap.cx;
                for (int r = 0; r < ch.row; ++r) y += heights[r] + gap.cy;
                // Filling its cell, less the padding and its margins.
                const CRect want(x + padding + ch.margins.left, y + padding + ch.margins.top,
                                 x + widths[ch.col] - padding - ch.margins.right,
                                 y + heights[ch.row] - padding - ch.margins.bottom);
                EXPECT_EQ(ch.box->getRect(), want)
                    << when << " seed " << seed << " cell " << ch.row << "," << ch.col;
            }
            const auto incremental = ui.pixels();
            ui.repaintAll();
            EXPECT_EQ(incremental, ui.pixels()) << when << " seed " << seed;
        };
        ui.runUntilIdle();
        check("first");
        ui.window()->move(
            CRect(ui.window()->getRect().topLeft(), CSize(150 + rng() % 150, 120 + rng() % 120)));
        ui.runUntilIdle();
        check("resized");
    }
}

TEST(GridLayoutTest, CellsChildrenAndTheGridsOwnSize) {
    UiHarness ui(CSize(200, 120));
    OwnedPtr<GridContainer> grid = GridContainer::create(2, 2);
    grid->setRect(CRect(0, 0, 100, 80));
    // Without a cell: row order from (0, 0), on to the next row past the last column.
    OwnedPtr<Box> a = Box::create(0, CRect(0, 0, 10, 10)), b = Box::create(0, CRect(0, 0, 10, 10)),
                  c = Box::create(0, CRect(0, 0, 10, 10));
    grid->add(a);
    grid->add(b);
    grid->add(c);
    EXPECT_TRUE(grid->getChild(0, 0) == a && grid->getChild(0, 1) == b && grid->getChild(1, 0) == c);
    // A child without a size of its own gets 7 in each such direction; a cell's new child replaces
    // the old one, which the grid lets go of.
    OwnedPtr<Container> plain = Container::create();
    plain->setMinSize(1, 30);
    grid->add(plain, 1, 0);
    EXPECT_EQ(plain->getMinSize(), CSize(7, 30));
    EXPECT_TRUE(grid->getChild(1, 0) == plain && !c->getParent() && c->getOwnerCount() == 1);
    // Shrinking drops the children outside.
    grid->setCols(1);
    EXPECT_TRUE(!b->getParent() && b->getOwnerCount() == 1 && grid->getChildCount() == 2);
    // The grid asks for what its rows and columns take: fits and pixels.
    grid->setColSpec(0, kFit);
    grid->setRowSpec(0, 20);
    grid->setRowSpec(1, kFit);
    grid->setBorderWidth(2, Style::kBorders);
    grid->setBorderWidth(3, Style::VerticalGap);
    EXPECT_EQ(grid->getMinSize(), CSize(2 + 10 + 2, 2 + 20 + 3 + 30 + 2));
    // With cell padding a fit column is narrower than its widest child: centred there, the child
    // keeps its width and overflows evenly (how a child is placed in its cell is LayoutTest's).
    OwnedPtr<Box> wide = Box::create(0, CRect(0, 0, 60, 10));
    wide->setAlignment(Control::AlignCenter, Control::AlignCenter);
    grid->setCellPadding(4);
    grid->add(wide, 0, 0);
    EXPECT_EQ(grid->getColWidth(0), 60);
    EXPECT_EQ(wide->getRect(), CRect(2, 7, 62, 17));  // cell 6..58 across, 6..18 down
}

}  // namespace
