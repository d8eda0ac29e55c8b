// The simple layout's arithmetic on a printer page of known geometry (the PDF file printer: Letter
// without margins at 300 dpi, 2550 x 3300 dots): grids of each category, pages, copies and the
// order of the pictures; and the orientation of each page of a template job.

#include <gtest/gtest.h>

#include "orvanta/printing/SimpleLayoutPrintJob.h"
#include "orvanta/printing/TemplatePrintJob.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class LayoutGrid : public ::testing::Test {
protected:
    void SetUp() override {
        writeQuadrantJpeg(dir.file("a.jpg"), 64, 48);
        printer = Printer::createPdfFile();
    }
    SimpleLayoutPrintJob* jobOf(int assets, Layout* layout) {
        SimpleLayoutPrintJob* job =
            SimpleLayoutPrintJob::create(listOf(std::vector<std::string>(assets, dir.file("a.jpg"))), u"t");
        job->setLayout(layout);
        return job;
    }

    TempDir dir;
    OwnedPtr<Printer> printer;
};

}  // namespace

TEST_F(LayoutGrid, EachCategoryDividesThePrintableAreaAsItsRulesSay) {
    const struct {
        const char* what;
        Layout* layout;
        int assets;
        bool landscape;
        int rows, columns, cellWidth, cellHeight;
    } cases[] = {
        // 30-dot gaps between cells, none after the last
        {"4 per page", Layout::create(u"", 4, 10), 1, false, 2, 2, 1260, 1635},
        {"6 per page turned", Layout::create(u"", 6, 10), 1, true, 2, 3, 1080, 1260},
        {"5 per page is no grid", Layout::create(u"", 5, 10), 1, false, 0, 0, 0, 0},
        // 1200 x 1800 fits twice either way round: a tie turns the picture
        {"4x6 inches", Layout::create(u"", Size(400, 600), 10, Layout::PrintSize), 1, false, 2, 1, 1800,
         1200},
        {"paper sized: no gaps, the whole area", Layout::create(u"", Size(1100, 850), 10, Layout::PrintSize),
         1, false, 1, 1, 2550, 3300},
        // n = 0: one column of 2550 high is already below the page
        {"all on one page, one picture", Layout::create(u"", Size(4, 3), 0, Layout::AllOnOnePage), 1, false,
         1, 1, 1912, 2550},
        // columns 1..3 overflow (25500, 6375, 3400 dots high); 4 columns of 637 make 3 rows
        {"all on one page, ten pictures", Layout::create(u"", Size(3, 2), 0, Layout::AllOnOnePage), 10, false,
         3, 4, 424, 637},
    };
    for (const auto& c : cases) {
        OwnedPtr<Layout> layout = c.layout;
        OwnedPtr<SimpleLayoutPrintJob> job = jobOf(c.assets, layout);
        printer->setOrientation(c.landscape);
        job->begin(printer, 0);
        EXPECT_EQ(c.rows, job->getRows()) << c.what;
        EXPECT_EQ(c.columns, job->getColumns()) << c.what;
        EXPECT_EQ(CSize(c.cellWidth, c.cellHeight), job->getCellSize()) << c.what;
        job->end();
    }
}

// Two per page on portrait Letter is two rows of one.
TEST_F(LayoutGrid, PagesHoldTheCopiesOfOnePictureTogetherOrOnePictureEachWhenFilling) {
    const struct {
        int assets, copies;
        bool fill;
        int pages;
        std::vector<int> firstAssetOfPage, pageOfAsset;
    } cases[] = {
        {3, 2, false, 3, {0, 1, 2}, {0, 1, 2}},  // page 1 begins with the second picture's first copy
        {3, 1, false, 2, {0, 2}, {0, 0, 1}},    {3, 0, false, 2, {0, 2}, {0, 0, 1}},  // no copies is one
        {3, 2, true, 3, {0, 1, 2}, {0, 1, 2}},  {5, 3, false, 8, {0, 0, 1, 2, 2, 3, 4, 4}, {0, 1, 3, 4, 6}},
    };
    OwnedPtr<Layout> two = Layout::create(u"", 2, 0);
    for (const auto& c : cases) {
        OwnedPtr<SimpleLayoutPrintJob> job = jobOf(c.assets, two);
        job->setCopies(c.copies);
        job->setFillPage(c.fill);
        job->begin(printer, 0);
        ASSERT_EQ(c.pages, job->getPageCount()) << c.assets << " x " << c.copies;
        for (int page = 0; page < c.pages; ++page)
            EXPECT_EQ(c.firstAssetOfPage[page], job->getFirstAssetOfPage(page));
        for (int asset = 0; asset < c.assets; ++asset)
            EXPECT_EQ(c.pageOfAsset[asset], job->getPageOfAsset(asset));
        EXPECT_EQ(-1, job->getFirstAssetOfPage(-1));
        job->end();
    }
}

TEST(TemplatePrintJob, EachPagePrintsInItsTemplatesOrientation) {
    OwnedPtr<TemplatePrintJob> job = TemplatePrintJob::create(u"t");
    OwnedPtr<PrintTemplate> wide = PrintTemplate::create(u"w", u"", 11000, 8500);
    OwnedPtr<PrintTemplate> tall = PrintTemplate::create(u"t", u"", 8500, 11000);
    OwnedPtr<PrintTemplatePage> first = PrintTemplatePage::create(), second = PrintTemplatePage::create();
    first->setTemplate(wide);
    second->setTemplate(tall);
    job->addPage(first);
    job->insertPage(second, 0);
    ASSERT_EQ(2, job->getPageCount());
    OwnedPtr<Printer> printer = Printer::createPdfFile();
    job->begin(printer, 0);
    EXPECT_EQ(DMORIENT_PORTRAIT, job->getDevModeForPrint(0, 0)->dmOrientation);
    EXPECT_EQ(DMORIENT_LANDSCAPE, job->getDevModeForPrint(0, 1)->dmOrientation);
    job->end();
}
