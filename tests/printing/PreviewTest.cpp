// PrintPreview: the page drawn on a worker by the job's own code shows what the printed PDF shows,
// as poppler renders it.

#include <gtest/gtest.h>

#include <cairo.h>

#include <cstdlib>

#include "orvanta/pixels/DibSection.h"
#include "orvanta/printing/PrintPreview.h"
#include "orvanta/printing/PrintSpooler.h"
#include "orvanta/printing/SimpleLayoutPrintJob.h"
#include "tests/foundation/EventQueueSupport.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class Preview : public EventQueueTest {};

}  // namespace

TEST_F(Preview, APageShownMatchesThePrintedPageAsPopplerDrawsIt) {
    if (!haveCommand("pdftoppm")) GTEST_SKIP() << "pdftoppm (poppler-utils) is not installed";
    TempDir dir;
    writeQuadrantJpeg(dir.file("a.jpg"), 1200, 900);
    OwnedPtr<Printer> printer = Printer::createPdfFile();
    printer->setOutputFile(CString::fromUtf8(dir.file("page.pdf")));
    OwnedPtr<SimpleLayoutPrintJob> job = SimpleLayoutPrintJob::create(listOf({dir.file("a.jpg")}), u"t");
    OwnedPtr<Layout> layout = Layout::create(u"", 4, 50);
    job->setLayout(layout);
    job->setCopies(3);

    OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(nullptr);
    spooler->print(job, printer, 0, 0);
    spooler->wait();
    ASSERT_TRUE(spooler->wasPrinted()) << spooler->getError();
    commandOutput("pdftoppm -r 96 -png -singlefile '" + dir.file("page.pdf") + "' '" + dir.file("poppler") +
                  "'");
    cairo_surface_t* printed = cairo_image_surface_create_from_png(dir.file("poppler.png").c_str());
    ASSERT_EQ(816, cairo_image_surface_get_width(printed));
    ASSERT_EQ(1056, cairo_image_surface_get_height(printed));
    // Cairo's 32-bit pixels are blue first in memory, as the Dib's are.
    auto printedAt = [&](int x, int y) {
        const unsigned char* p =
            cairo_image_surface_get_data(printed) + y * cairo_image_surface_get_stride(printed) + x * 4;
        return Rgb{p[2], p[1], p[0]};
    };

    RecordingListener listener;
    OwnedPtr<PrintPreview> preview = PrintPreview::create(u"busy", u"blank", u"failed", &listener);
    preview->setRect(0, 0, 816, 1056);
    preview->setJob(job, printer);
    preview->refresh();
    while (listener.codes.empty()) pumpWaitingMessages();
    EXPECT_EQ(std::vector<int>{PrintPreview::kPageReady}, listener.codes);
    ASSERT_TRUE(preview->isReady());
    EXPECT_EQ(1, preview->getPageCount());

    OwnedPtr<DibSection> shown = DibSection::create(816, 1056, 4);
    auto dc = Platform::Canvas::createForBitmap(shown->getHBitmap());
    preview->paint(dc.get());
    dc->finish();
    // The frame round the page is the preview's own; inside, the pictures differ only by resampling.
    long difference = 0, count = 0, far = 0;
    for (int y = 2; y < 1054; ++y)
        for (int x = 2; x < 814; ++x) {
            const Rgb a = pixelAt(shown, x, y), b = printedAt(x, y);
            const int d = std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b);
            difference += d;
            far += d > 96;
            ++count;
        }
    EXPECT_LT(static_cast<double>(difference) / count, 3.0);
    EXPECT_LT(static_cast<double>(far) / count, 0.01);
    cairo_surface_destroy(printed);
}
