#include "tools/window-demo/WizardDemo.h"

#include <cstdio>
#include <string>
#include <vector>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/ResourceModule.h"
#include "orvanta/toolkit/BitmapButtonHelper.h"
#include "orvanta/toolkit/BitmapCheckbox.h"
#include "orvanta/toolkit/FontCache.h"
#include "orvanta/toolkit/FrameContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/ScrollableContainer.h"
#include "orvanta/toolkit/TextButton.h"
#include "orvanta/toolkit/Wizard.h"
#include "tools/window-demo/DemoSupport.h"

using namespace Orvanta;

namespace OrvantaDemo {

namespace {

constexpr COLORREF kMask = RGB(255, 0, 255);

enum Strip { kBanner = 1, kButton, kUnchecked, kChecked, kIcons };

// A strip of frames, each a flat colour with its corners in the mask colour (so that they show
// what is behind), as a packed 24-bit DIB.
std::string flatStrip(const std::vector<COLORREF>& colours, CSize frame, int corner) {
    const int width = frame.cx * static_cast<int>(colours.size());
    const int stride = (width * 3 + 3) & ~3;
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = -frame.cy;
    header.biPlanes = 1;
    header.biBitCount = 24;
    std::string dib(reinterpret_cast<const char*>(&header), sizeof header);
    dib.resize(sizeof header + static_cast<std::size_t>(stride) * frame.cy, '\0');
    for (int y = 0; y < frame.cy; ++y)
        for (int x = 0; x < width; ++x) {
            const int fx = x % frame.cx;
            const int dx = std::min(fx, frame.cx - 1 - fx), dy = std::min(y, frame.cy - 1 - y);
            const COLORREF c = dx + dy < corner ? kMask : colours[x / frame.cx];
            char* p = &dib[sizeof header + static_cast<std::size_t>(y) * stride + x * 3];
            p[0] = static_cast<char>(GetBValue(c));
            p[1] = static_cast<char>(GetGValue(c));
            p[2] = static_cast<char>(GetRValue(c));
        }
    return dib;
}

void addStrip(Platform::ResourceModule& module, int id, const std::vector<COLORREF>& colours, CSize frame,
              int corner) {
    const std::string dib = flatStrip(colours, frame, corner);
    module.addBitmap(id, dib.data(), dib.size());
}

Label* text(const char16_t* words, int size = 0, bool bold = false, UINT format = DT_LEFT | DT_VCENTER) {
    Label* label = Label::create(words, format);
    if (size) label->setFont(FontCache::getFont(u"DejaVu Sans", size, bold));
    return label;
}

// A checkbox picture with its caption beside it.
PackedContainer* checkRow(Platform::ResourceModule& strips, int id, const char16_t* caption) {
    PackedContainer* row = PackedContainer::create();
    row->setPackDirection(Control::AlignLeft);
    BitmapCheckbox* box =
        BitmapCheckbox::create(id, Resource(kUnchecked, &strips), Resource(kChecked, &strips), nullptr, 4, 1,
                               kMask, Painting::ModeNatural);
    box->setAlignment(Control::AlignLeft, Control::AlignCenter);
    box->setMargin(6, Style::Right);
    row->add(box, true);
    Label* label = text(caption);
    label->setAlignment(Control::AlignLeft, Control::AlignCenter);
    row->add(label);
    return row;
}

class ImportWizard : public Wizard {
public:
    static ImportWizard* create(Platform::ResourceModule* strips) { return new ImportWizard(strips); }
    CSize getInitialSize() override { return CSize(560, 400); }
    CString getInitialTitle() override { return CString(u"Import photographs"); }

    Container* constructPage(int page) override {
        switch (page) {
            case 0:
                return createPage(0, welcome(), -1, 1);
            case 1:
                return createPage(1, choose(), 0, 2);
            case 2:
                return createPage(2, finish(), 1, -1);
            default:
                return nullptr;
        }
    }
    // The controls the demo clicks, and the list's scroll bar, which it pages down.
    std::vector<WindowedControl*> toClick;
    BitmapScrollbar* scrollbar = nullptr;

private:
    explicit ImportWizard(Platform::ResourceModule* strips) : mStrips(*strips) {}

