#include "orvanta/printing/PrintPreview.h"

#include "orvanta/foundation/MulDiv.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

PrintPreview* PrintPreview::create(const CString& busyText, const CString& blankText,
                                   const CString& failedText, EventListener* listener) {
    return new PrintPreview(busyText, blankText, failedText, listener);
}

PrintPreview::PrintPreview(const CString& busyText, const CString& blankText, const CString& failedText,
                           EventListener* listener)
    : mBusyText(busyText), mBlankText(blankText), mFailedText(failedText), mListener(listener) {}

PrintPreview::~PrintPreview() {
    stopWorker();
}

void PrintPreview::ReadyListener::onEvent(Event* event) {
    mOwner->invalidate();
}

void PrintPreview::setJob(PrintJob* job, Printer* printer) {
    stopWorker();
    mJob = job;
    mPrinter = printer;
    mKeptAsset = -1;
    mPageCount = 0;
    mPage = 0;
    mReady = false;
}

void PrintPreview::refresh() {
    stopWorker();
    if (!mJob || !mPrinter) return;
    mJob->begin(mPrinter, 1);
    mPageCount = mJob->getPageCount();
    if (mKeptAsset >= 0) {
        const int page = mJob->getPageOfAsset(mKeptAsset);
        mPage = page < 0 ? 0 : page;
    }
    mJob->end();
    showPage(mPage < 0 ? 0 : mPage);
}

void PrintPreview::showPage(int page) {
    stopWorker();
    mPage = page;
    mReady = false;
    if (mJob && mPrinter) mWorker = std::thread(&PrintPreview::render, this, page);
    invalidate();
}

void PrintPreview::nextPage() {
    if (mPageCount > 0) showPage(mPage + 1 >= mPageCount ? 0 : mPage + 1);
}

void PrintPreview::previousPage() {
    if (mPageCount > 0) showPage(mPage <= 0 ? mPageCount - 1 : mPage - 1);
}

void PrintPreview::stopWorker() {
    if (!mWorker.joinable()) return;
    if (mJob) mJob->cancel();
    mWorker.join();
}

// On the worker: the page drawn by the job's own code into a recording in the printer's own dots
// (as a metafile made against the printer's context), paper and printable area; played back scaled.
void PrintPreview::render(int page) {
    mJob->begin(mPrinter, 1);
    std::unique_ptr<Platform::Canvas> recording;
    CSize paper(0, 0);
    bool blank = false;
    if (mJob->canContinue(page)) {
        blank = mJob->isPageBlank(page);
        const DeviceCaps caps = mPrinter->getPageCaps(mJob->getDevModeForPrint(page, page));
        paper = CSize(caps.paperWidth, caps.paperHeight);
        if (paper.cx > 0 && paper.cy > 0) {
            recording = Platform::Canvas::createRecording(CRect(0, 0, paper.cx, paper.cy));
            recording->setDeviceCaps(caps);
            mJob->onBeginPage(page, recording.get());
            const bool drawn = mJob->printPage(page, recording.get());
            mJob->onEndPage(page, recording.get());
            recording->finish();
            if (!drawn) recording.reset();
        }
        mKeptAsset = mJob->getFirstAssetOfPage(page);
    }
    mJob->end();
    mRecording = std::move(recording);
    mPaper = paper;
    mBlank = blank;
    mReady = true;
    sendEventLater(Event::create(kPageReady), &mReadyListener);
    if (mListener) sendEventLater(Event::create(kPageReady), mListener);
}

CRect PrintPreview::pageRect() const {
    const CRect client = getClientRect();
    if (mPaper.cx <= 0 || mPaper.cy <= 0) return client;
    const int fitW = MulDiv(client.height(), mPaper.cx, mPaper.cy);
    if (fitW < client.width()) {
        const int left = client.left + (client.width() - fitW) / 2;
        return CRect(left, client.top, left + fitW, client.bottom);
    }
    const int fitH = MulDiv(client.width(), mPaper.cy, mPaper.cx);
    const int top = client.top + (client.height() - fitH) / 2;
    return CRect(client.left, top, client.right, top + fitH);
}

void PrintPreview::drawText(HDC dc, const CRect& rect, const CString& text) {
    CRect box(rect.left + 5, rect.top + 5, rect.right - 5, rect.bottom - 5);
    CRect measured = box;
    dc->drawText(text, &measured, DT_CALCRECT | DT_WORDBREAK);
    const int top = box.top + (box.height() - measured.height()) / 2;
    CRect centred(box.left, top, box.right, top + measured.height());
    dc->setBkColor(0xFFFFFF);
    dc->drawText(text, &centred, DT_CENTER | DT_WORDBREAK | DT_END_ELLIPSIS);
}

void PrintPreview::paintContent(HDC dc) {
    const CRect client = getClientRect();
    dc->fillRect(client, mBackground);
    const bool ready = mReady;
    CRect page = ready ? pageRect() : client;
    if (ready && mPageCount > 1) {
        dc->setPen(mBorderColor, mBorderWidth);
        dc->setBrush(0xFFFFFF);
        dc->rectangle(CRect(page.left + 3, page.top + 3, page.right, page.bottom));
        page = CRect(page.left, page.top, page.right - 3, page.bottom - 3);
    }
    dc->setPen(mBorderColor, mBorderWidth);
    dc->setBrush(0xFFFFFF);
    dc->rectangle(page);
    if (!ready || !mJob) {
        drawText(dc, page, mBusyText);
    } else if (mBlank) {
        drawText(dc, page, mBlankText);
    } else if (mRecording) {
        const int level = dc->save();
        dc->intersectClipRect(page);
        mRecording->replayOnto(*dc, page.topLeft(), static_cast<double>(page.width()) / mPaper.cx);
        dc->restore(level);
    } else {
        drawText(dc, page, mFailedText);
    }
}

}  // namespace Orvanta
