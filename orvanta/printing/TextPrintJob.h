#pragma once
// TextPrintJob: plain text on one page (a list of files, a report), with no template.
//
// Contract: one page; the text is drawn from the printable area's corner across the whole of it,
// broken at words, '&' shown as it is, in the job's font (the default font when none is set) at the
// same size in points as on the screen. Text that does not fit the page is cut: there is no second
// page.
//
// printText asks the user where to print (PrintDialog) and prints the text there; the document is
// named title, or the program's file name when title is empty. It answers true when the page was
// sent, false when the user cancelled or the printer refused the document. The overload with a
// printer prints there without asking.

#include "orvanta/printing/PrintJob.h"

namespace Orvanta {

class TextPrintJob : public PrintJob {
public:
    static TextPrintJob* create(const CString& text, const CString& title);

    bool drawPage(int page, HDC dc, bool isPreview) override;
    int getPageCount() override { return 1; }
    int getFirstAssetOfPage(int) override { return -1; }
    int getPageOfAsset(int) override { return -1; }
    bool isPageBlank(int) override { return false; }

private:
    TextPrintJob(const CString& text, const CString& title) : PrintJob(title), mText(text) {}

    CString mText;
};

bool printText(const CString& text, Font* font, const CString& title);
bool printText(Printer* printer, const CString& text, Font* font, const CString& title);

}  // namespace Orvanta
