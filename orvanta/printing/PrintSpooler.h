#pragma once
// PrintSpooler: sends a print job to a printer on a worker thread of its own.
//
// Contract: print() begins the job on the printer and starts the worker, which draws the pages into
// a PDF document and, when every page is done, hands it to the print system (or, for a printer with
// an output file, puts it there). The listener hears kPrinted (0x82) only once the print system has
// taken the whole document. abort() ends the run after the current page and drops the document:
// nothing is sent and no file stays. A job's own cancel() is not an abort: the page being drawn is
// completed, and what was drawn is sent. A worker that cannot make its document, or a print system
// that refuses the document (no server, the printer gone), ends without the event, the reason in
// getError(). The spooler waits for its worker before it goes, and before a second print().

#include <atomic>
#include <string>
#include <thread>

#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/printing/PrintJob.h"

namespace Orvanta {

class PrintSpooler : public IOwned {
public:
    static constexpr int kPrinted = 0x82;

    // Called on the worker after each page with the number of pages done, for a progress display.
    using PageCallback = void (*)(void* context, int pagesDone, int pageCount);

    static PrintSpooler* create(EventListener* listener);
    ~PrintSpooler() override;

    // lastPage 0 means the job's last page (so one page and an explicit 0 are alike).
    virtual void print(PrintJob* job, Printer* printer, int firstPage, int lastPage);
    virtual void abort() { mAborted = true; }
    virtual bool isAborted() { return mAborted; }
    virtual bool isFinished() { return mFinished; }

    // Waits for the worker to end.
    void wait();
    void setPageCallback(PageCallback callback, void* context);
    // How the last run ended: true once its document was taken.
    bool wasPrinted() const { return mPrinted; }
    // The print system's job id of the last run, 0 for a file or a run that sent nothing.
    int getJobId() const { return mJobId; }
    const std::string& getError() const { return mError; }

private:
    explicit PrintSpooler(EventListener* listener) : mListener(listener) {}
    void run(int firstPage, int lastPage);

    EventListener* mListener;
    OwnedPtr<PrintJob> mJob;
    OwnedPtr<Printer> mPrinter;
    std::thread mWorker;
    std::atomic<bool> mAborted{false};
    std::atomic<bool> mFinished{true};
    std::atomic<bool> mPrinted{false};
    int mJobId = 0;
    std::string mError;
    PageCallback mCallback = nullptr;
    void* mCallbackContext = nullptr;
};

}  // namespace Orvanta
