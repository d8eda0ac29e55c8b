// Printers and the spooler against a private CUPS server: the printer list and default, papers with
// their margins and resolutions, jobs that reach the printer whole, and the failures: no server, a
// server that stops mid-job, a job aborted or cancelled.

#include <gtest/gtest.h>

#include <filesystem>

#include "orvanta/printing/PrintSpooler.h"
#include "orvanta/printing/PrinterManager.h"
#include "orvanta/printing/SimpleLayoutPrintJob.h"
#include "tests/foundation/EventQueueSupport.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/CupsServer.h"
#include "tests/support/TempDir.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

#define REQUIRE_CUPSD() \
    if (!CupsServer::available()) GTEST_SKIP() << "cupsd is not installed (the cups-daemon package)"

// The description's papers at 300 and 600 dpi: Letter 0.25 inch all round; A4 0.25 inch left,
// 0.5 inch on the other sides (so the symmetric margin moves the left edge by 0.25 inch); the 4 x 6
// without margins.
TEST(Printers, PapersHaveTheirSizesMarginsAndBorderlessnessInTheDotsOfEachResolution) {
    REQUIRE_CUPSD();
    CupsServer server;
    OwnedPtr<PrinterManager> manager = PrinterManager::create();
    ASSERT_EQ(2, manager->getPrinterCount()) << server.log();
    // Listed by name; the default is the server's, found without regard to case.
    EXPECT_EQ(CString(u"Photo"), manager->getPrinter(1)->getName());
    EXPECT_EQ(CString(u"Office"), manager->getDefaultPrinterName());
    EXPECT_TRUE(manager->findPrinter(u"PHOTO") == 1 && manager->findPrinter(u"Attic") == -1);
    Printer* printer = manager->getDefaultPrinter();
    ASSERT_EQ(manager->getPrinter(0), printer);
    ASSERT_EQ(3, printer->getPaperCount());
    ASSERT_EQ(2, printer->getResolutionCount());
    EXPECT_EQ(CSize(300, 300), printer->getResolution(0));
    EXPECT_EQ(CSize(600, 600), printer->getResolution(1));
    const struct {
        const char* paper;
        int dpi;
        bool symmetric;
        int paperWidth, paperHeight, left, top, right, bottom, offsetX, offsetY;
        bool borderless;
    } cases[] = {
        {"US Letter", 300, false, 2550, 3300, 75, 75, 2475, 3225, 0, 0, false},
        {"US Letter", 600, false, 5100, 6600, 150, 150, 4950, 6450, 0, 0, false},
        // 595 x 842 points are 20990 x 29704 hundredths of a millimetre
        {"A4", 300, false, 2479, 3508, 75, 150, 2329, 3358, 0, 0, false},
        {"A4", 300, true, 2479, 3508, 150, 150, 2329, 3358, 75, 0, false},
        {"4 x 6 Borderless", 300, false, 1200, 1800, 0, 0, 1200, 1800, 0, 0, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.paper) + " at " + std::to_string(c.dpi));
        int id = 0;
        for (int i = 0; i < printer->getPaperCount(); ++i)
            if (printer->getPaper(i)->getName() == CString::fromUtf8(c.paper))
                id = printer->getPaper(i)->getId();
        ASSERT_NE(0, id);
        EXPECT_EQ(c.borderless, printer->getPaper(id - 1)->isBorderless());
        printer->setPaperSize(id);
        printer->setPrintQuality(c.dpi);
        OwnedPtr<PageGeometry> page = printer->getPageGeometry(c.symmetric, nullptr, nullptr);
        ASSERT_TRUE(page);
        const int got[] = {page->paperWidth, page->paperHeight, page->left,    page->top, page->right,
                           page->bottom,     page->offsetX,     page->offsetY, page->dpiX};
        const int want[] = {c.paperWidth, c.paperHeight, c.left,    c.top, c.right,
                            c.bottom,     c.offsetX,     c.offsetY, c.dpi};
        EXPECT_TRUE(std::equal(std::begin(got), std::end(got), std::begin(want)));
        EXPECT_EQ(c.borderless, printer->isBorderless());
    }
    // Only the four platform qualities below zero, or a resolution, are taken.
    printer->setPrintQuality(-5);
    EXPECT_EQ(300, printer->getPrintQuality());
    printer->setPrintQuality(DMRES_HIGH);
    EXPECT_EQ(DMRES_HIGH, printer->getPrintQuality());
}

namespace {

class Spooling : public EventQueueTest {
protected:
    void SetUp() override {
        EventQueueTest::SetUp();
        writeQuadrantJpeg(dir.file("wide.jpg"), 640, 480);
        writeQuadrantJpeg(dir.file("tall.jpg"), 480, 640);
    }
    SimpleLayoutPrintJob* onePerPage() {
        SimpleLayoutPrintJob* job =
            SimpleLayoutPrintJob::create(listOf({dir.file("wide.jpg"), dir.file("tall.jpg")}), u"photos");
        OwnedPtr<Layout> layout = Layout::create(u"", 1, 0);
        job->setLayout(layout);
        return job;
    }
    // Prints and waits for the worker; the listener's codes once the queue is pumped.
    std::vector<int> print(PrintSpooler* spooler, PrintJob* job, Printer* printer) {
        spooler->print(job, printer, 0, 0);
        spooler->wait();
        pumpWaitingMessages();
        return listener.codes;
    }

