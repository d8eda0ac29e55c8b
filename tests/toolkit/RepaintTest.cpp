// After any sequence of moves, resizes, shows and hides, the backing store holds exactly what a
// full repaint of the tree draws: nothing stale is left and nothing flickers through. (The order
// windowless children are painted in is InputRoutingTest's, beside the order they are hit in.)

#include <gtest/gtest.h>

#include <random>

#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/TextButton.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

CRect randomRect(std::mt19937& rng, CSize within) {
    std::uniform_int_distribution<int> x(-20, within.cx), y(-20, within.cy), w(1, within.cx / 2),
        h(1, within.cy / 2);
    const int left = x(rng);
    const int top = y(rng);
    return CRect(left, top, left + w(rng), top + h(rng));
}

TEST(RepaintTest, IncrementalPaintingEqualsAFullRepaint) {
    for (unsigned seed : {1u, 2u, 3u, 4u, 5u, 6u}) {
        UiHarness ui(CSize(240, 180));
        std::vector<Control*> controls;
        std::vector<Container*> panels;
        for (int p = 0; p < 2; ++p) {
            Container* panel = Container::create();
            panel->setMinSize(100, 80);
            panel->setBkColor(p ? RGB(220, 230, 250) : RGB(250, 230, 220));
            panel->setRect(CRect(20 + 100 * p, 20 + 40 * p, 120 + 100 * p, 100 + 40 * p));
            ui.root()->add(panel);
            panels.push_back(panel);
            controls.push_back(panel);
        }
        const COLORREF fills[] = {RGB(200, 40, 40), RGB(40, 160, 60), RGB(50, 70, 200), RGB(230, 200, 30)};
        for (int i = 0; i < 8; ++i) {
            Box* box = Box::create(fills[i % 4], CRect(10 * i, 8 * i, 10 * i + 30, 8 * i + 20));
            Container* parent = i % 3 == 0 ? ui.root() : panels[i % 2];
            parent->add(box);
            controls.push_back(box);
        }
        controls.push_back(place(ui.root(), Label::create(u"Stale pixels?"), CRect(30, 120, 150, 140)));
        controls.push_back(place(panels[1], TextButton::create(7, u"OK"), CRect(150, 130, 210, 160)));
        ui.runUntilIdle();

        std::mt19937 rng(seed);
        for (int step = 0; step < 40; ++step) {
            Control* target = controls[rng() % controls.size()];
            switch (rng() % 5) {
                case 0:
                    target->setRect(randomRect(rng, CSize(200, 160)));
                    break;
                case 1:
                    target->move(static_cast<int>(rng() % 21) - 10, static_cast<int>(rng() % 21) - 10);
                    break;
                case 2:
                    target->show(target->isHidden());
                    break;
                case 3:
                    target->setSize(1 + static_cast<int>(rng() % 90), 1 + static_cast<int>(rng() % 70));
                    break;
                default:  // the top-level window itself, as the user drags its frame
                    ui.window()->move(CRect(
                        ui.window()->getRect().topLeft(),
                        CSize(160 + static_cast<int>(rng() % 120), 120 + static_cast<int>(rng() % 90))));
                    break;
            }
            if (rng() % 3 == 0) {
                ui.runUntilIdle();
                const auto incremental = ui.pixels();
                ui.repaintAll();
                ASSERT_EQ(incremental, ui.pixels()) << "seed " << seed << ", step " << step;
            }
        }
        ui.runUntilIdle();
        const auto incremental = ui.pixels();
        ui.repaintAll();
        EXPECT_EQ(incremental, ui.pixels()) << "seed " << seed;
    }
}

}  // namespace
