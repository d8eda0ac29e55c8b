// orvanta print and orvanta printers: photographs printed through a simple layout, to a printer or
// into a PDF file; and the printers the print system offers.

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "Commands.h"
#include "InterruptWatcher.h"
#include "ProgressBar.h"
#include "TemplateFile.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/printing/PrintSpooler.h"
#include "orvanta/printing/PrinterManager.h"
#include "orvanta/printing/SimpleLayoutPrintJob.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

constexpr UINT kInterruptMessage = WM_APP + 1;
// Hundredths of an inch kept under each picture of a contact sheet for its caption.
constexpr int kCaptionAllowance = 20;
constexpr int kGap = 10;

struct Options {
    std::string printer;
    std::string paper;
    int columns = 1, rows = 1;
    int copies = 1;
    int maxDpi = 0;  // 0: the job's own limit for a printer, none for a PDF file
    std::string pdf;
    std::string templateFile;
    std::vector<std::string> photos;
};

bool parse(const Arguments& arguments, Options& options) {
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& a = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (a == "--printer" && hasValue) {
            options.printer = arguments[++i];
        } else if (a == "--paper" && hasValue) {
            options.paper = arguments[++i];
        } else if (a == "--layout" && hasValue) {
            if (std::sscanf(arguments[++i].c_str(), "%dx%d", &options.columns, &options.rows) != 2 ||
                options.columns < 1 || options.rows < 1 || options.columns > 50 || options.rows > 50)
                return false;
        } else if (a == "--copies" && hasValue) {
            options.copies = std::atoi(arguments[++i].c_str());
            if (options.copies < 1) return false;
        } else if (a == "--template" && hasValue) {
            options.templateFile = arguments[++i];
        } else if (a == "--max-dpi" && hasValue) {
            options.maxDpi = std::atoi(arguments[++i].c_str());
            if (options.maxDpi < 1) return false;
        } else if (a == "--to-pdf" && hasValue) {
            options.pdf = arguments[++i];
        } else if (a.rfind("--", 0) == 0) {
            return false;
        } else {
            options.photos.push_back(a);
        }
    }
    return !options.photos.empty();
}

bool pumpMessages() {
    bool interrupted = false;
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) {
        if (!msg.hwnd && msg.message == kInterruptMessage) {
            interrupted = true;
            continue;
        }
        if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
    }
    return interrupted;
}

bool choosePaper(Printer* printer, const std::string& wanted) {
    const CString name = CString::fromUtf8(wanted).lowered();
    for (int i = 0; i < printer->getPaperCount(); ++i) {
        Printer::Paper* paper = printer->getPaper(i);
        if (paper && paper->getName().lowered() == name) {
            printer->setPaperSize(paper->getId());
            return true;
        }
    }
    return false;
}

// One picture a page is the "1 per page" layout; any other grid is a contact sheet whose cells
// divide the printable area of the paper.
Layout* layoutFor(const Options& options, Printer* printer) {
    if (options.columns == 1 && options.rows == 1) return Layout::create(u"1 per page", 1, 0);
    OwnedPtr<PageGeometry> geometry = printer->getPageGeometry(true, nullptr, nullptr);
    if (!geometry) return nullptr;
    const int width = geometry->getPrintableWidth() * 100 / geometry->dpiX;
    const int height = geometry->getPrintableHeight() * 100 / geometry->dpiY;
    // Each cell counts with its gap, the last one's too, so that the grid is exactly the one asked.
    const Size cell(width / options.columns - kGap, height / options.rows - kGap - kCaptionAllowance);
    if (cell.cx <= 0 || cell.cy <= 0) return nullptr;
    return Layout::create(u"contact sheet", cell, kGap, Layout::ContactSheet);
}

struct Progress {
    std::atomic<int> done{0};
    static void onPage(void* context, int pagesDone, int) {
        static_cast<Progress*>(context)->done = pagesDone;
    }
};

}  // namespace

