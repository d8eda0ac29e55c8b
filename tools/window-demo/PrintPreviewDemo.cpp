#include "tools/window-demo/PrintPreviewDemo.h"

#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

#include "orvanta/assets/MemAssetList.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/printing/PrintPreview.h"
#include "orvanta/printing/SimpleLayoutPrintJob.h"
#include "orvanta/toolkit/Label.h"
#include "tools/window-demo/DemoSupport.h"

using namespace Orvanta;

namespace OrvantaDemo {

int runPrintPreviewDemo(const char* output, int photoCount, char** photos) {
    orvantaIUInit();
    init();
    int status = 1;
    {
        HWND window =
            Platform::Window::create(nullptr, CRect(60, 60, 560, 720), WS_OVERLAPPEDWINDOW, nullptr);
        window->setText(u"Print preview");
        OwnedPtr<Container> root = Container::create(window);
        root->setBkColor(RGB(245, 245, 242));

        OwnedPtr<MemAssetList> assets = MemAssetList::create();
        for (int i = 0; i < photoCount; ++i)
            assets->addAsset(
                Asset::create(UniqueID::create(), CString::fromUtf8(photos[i]), nullptr, nullptr), false);
        OwnedPtr<SimpleLayoutPrintJob> job = SimpleLayoutPrintJob::create(assets, u"Contact sheet");
        OwnedPtr<Layout> layout = Layout::create(u"4 x 5", Size(190, 190), 10, Layout::ContactSheet);
        job->setLayout(layout);
        OwnedPtr<Printer> printer = Printer::createPdfFile();

        PrintPreview* preview = PrintPreview::create(u"Drawing the page…", u"This page is blank.",
                                                     u"This page could not be drawn.", nullptr);
        preview->setMinSize(460, 590);
        preview->setRect(CRect(20, 50, 480, 640));
        preview->setBackgroundColor(RGB(200, 200, 205));
        root->add(preview);
        Label* caption = Label::create(u"", DT_LEFT | DT_VCENTER | DT_SINGLELINE);
        caption->setMinSize(460, 30);
        caption->setRect(CRect(20, 10, 480, 40));
        root->add(caption);

        if (window->show(true)) {
            preview->setJob(job, printer);
            preview->refresh();
            const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
            while (!preview->isReady() && std::chrono::steady_clock::now() < giveUp) {
                runUntilIdle(root);
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
            }
            caption->setText(CString::fromUtf8("Contact sheet, page 1 of " +
                                               std::to_string(preview->getPageCount()) + " (" +
                                               std::to_string(photoCount) + " photographs)"));
            runUntilIdle(root);
            status = writePng(window, output) ? 0 : 1;
            if (status == 0) std::printf("print preview written to %s\n", output);
        } else {
            std::fprintf(stderr, "orvanta-window-demo: no display could be opened\n");
        }
        root = nullptr;
        window->destroy();
    }
    deinit();
    orvantaIUDeInit();
    return status;
}

}  // namespace OrvantaDemo
