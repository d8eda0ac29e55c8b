#pragma once
// PrintPreview: a control that shows one page of a print job as the printer would print it, drawn
// by the job's own code into a recording on a worker thread, and played back fitted to the control.
//
// Contract: one worker at a time: showing a page (or refreshing, or changing the job) first cancels
// the job and waits for the running worker. While a page is being drawn the control shows the busy
// text; a blank page (a layout with no cells) the blank text; a page that could not be drawn the
// failed text. The page keeps the paper's proportions, centred, with a second sheet behind it when
// the job has more than one page. The listener hears kPageReady (0x80) on its own thread when a page
// is ready; the control repaints itself then.

#include <atomic>
#include <memory>
#include <thread>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/printing/PrintJob.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class PrintPreview : public Control {
public:
    static constexpr int kPageReady = 0x80;

    static PrintPreview* create(const CString& busyText, const CString& blankText, const CString& failedText,
                                EventListener* listener);
    ~PrintPreview() override;

    // The job and the printer it is previewed on.
    void setJob(PrintJob* job, Printer* printer);
    // Reads the page count again (keeping the first picture of the page shown in view), and shows.
    void refresh();
    void showPage(int page);
    void nextPage();
    void previousPage();
    int getPage() const { return mPage; }
    int getPageCount() const { return mPageCount; }
    bool isReady() const { return mReady; }
    void setBackgroundColor(COLORREF color) { mBackground = color; }
    void paintContent(HDC dc) override;

private:
    PrintPreview(const CString& busyText, const CString& blankText, const CString& failedText,
                 EventListener* listener);

    // Hears the worker's word on the user-interface thread.
    class ReadyListener : public EventListener {
    public:
        explicit ReadyListener(PrintPreview* owner) : mOwner(owner) {}
        void onEvent(Event* event) override;

    private:
        PrintPreview* mOwner;
    };

    void stopWorker();
    void render(int page);
    CRect pageRect() const;
    void drawText(HDC dc, const CRect& rect, const CString& text);

    OwnedPtr<PrintJob> mJob;
    OwnedPtr<Printer> mPrinter;
    int mPage = -1;
    int mPageCount = 0;
    int mKeptAsset = -1;
    std::thread mWorker;
    std::atomic<bool> mReady{false};
    CString mBusyText, mBlankText, mFailedText;
    COLORREF mBackground = 0xFFFFFF;
    COLORREF mBorderColor = 0x808080;
    int mBorderWidth = 1;
    // Written by the worker only while mReady is false.
    std::unique_ptr<Platform::Canvas> mRecording;
    CSize mPaper;
    bool mBlank = false;
    EventListener* mListener;
    ReadyListener mReadyListener{this};
};

}  // namespace Orvanta
