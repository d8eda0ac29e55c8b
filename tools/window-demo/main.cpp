// orvanta-window-demo: a small window of the toolkit's controls, drawn on SDL's offscreen display
// (or a real one when asked), with a photograph drawn through the canvas and a button with the
// keyboard focus; its pixels are written to a PNG. With --wizard, a wizard of three pages of skinned
// controls is driven without a person instead, and each page is written to a PNG in DIR; with
// --widgets, a dialog holding one of each standard widget, and its open pop-ups.
//
// Usage: orvanta-window-demo OUTPUT.png [PHOTO] [--show SECONDS]
//        orvanta-window-demo --wizard DIR
//        orvanta-window-demo --widgets DIR
// With --show the window also stays on the screen for that long (needs a display server).

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/FontCache.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/TextButton.h"
#include "tools/window-demo/DemoSupport.h"
#include "tools/window-demo/WidgetsDemo.h"
#include "tools/window-demo/PrintPreviewDemo.h"
#include "tools/window-demo/WizardDemo.h"

using namespace Orvanta;

namespace {

// A windowless control that shows a picture fitted into its content rectangle.
class PhotoView : public Control {
public:
    static PhotoView* create(Dib* dib) { return new PhotoView(dib); }
    void paintContent(HDC dc) override {
        const CRect box = getContentRect();
        if (!mImage || !mImage->getDib()) return;
        const CSize size = mImage->getFitSize(box.size(), false, false);
        mImage->draw(dc, box.left + (box.width() - size.cx) / 2, box.top + (box.height() - size.cy) / 2,
                     size.cx, size.cy);
    }

private:
    explicit PhotoView(Dib* dib) : mImage(Image::create(dib, false)) {}
    OwnedPtr<Image> mImage;
};

Dib* loadPhoto(const char* path) {
    if (!path) return nullptr;
    const CString name = CString::fromUtf8(path);
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(name));
    return codec ? codec->read(name, nullptr, 360, 480) : nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--wizard") == 0) {
        setenv("SDL_VIDEODRIVER", "offscreen", 0);
        return OrvantaDemo::runWizardDemo(argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "--widgets") == 0) {
        setenv("SDL_VIDEODRIVER", "offscreen", 0);
        return OrvantaDemo::runWidgetsDemo(argv[2]);
    }
    if (argc >= 4 && std::strcmp(argv[1], "--print-preview") == 0) {
        setenv("SDL_VIDEODRIVER", "offscreen", 0);
        return OrvantaDemo::runPrintPreviewDemo(argv[2], argc - 3, argv + 3);
    }
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: %s OUTPUT.png [PHOTO] [--show SECONDS]\n       %s --wizard DIR\n       %s "
                     "--widgets DIR\n       %s --print-preview OUTPUT.png PHOTO...\n",
                     argv[0], argv[0], argv[0], argv[0]);
        return 2;
    }
    const char* output = argv[1];
    const char* photo = nullptr;
    int showSeconds = 0;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--show") == 0 && i + 1 < argc)
            showSeconds = std::atoi(argv[++i]);
        else
            photo = argv[i];
    }
    if (!showSeconds) setenv("SDL_VIDEODRIVER", "offscreen", 0);
    orvantaIUInit();
    init();

    HWND window = Platform::Window::create(nullptr, CRect(60, 60, 700, 480), WS_OVERLAPPEDWINDOW, nullptr);
    window->setText(u"Orvanta controls");
    OwnedPtr<Container> root = Container::create(window);
    root->setBkColor(RGB(245, 245, 242));

    Label* title =
        Label::create(u"Holiday photographs — Île de Ré, 2026", DT_LEFT | DT_VCENTER | DT_SINGLELINE);
    title->setFont(FontCache::getFont(u"DejaVu Sans", 20, true));
    title->setRect(CRect(20, 14, 620, 50));
    root->add(title);

    Container* panel = Container::create();
    panel->setMinSize(380, 300);
    panel->setRect(CRect(20, 60, 400, 360));
    panel->setBkColor(RGB(255, 255, 255));
    panel->setBorderWidth(1, Style::kBorders);
    panel->setBorderColor(RGB(150, 150, 160), Style::kBorders);
    root->add(panel);
    PhotoView* view = PhotoView::create(loadPhoto(photo));
    view->setMinSize(360, 250);
    view->setRect(CRect(10, 10, 370, 260));
    view->setBkColor(RGB(30, 30, 34));
    panel->add(view);
    Label* caption = Label::create(
        photo ? CString::fromUtf8(std::strrchr(photo, '/') ? std::strrchr(photo, '/') + 1 : photo)
              : CString(u"(no photograph given)"),
        DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
    caption->setRect(CRect(10, 264, 370, 290));
    panel->add(caption);

    const char16_t* names[] = {u"Import…", u"Print", u"Slide show", u"Share"};
    TextButton* buttons[4];
    for (int i = 0; i < 4; ++i) {
        buttons[i] = TextButton::create(100 + i, names[i]);
        buttons[i]->setRect(CRect(420, 60 + 50 * i, 610, 96 + 50 * i));
        root->add(buttons[i], true);
    }
    Label* status =
        Label::create(u"4 controls take the Tab key; the second one has the focus.", DT_LEFT | DT_WORDBREAK);
    status->setRect(CRect(420, 270, 620, 340));
    status->setTextColor(RGB(90, 90, 100));
    root->add(status);

    if (!window->show(true)) {
        std::fprintf(stderr, "orvanta-window-demo: no display could be opened\n");
        return 1;
    }
    Platform::Window::setActiveWindow(window);
    buttons[1]->setFocus();
    OrvantaDemo::runUntilIdle(root);

    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(showSeconds);
    while (std::chrono::steady_clock::now() < end) {
        OrvantaDemo::runUntilIdle(root);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const bool written = OrvantaDemo::writePng(window, output);
    root = nullptr;
    window->destroy();
    deinit();
    orvantaIUDeInit();
    if (!written) {
        std::fprintf(stderr, "orvanta-window-demo: cannot write %s\n", output);
        return 1;
    }
    std::printf("window of controls written to %s\n", output);
    return 0;
}
