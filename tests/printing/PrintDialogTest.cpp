// The print dialog over the private CUPS server's two printers, driven by keys, and the plain text
// printout read back from its PDF.

#include <SDL.h>
#include <gtest/gtest.h>

#include <string>

#include "orvanta/printing/PrintDialog.h"
#include "orvanta/printing/TextPrintJob.h"
#include "tests/printing/PrintFixtures.h"
#include "tests/support/CupsServer.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace OrvantaTest;

TEST(PrintDialog, KeysChooseThePrinterPaperAndCopiesAndACancelChangesNothing) {
    if (!CupsServer::available()) GTEST_SKIP() << "cupsd is not installed (the cups-daemon package)";
    CupsServer server;
    UiHarness ui;
    const struct {
        bool print;
        const char16_t* printer;
        const char16_t* paper;
        short copies;
    } cases[] = {{true, u"Photo", u"4 x 6 Borderless", 3}, {false, nullptr, nullptr, 0}};
    for (const auto& c : cases) {
        OwnedPtr<PrinterManager> manager = PrinterManager::create();
        ASSERT_EQ(2, manager->getPrinterCount()) << server.log();
        const int paperBefore = manager->getPrinter(1)->getPaperSize();
        OwnedPtr<PrintDialog> dialog = PrintDialog::create(manager);
        Dialog::startForcedModeless(0);
        dialog->showModal(ui.window());
        ui.setInputWindow(dialog->getContainer()->getHWND());
        ui.runUntilIdle();
        ui.pressKey(SDLK_r, false, false, true);  // Printer
        ui.pressKey(SDLK_DOWN);
        ui.pressKey(SDLK_a, false, false, true);  // Paper
        ui.pressKey(SDLK_HOME);
        ui.pressKey(SDLK_c, false, false, true);  // Copies
        ui.pressKey(SDLK_UP);
        ui.pressKey(SDLK_UP);
        ui.pressKey(c.print ? SDLK_p : SDLK_ESCAPE, false, false, c.print);
        ui.runUntilIdle();
        Dialog::endForcedModeless();
        ui.setInputWindow(nullptr);
        if (!c.print) {
            EXPECT_EQ(nullptr, dialog->getPrinter());
            EXPECT_EQ(paperBefore, manager->getPrinter(1)->getPaperSize());
            continue;
        }
        Printer* chosen = dialog->getPrinter();
        ASSERT_NE(nullptr, chosen);
        EXPECT_EQ(CString(c.printer), chosen->getName());
        EXPECT_EQ(CString(c.paper), chosen->getPaper(0)->getName());
        EXPECT_EQ(chosen->getPaper(0)->getId(), chosen->getPaperSize());
        EXPECT_EQ(c.copies, chosen->getDevMode()->dmCopies);
    }
}

TEST(PrintText, OnePageOfWrappedTextCutAtTheBottomWithItsAmpersands) {
    if (!haveCommand("pdftotext")) GTEST_SKIP() << "pdftotext (poppler-utils) is not installed";
    TempDir dir;
    OwnedPtr<Printer> printer = Printer::createPdfFile();
    printer->setOutputFile(CString::fromUtf8(dir.file("text.pdf")));
    std::u16string text = u"Salt & pepper, caf\u00e9 cr\u00e8me:";
    for (int line = 1; line <= 400; ++line)
        text += u"\nline " + std::u16string(CString::fromUtf8(std::to_string(line)).c_str());
    ASSERT_TRUE(printText(printer, CString(text), nullptr, u"Notes"));
    const std::string printed =
        commandOutput("pdftotext -layout '" + dir.file("text.pdf") + "' - 2> /dev/null");
    EXPECT_NE(std::string::npos, printed.find("Salt & pepper, café crème:")) << printed;
    EXPECT_NE(std::string::npos, printed.find("line 20\n")) << printed;
    EXPECT_EQ(std::string::npos, printed.find("line 400")) << "one page only, the rest cut";
    EXPECT_EQ(std::string::npos, printed.find('\f', printed.find('\f') + 1)) << "a second page";
}