    // A banner, a title, and the source in a frame.
    Container* welcome() {
        GridContainer* body = GridContainer::create(3, 1);
        body->setRowSpec(0, GridContainer::kFit);
        body->setRowSpec(1, GridContainer::kFit);
        Painting* banner = Painting::create(Resource(kBanner, &mStrips), 1, kNoTransparentColor,
                                            Painting::ModeStretchHorizontal);
        body->add(banner, 0, 0);
        Label* title = text(u"Import photographs from a memory card", 18, true);
        title->setMargin(12, Style::kBorders);
        body->add(title, 1, 0);
        FrameContainer* source = FrameContainer::create(u"Source");
        source->setMargin(12, Style::kBorders);
        GridContainer* inside = GridContainer::create(2, 1);
        inside->setRowSpec(0, GridContainer::kFit);
        inside->setRowSpec(1, GridContainer::kFit);
        inside->setMargin(8, Style::kBorders);
        inside->setAlignment(Control::AlignFill, Control::AlignFill);
        inside->add(text(u"Memory card (E:) — 248 photographs, 3 videos"), 0, 0);
        PackedContainer* videos = checkRow(mStrips, 10, u"Also import the videos");
        inside->add(videos, 1, 0, true);
        toClick.push_back(static_cast<WindowedControl*>(videos->getChildAt(0)));
        source->add(inside, true);
        body->add(source, 2, 0, true);
        return body;
    }

    // Twenty photographs to pick from, in a list that scrolls by rows.
    Container* choose() {
        ScrollableContainer* list = ScrollableContainer::create();
        list->setScrollStep(28);
        list->setMargin(12, Style::kBorders);
        list->setBorderWidth(1, Style::kBorders);
        list->setBorderColor(RGB(150, 150, 160), Style::kBorders);
        list->setBkColor(RGB(255, 255, 255));
        GridContainer* rows = GridContainer::create(20, 1);
        for (int i = 0; i < 20; ++i) {
            rows->setRowSpec(i, 28);
            const std::string name =
                "IMG_20" + std::to_string(10 + i) + ".JPG   " + std::to_string(2 + i % 5) + ".4 MB";
            const CString caption = CString::fromUtf8(name);
            PackedContainer* row = checkRow(mStrips, 20 + i, caption.c_str());
            row->setMargin(4, Style::Left | Style::Top);
            rows->add(row, i, 0, true);
            if (i % 3 == 0) toClick.push_back(static_cast<WindowedControl*>(row->getChildAt(0)));
        }
        list->setContent(rows);
        scrollbar = list->getScrollbar();
        return list;
    }

