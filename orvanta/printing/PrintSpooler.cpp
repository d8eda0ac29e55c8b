#include "orvanta/printing/PrintSpooler.h"

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/CupsPrinters.h"
#include "orvanta/platform/PrintDocument.h"

namespace Orvanta {

PrintSpooler* PrintSpooler::create(EventListener* listener) {
    return new PrintSpooler(listener);
}

PrintSpooler::~PrintSpooler() {
    wait();
}

void PrintSpooler::wait() {
    if (mWorker.joinable()) mWorker.join();
}

void PrintSpooler::setPageCallback(PageCallback callback, void* context) {
    mCallback = callback;
    mCallbackContext = context;
}

void PrintSpooler::print(PrintJob* job, Printer* printer, int firstPage, int lastPage) {
    wait();
    mJob = job;
    mPrinter = printer;
    mAborted = false;
    mPrinted = false;
    mJobId = 0;
    mError.clear();
    job->begin(printer, 0);
    if (lastPage == 0) lastPage = job->getPageCount() - 1;
    if (lastPage < 0) {
        job->end();
        return;
    }
    mFinished = false;
    mWorker = std::thread(&PrintSpooler::run, this, firstPage, lastPage);
}

void PrintSpooler::run(int firstPage, int lastPage) {
    const std::string outputFile = mPrinter->getOutputFile().toUtf8();
    std::string folder;
    if (!outputFile.empty()) {
        const size_t slash = outputFile.rfind('/');
        folder = slash == std::string::npos ? "." : outputFile.substr(0, slash == 0 ? 1 : slash);
    }
    std::unique_ptr<Platform::PrintDocument> document = Platform::PrintDocument::create(folder);
    bool aborted = false;
    if (!document) {
        mError = "cannot make the document's file";
    } else {
        HDC dc = document->canvas();
        mJob->onBeginDocument(dc);
        const int pageCount = lastPage - firstPage + 1;
        for (int page = firstPage; page <= lastPage; ++page) {
            if (!mJob->canContinue(page)) break;
            const DEVMODEW* devMode = mJob->getDevModeForPrint(page == firstPage ? 0 : page - 1, page);
            dc = document->startPage(mPrinter->getPageCaps(devMode));
            mJob->onBeginPage(page, dc);
            if (!mJob->printPage(page, dc)) mAborted = true;
            mJob->onEndPage(page, dc);
            document->endPage();
            if (mCallback) mCallback(mCallbackContext, page - firstPage + 1, pageCount);
            if (mAborted) break;
        }
        aborted = mAborted;
        mJob->onEndDocument(dc, aborted);
        if (aborted) {
            mError = "aborted";
        } else if (!document->finish()) {
            mError = "cannot write the document";
        } else if (!outputFile.empty()) {
            if (document->keepAs(outputFile))
                mPrinted = true;
            else
                mError = "cannot write " + outputFile;
        } else {
            mJobId = Platform::CupsPrinters::submit(
                mPrinter->getName().toUtf8(), document->path(), mJob->getTitle().toUtf8(),
                mPrinter->getPrintOptions(mJob->getCurrentDevMode()), mError);
            mPrinted = mJobId > 0;
        }
    }
    document.reset();
    mJob->end();
    if (mPrinted && mListener) sendEventLater(Event::create(kPrinted), mListener);
    mFinished = true;
}

}  // namespace Orvanta