int runPrint(const Arguments& arguments) {
    Options options;
    if (!parse(arguments, options)) {
        std::fprintf(
            stderr,
            "usage: orvanta print [--printer NAME] [--paper NAME] [--layout COLSxROWS | --template FILE] "
            "[--copies N] [--max-dpi N] [--to-pdf FILE] PHOTO...\n");
        return 2;
    }
    orvantaIUInit();
    OwnedPtr<PrinterManager> manager;
    OwnedPtr<Printer> printer;
    if (!options.pdf.empty()) {
        printer = Printer::createPdfFile();
        printer->setOutputFile(CString::fromUtf8(options.pdf));
    } else {
        manager = PrinterManager::create();
        printer = options.printer.empty()
                      ? manager->getDefaultPrinter()
                      : manager->getPrinter(manager->findPrinter(CString::fromUtf8(options.printer)));
        if (!printer || !printer->getDevMode()) {
            std::fprintf(stderr, "orvanta print: %s\n",
                         options.printer.empty()
                             ? "no default printer (name one with --printer, or use --to-pdf)"
                             : ("no printer named '" + options.printer + "'").c_str());
            orvantaIUDeInit();
            return 1;
        }
    }
    if (!options.paper.empty() && !choosePaper(printer, options.paper)) {
        std::fprintf(stderr, "orvanta print: the printer has no paper '%s' (see orvanta printers)\n",
                     options.paper.c_str());
        orvantaIUDeInit();
        return 2;
    }
    OwnedPtr<MemAssetList> assets = MemAssetList::create();
    std::vector<Asset*> photos;
    for (const std::string& photo : options.photos) {
        OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), CString::fromUtf8(photo), nullptr, nullptr);
        if (!asset || !asset->getImageFile() || asset->getImageFile()->getPictureSize().cx <= 0) {
            std::fprintf(stderr, "orvanta print: cannot read '%s' as a picture\n", photo.c_str());
            orvantaIUDeInit();
            return 1;
        }
        assets->addAsset(asset, false);
        photos.push_back(asset);
    }
    OwnedPtr<PrintJob> job;
    if (!options.templateFile.empty()) {
        std::string error;
        job = readTemplateJob(options.templateFile, photos, error);
        if (!job) {
            std::fprintf(stderr, "orvanta print: %s\n", error.c_str());
            orvantaIUDeInit();
            return 2;
        }
    } else {
        OwnedPtr<Layout> layout = layoutFor(options, printer);
        if (!layout) {
            std::fprintf(stderr, "orvanta print: a %dx%d grid does not fit the paper\n", options.columns,
                         options.rows);
            orvantaIUDeInit();
            return 2;
        }
        OwnedPtr<SimpleLayoutPrintJob> layoutJob = SimpleLayoutPrintJob::create(assets, u"orvanta print");
        layoutJob->setLayout(layout);
        layoutJob->setCopies(options.copies);
        job = layoutJob;
    }
    // A PDF file keeps each photo as it is unless a limit is asked for; a printer gets the job's own.
    if (options.maxDpi > 0)
        job->setMaxDpi(options.maxDpi);
    else if (!options.pdf.empty())
        job->setMaxDpi(-1);

    const auto start = std::chrono::steady_clock::now();
    OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(nullptr);
    Progress progress;
    spooler->setPageCallback(&Progress::onPage, &progress);
    bool interrupted = false;
    int pages = 0;
    {
        InterruptWatcher watcher(Platform::currentThreadId(), kInterruptMessage);
        job->begin(printer, 0);
        pages = job->getPageCount();
        job->end();
        ProgressBar bar(stderr, pages);
        spooler->print(job, printer, 0, 0);
        while (!spooler->isFinished()) {
            if (pumpMessages() && !interrupted) {
                interrupted = true;
                spooler->abort();
            }
            bar.update(progress.done);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        spooler->wait();
        bar.finish();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    int status = 0;
    if (interrupted) {
        std::fprintf(stderr, "orvanta print: interrupted; nothing was printed\n");
        status = 130;
    } else if (!spooler->wasPrinted()) {
        std::fprintf(stderr, "orvanta print: not printed: %s\n", spooler->getError().c_str());
        status = 1;
    } else if (!options.pdf.empty()) {
        std::printf("%s\t%d pages\t%.2f s\n", options.pdf.c_str(), pages, seconds);
    } else {
        std::printf("%s\tjob %d\t%d pages\t%.2f s\n", printer->getName().toUtf8().c_str(),
                    spooler->getJobId(), pages, seconds);
    }
    orvantaIUDeInit();
    return status;
}

int runPrinters(const Arguments& arguments) {
    if (!arguments.empty()) {
        std::fprintf(stderr, "usage: orvanta printers\n");
        return 2;
    }
    OwnedPtr<PrinterManager> manager = PrinterManager::create();
    const CString defaultName = manager->getDefaultPrinterName();
    for (int i = 0; i < manager->getPrinterCount(); ++i) {
        Printer* printer = manager->getPrinter(i);
        std::printf("%s%s\t%s\n", printer->getName().toUtf8().c_str(),
                    printer->getName() == defaultName ? "\tdefault" : "",
                    printer->getDriverName().toUtf8().c_str());
        for (int p = 0; p < printer->getPaperCount(); ++p) {
            Printer::Paper* paper = printer->getPaper(p);
            printer->setPaperSize(paper->getId());
            OwnedPtr<PageGeometry> page = printer->getPageGeometry(false, nullptr, nullptr);
            if (!page) continue;
            std::printf("  paper\t%s\t%.1f x %.1f mm\tmargins %d %d %d %d dots at %d dpi%s\n",
                        paper->getName().toUtf8().c_str(), paper->getSize().cx / 10.0,
                        paper->getSize().cy / 10.0, page->left, page->top, page->paperWidth - page->right,
                        page->paperHeight - page->bottom, page->dpiX,
                        paper->isBorderless() ? "\tborderless" : "");
        }
        for (int r = 0; r < printer->getResolutionCount(); ++r)
            std::printf("  resolution\t%d x %d dpi\n", printer->getResolution(r).cx,
                        printer->getResolution(r).cy);
    }
    if (manager->getPrinterCount() == 0) std::printf("no printers\n");
    return 0;
}

}  // namespace OrvantaTool