    // The summary, with a picture for each kind of item and a skinned button.
    Container* finish() {
        GridContainer* body = GridContainer::create(3, 1);
        body->setRowSpec(0, GridContainer::kFit);
        body->setRowSpec(1, GridContainer::kFit);
        Label* summary = text(u"Ready: 7 photographs will be copied to Pictures/2026 and catalogued.", 0,
                              false, DT_LEFT | DT_WORDBREAK);
        summary->setFixedWidth(500);
        summary->setMargin(12, Style::kBorders);
        body->add(summary, 0, 0);
        PackedContainer* icons = PackedContainer::create();
        icons->setPackDirection(Control::AlignLeft);
        icons->setMargin(12, Style::Left);
        for (int frame = 0; frame < 3; ++frame) {
            Painting* icon = Painting::create(Resource(kIcons, &mStrips), 3, kMask, Painting::ModeNatural);
            icon->setFrame(frame);
            icon->setMargin(8, Style::Right);
            icons->add(icon);
        }
        body->add(icons, 1, 0);
        mOpen = std::make_unique<BitmapButtonHelper>(0x6001, Resource(kButton, &mStrips), nullptr, 4, 1,
                                                     kMask, Painting::ModeStretch);
        Label* caption =
            text(u"Open the catalogue afterwards", 0, false, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        caption->setTextColor(RGB(255, 255, 255));
        caption->setAlignment(Control::AlignFill, Control::AlignFill);
        mOpen->add(caption);
        BitmapButton* open = mOpen->getBitmapButton();
        open->setMinSize(240, 32);
        open->setAlignment(Control::AlignLeft, Control::AlignTop);
        open->setMargin(12, Style::kBorders);
        body->add(open, 2, 0, true);
        return body;
    }

    Platform::ResourceModule& mStrips;
    std::unique_ptr<BitmapButtonHelper> mOpen;
};

void postClick(WindowedControl* control) {
    HWND window = control->getHWND();
    Platform::Window::postMessage(window, WM_MOUSEMOVE, 0, MAKELPARAM(3, 3));
    Platform::Window::postMessage(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    Platform::Window::postMessage(window, WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
}

WindowedControl* wizardButton(ImportWizard* wizard, int id) {
    auto* page = static_cast<GridContainer*>(wizard->getPages()->getCurrentControl());
    return static_cast<WindowedControl*>(static_cast<Container*>(page->getChild(1, 0))->getChildById(id));
}

}  // namespace

int runWizardDemo(const char* directory) {
    init();
    Platform::ResourceModule strips;
    addStrip(strips, kBanner, {RGB(32, 96, 112)}, CSize(4, 72), 0);
    addStrip(strips, kButton, {RGB(40, 110, 190), RGB(20, 60, 120), RGB(70, 150, 230), RGB(160, 160, 170)},
             CSize(96, 32), 3);
    addStrip(strips, kUnchecked,
             {RGB(235, 235, 240), RGB(200, 200, 210), RGB(220, 230, 250), RGB(225, 225, 225)}, CSize(18, 18),
             2);
    addStrip(strips, kChecked, {RGB(40, 150, 80), RGB(20, 90, 50), RGB(60, 180, 100), RGB(150, 170, 160)},
             CSize(18, 18), 2);
    addStrip(strips, kIcons, {RGB(220, 120, 40), RGB(60, 140, 210), RGB(120, 180, 60)}, CSize(40, 40), 6);

    HWND owner = Platform::Window::create(nullptr, CRect(0, 0, 800, 600), WS_OVERLAPPEDWINDOW, nullptr);
    OwnedPtr<Container> root = Container::create(owner);
    owner->show(true);
    OwnedPtr<ImportWizard> wizard = ImportWizard::create(&strips);
    // No person is there to answer: the wizard comes up modeless and showModal answers at once.
    Dialog::startForcedModeless(IDOK);
    const int answer = wizard->showModal(owner);
    int written = 0;
    for (int page = 0; page < 3 && wizard->getContainer(); ++page) {
        runUntilIdle(root);
        // The page's own controls first: checkboxes ticked, then the way on.
        for (WindowedControl* control : wizard->toClick)
            if (control->getHWND()->isVisible()) postClick(control);
        runUntilIdle(root);
        if (page == 1 && wizard->scrollbar) {
            // A press on the track below the thumb pages the list down.
            const LPARAM below = MAKELPARAM(4, wizard->scrollbar->getHeight() - 4);
            Platform::Window::postMessage(wizard->scrollbar->getHWND(), WM_LBUTTONDOWN, MK_LBUTTON, below);
            Platform::Window::postMessage(wizard->scrollbar->getHWND(), WM_LBUTTONUP, 0, below);
            runUntilIdle(root);
        }
        const std::string path = std::string(directory) + "/wizard-page-" + std::to_string(page + 1) + ".png";
        if (writePng(wizard->getContainer()->getHWND(), path.c_str())) {
            std::printf("wizard page %d (%s) written to %s\n", page + 1,
                        page == 0   ? "welcome"
                        : page == 1 ? "choose"
                                    : "finish",
                        path.c_str());
            ++written;
        }
        postClick(wizardButton(wizard, page < 2 ? Wizard::kNextButton : IDOK));
        runUntilIdle(root);
    }
    const bool finished = !wizard->getContainer();
    Dialog::endForcedModeless();
    std::printf("showModal answered %d at once; the wizard %s\n", answer,
                finished ? "closed by its Finish button" : "was still open");
    wizard = nullptr;
    root = nullptr;
    owner->destroy();
    deinit();
    return written == 3 && finished ? 0 : 1;
}

}  // namespace OrvantaDemo
