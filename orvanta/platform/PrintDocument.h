#pragma once
// PrintDocument: what a printer's device context draws into: a PDF document of pages written to a
// temporary file of its own, which is then handed to the print system or kept as the user's PDF.
//
// Contract: each page starts with the device's caps of that page (its resolution, paper and
// printable area), so pages may differ in size and orientation; the canvas draws in the printer's
// dots, its (0, 0) at the printable area's corner. finish() completes the file; until then, and
// whenever the document is dropped without keepAs(), the temporary file is removed, so an aborted
// or failed document leaves nothing behind. Belongs to the thread that made it.

#include <memory>
#include <string>

#include "orvanta/platform/Canvas.h"

namespace Orvanta::Platform {

class PrintDocument {
public:
    // A new document in folder, by default the system's temporary folder ($TMPDIR); null when no
    // file can be made there. A document to be kept is best made in its target's folder.
    static std::unique_ptr<PrintDocument> create(const std::string& folder = std::string());
    ~PrintDocument();
    PrintDocument(const PrintDocument&) = delete;
    PrintDocument& operator=(const PrintDocument&) = delete;

    // The canvas the document draws on; a page's settings come with startPage.
    Canvas* canvas() { return mCanvas.get(); }
    // StartPage (with ResetDC's new settings): the canvas of the new page.
    Canvas* startPage(const DeviceCaps& caps);
    void endPage();
    // EndDoc: the file is complete; false when it could not be written whole.
    bool finish();
    const std::string& path() const { return mPath; }
    int getPageCount() const { return mPages; }
    // Moves the finished file to target (replacing it); false if it cannot.
    bool keepAs(const std::string& target);

private:
    PrintDocument() = default;

    std::string mPath;
    int mFd = -1;
    bool mWriteFailed = false;
    bool mKept = false;
    bool mInPage = false;
    int mPages = 0;
    std::unique_ptr<Canvas> mCanvas;
};

}  // namespace Orvanta::Platform
