// orvanta print --to-pdf: the road that needs no printer, through the same job and renderer code.

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/printing/PrintFixtures.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

class PrintToPdf : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "the orvanta host is not built";
        if (!haveCommand("pdfinfo") || !haveCommand("pdfimages"))
            GTEST_SKIP() << "poppler-utils are not installed";
    }
    int pageCount(const std::string& pdf) {
        const std::string info = commandOutput("pdfinfo '" + pdf + "'");
        const size_t at = info.find("Pages:");
        return at == std::string::npos ? -1 : std::stoi(info.substr(at + 6));
    }
    TempDir dir;
};

}  // namespace

// The camera photographs, one a page each way round: every page holds its photo's own bytes.
TEST_F(PrintToPdf, OnePhotoAPageHoldsEachFileByteForByteOnPaperTurnedItsWay) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::vector<std::string> photos = {testDataPath("jpeg/canon-ixus-640x480.jpg"),
                                             testDataPath("jpeg/canon-powershot-a85-orient8.jpg"),
                                             testDataPath("large/samsung-s7edge-12mp-trailer.jpg")};
    std::string arguments = "print --to-pdf '" + dir.file("out.pdf") + "'";
    for (const std::string& photo : photos) arguments += " '" + photo + "'";
    const ToolRun run = runTool(arguments);
    ASSERT_EQ(0, run.status) << run.errors;
    EXPECT_EQ(3, pageCount(dir.file("out.pdf")));
    const std::string sizes = commandOutput("pdfinfo -f 1 -l 3 '" + dir.file("out.pdf") + "' | grep 'size:'");
    EXPECT_NE(std::string::npos, sizes.find("Page    1 size:  792 x 612")) << sizes;
    EXPECT_NE(std::string::npos, sizes.find("Page    2 size:  612 x 792")) << sizes;
    EXPECT_NE(std::string::npos, sizes.find("Page    3 size:  792 x 612")) << sizes;
    const std::vector<std::string> blocks = pdfJpegs(dir.file("out.pdf"), dir.file("blocks"));
    ASSERT_EQ(photos.size(), blocks.size());
    for (size_t i = 0; i < photos.size(); ++i)
        EXPECT_TRUE(blocks[i] == readFileBytes(photos[i])) << photos[i];
    // Nothing but the document is left beside it.
    EXPECT_EQ(2, std::distance(fs::directory_iterator(dir.path()), {}));
}

TEST_F(PrintToPdf, GridsCopiesAndLimitsMakeTheirPagesAndReencodeOnlyWhatTheyShrink) {
    writeQuadrantJpeg(dir.file("a.jpg"), 1600, 1200);
    writeQuadrantJpeg(dir.file("b.jpg"), 1200, 1600);
    const std::string a = " '" + dir.file("a.jpg") + "'", b = " '" + dir.file("b.jpg") + "'";
    writeFileBytes(dir.file("two.tpl"),
                   "# two photos side by side\npaper 11000 8500\nimage left 500 500 5250 6500\n"
                   "image right 5750 500 10500 6500\ntext title 500 7000 10500 8000 Holidays\n");
    const struct {
        std::string options;
        int pages;
        int images;
        bool firstUntouched;
    } cases[] = {
        {"--copies 2" + a + b, 4, 4, true},
        {"--layout 4x5" + a + b + a, 1, 3, true},
        {"--layout 2x2" + a + b + a + b + a, 2, 5, true},
        // 1600 dots across 11 inches is 145 dpi: a limit of 100 shrinks and encodes anew
        {"--max-dpi 100" + a, 1, 1, false},
        {"--paper A4" + a, 1, 1, true},
        // the photos fill the template's two slots page after page
        {"--template '" + dir.file("two.tpl") + "'" + a + b + a, 2, 3, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.options);
        const ToolRun run = runTool("print --to-pdf '" + dir.file("out.pdf") + "' " + c.options);
        ASSERT_EQ(0, run.status) << run.errors;
        EXPECT_EQ(c.pages, pageCount(dir.file("out.pdf")));
        fs::remove_all(dir.file("blocks"));
        const std::vector<std::string> blocks = pdfJpegs(dir.file("out.pdf"), dir.file("blocks"));
        ASSERT_EQ(static_cast<size_t>(c.images), blocks.size());
        EXPECT_EQ(c.firstUntouched, blocks[0] == readFileBytes(dir.file("a.jpg")));
    }
}

TEST_F(PrintToPdf, BadArgumentsAndUnreadablePhotosWriteNothing) {
    writeFileBytes(dir.file("broken.jpg"), "not a picture");
    const struct {
        std::string options;
        int status;
    } cases[] = {
        {"", 2},
        {"--layout 0x3 '" + dir.file("broken.jpg") + "'", 2},
        {"--paper Tabloid '" + dir.file("broken.jpg") + "'", 2},
        {"--template '" + dir.file("missing.tpl") + "' '" + dir.file("broken.jpg") + "'", 1},
        {"'" + dir.file("broken.jpg") + "'", 1},
        {"'" + dir.file("missing.jpg") + "'", 1},
    };
    for (const auto& c : cases) {
        const ToolRun run = runTool("print --to-pdf '" + dir.file("out.pdf") + "' " + c.options);
        EXPECT_EQ(c.status, run.status) << c.options << "\n" << run.errors;
        EXPECT_FALSE(fs::exists(dir.file("out.pdf"))) << c.options;
    }
}
