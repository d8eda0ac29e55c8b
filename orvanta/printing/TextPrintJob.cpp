#include "orvanta/printing/TextPrintJob.h"

#include "orvanta/platform/Process.h"
#include "orvanta/printing/PrintDialog.h"
#include "orvanta/printing/PrintSpooler.h"

namespace Orvanta {

TextPrintJob* TextPrintJob::create(const CString& text, const CString& title) {
    return new TextPrintJob(text, title);
}

bool TextPrintJob::drawPage(int page, HDC dc, bool) {
    if (page != 0) return true;
    if (mDeviceFont) dc->selectFont(&mDeviceFont->getDescription());
    CRect area(0, 0, dc->getDeviceCaps(HORZRES), dc->getDeviceCaps(VERTRES));
    dc->drawText(mText, &area, DT_WORDBREAK | DT_NOPREFIX);
    return true;
}

namespace {

// The program's file name without its folder and extension.
CString programName() {
    std::string name = Platform::executablePath();
    name = name.substr(name.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return CString::fromUtf8(dot == std::string::npos || dot == 0 ? name : name.substr(0, dot));
}

}  // namespace

bool printText(Printer* printer, const CString& text, Font* font, const CString& title) {
    if (!printer) return false;
    OwnedPtr<TextPrintJob> job = TextPrintJob::create(text, title.isEmpty() ? programName() : title);
    job->setFont(font);
    OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(nullptr);
    spooler->print(job, printer, 0, 0);
    spooler->wait();
    return spooler->wasPrinted();
}

bool printText(const CString& text, Font* font, const CString& title) {
    OwnedPtr<PrintDialog> dialog = PrintDialog::create();
    if (dialog->showModal() != IDOK) return false;
    return printText(dialog->getPrinter(), text, font, title);
}

}  // namespace Orvanta