    TempDir dir;
    PrivateTemp tmp;  // what the library leaves in the temporary folder shows here
    RecordingListener listener;
};

}  // namespace

// The job reaches the printer as two pages. How the pages are laid out and that the JPEGs go in as
// they are is the job's and renderer's, checked through print --to-pdf without a print server.
TEST_F(Spooling, AJobReachesThePrinterWholeAndOnlyThenIsReportedPrinted) {
    REQUIRE_CUPSD();
    if (!haveCommand("pdfinfo")) GTEST_SKIP() << "pdfinfo (poppler-utils) is not installed";
    CupsServer server;
    OwnedPtr<PrinterManager> manager = PrinterManager::create();
    OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(&listener);
    OwnedPtr<SimpleLayoutPrintJob> job = onePerPage();
    EXPECT_EQ(std::vector<int>{PrintSpooler::kPrinted}, print(spooler, job, manager->getDefaultPrinter()))
        << spooler->getError();
    const std::string out = server.waitForJob(spooler->getJobId());
    ASSERT_FALSE(out.empty()) << server.log();
    const std::string info = commandOutput("pdfinfo '" + out + "'");
    EXPECT_NE(std::string::npos, info.find("Pages:           2")) << info;
    EXPECT_EQ(0u, tmp.count());
}

// No server, a server gone mid-job or an abort end without the event, and leave nothing behind; a
// job's own cancel completes the page it is on, and what it drew is printed.
TEST_F(Spooling, FailuresAndAbortsEndWithoutTheEventOrLeftoversWhileACancelledJobStillPrints) {
    REQUIRE_CUPSD();
    enum Fault { NoServer, ServerStops, Abort, Cancel };
    for (Fault fault : {NoServer, ServerStops, Abort, Cancel}) {
        SCOPED_TRACE(fault);
        listener.codes.clear();
        CupsServer server;
        OwnedPtr<PrinterManager> manager = PrinterManager::create();
        OwnedPtr<Printer> printer = manager->getDefaultPrinter();
        ASSERT_TRUE(printer);
        printer->getDevMode();
        OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(&listener);
        OwnedPtr<SimpleLayoutPrintJob> job = onePerPage();
        if (fault == NoServer) server.stop();
        struct Context {
            Fault fault;
            CupsServer* server;
            PrintSpooler* spooler;
            PrintJob* job;
        } context{fault, &server, spooler, job};
        spooler->setPageCallback(
            [](void* c, int done, int) {
                auto* context = static_cast<Context*>(c);
                if (done != 1) return;
                if (context->fault == ServerStops) context->server->stop();
                if (context->fault == Abort) context->spooler->abort();
                if (context->fault == Cancel) context->job->cancel();
            },
            &context);
        const bool printed = fault == Cancel;
        EXPECT_EQ(printed, !print(spooler, job, printer).empty());
        EXPECT_EQ(printed, spooler->wasPrinted());
        EXPECT_EQ(printed, spooler->getError().empty());
        EXPECT_EQ(0u, tmp.count());
        if (printed)
            EXPECT_FALSE(server.waitForJob(spooler->getJobId()).empty());
        else
            EXPECT_TRUE(fs::is_empty(server.outputFolder()));
    }
}

TEST(PrintCommand, PrintersAreListedWithPapersAndAPrintGoesToTheNamedPrinter) {
    REQUIRE_CUPSD();
    if (!toolAvailable()) GTEST_SKIP() << "the orvanta host is not built";
    CupsServer server;
    TempDir dir;
    writeQuadrantJpeg(dir.file("a.jpg"), 320, 240);
    const ToolRun printers = runTool("printers");
    ASSERT_EQ(0, printers.status) << printers.errors;
    EXPECT_NE(std::string::npos, printers.output.find("Office\tdefault\tOrvanta Test Printer"))
        << printers.output;
    EXPECT_NE(std::string::npos,
              printers.output.find("US Letter\t215.9 x 279.4 mm\tmargins 75 75 75 75 dots at 300 dpi"))
        << printers.output;
    EXPECT_NE(std::string::npos, printers.output.find("borderless")) << printers.output;
    const ToolRun print =
        runTool("print --printer photo --copies 2 --layout 2x1 '" + dir.file("a.jpg") + "'");
    ASSERT_EQ(0, print.status) << print.errors;
    EXPECT_EQ(0u, print.output.find("Photo\tjob ")) << print.output;
    server.stop();
    const ToolRun refused = runTool("print '" + dir.file("a.jpg") + "'");
    EXPECT_EQ(1, refused.status);
    EXPECT_NE(std::string::npos, refused.errors.find("no default printer")) << refused.errors;
}
