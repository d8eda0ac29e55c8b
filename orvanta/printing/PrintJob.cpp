#include "orvanta/printing/PrintJob.h"

#include <algorithm>
#include <cstdlib>

#include "orvanta/foundation/MulDiv.h"
#include "orvanta/foundation/Shell.h"

namespace Orvanta {

void PrintJob::onBeginPage(int page, HDC dc) {
    dc->save();
}

bool PrintJob::printPage(int page, HDC dc) {
    const int level = dc->save();
    const bool result = drawPage(page, dc, mPreviewMode != 0);
    dc->restore(level);
    return result;
}

void PrintJob::onEndPage(int page, HDC dc) {
    dc->restore(-1);
}

const DEVMODEW* PrintJob::getDevModeForPrint(int previousPage, int page) {
    const DEVMODEW* devMode = getDevModeForPage(page);
    mCurrentDevMode = devMode ? devMode : getDevMode(-1);
    return mCurrentDevMode;
}

void PrintJob::begin(Printer* printer, int previewMode) {
    mCancelled = false;
    mPrinter = printer;
    mPreviewMode = previewMode;
    rescaleFont();
    mPortrait.reset();
    mLandscape.reset();
    const DEVMODEW* current = printer ? printer->getDevMode() : nullptr;
    if (current) {
        mPortrait = std::make_unique<DEVMODEW>(*current);
        mLandscape = std::make_unique<DEVMODEW>(*current);
        mPortrait->dmFields |= DM_ORIENTATION;
        mPortrait->dmOrientation = DMORIENT_PORTRAIT;
        mLandscape->dmFields |= DM_ORIENTATION;
        mLandscape->dmOrientation = DMORIENT_LANDSCAPE;
        printer->normalizeDevMode(mPortrait.get());
        printer->normalizeDevMode(mLandscape.get());
    }
    mCurrentDevMode = getDevMode(-1);
    mPrepared = prepare();
}

void PrintJob::end() {
    mCancelled = false;
    mPrinter = nullptr;
    mPrepared = false;
}

// The caption font is given in screen pixels; the printer draws it at the same size in points.
void PrintJob::rescaleFont() {
    mDeviceFont = nullptr;
    Font* font = mFont ? mFont.get() : Font::getDefault();
    std::unique_ptr<Platform::Canvas> dc = mPrinter ? mPrinter->createDC(nullptr) : nullptr;
    if (!font || !dc) return;
    LOGFONTW logFont = font->getLogFont();
    const int screenDpiY = getScreenResolution().cy;
    logFont.lfHeight =
        -MulDiv(std::abs(MulDiv(logFont.lfHeight, 72, screenDpiY)), dc->getDeviceCaps(LOGPIXELSY), 72);
    mDeviceFont = Font::create(logFont);
}

int PrintJob::getMaxDpi() {
    if (mPreviewMode == 0) return mMaxDpi;
    const Size screen = getScreenResolution();
    return std::max(screen.cx, screen.cy);
}

const DEVMODEW* PrintJob::getDevMode(int orientation) {
    if (orientation == DMORIENT_PORTRAIT) return mPortrait.get();
    if (orientation == DMORIENT_LANDSCAPE) return mLandscape.get();
    return mPrinter ? mPrinter->getDevMode() : nullptr;
}

PageGeometry* PrintJob::getPageGeometry(const DEVMODEW* devMode, HDC dc) {
    if (!mPrinter) return nullptr;
    return mPrinter->getPageGeometry(mSymmetricMargins, devMode ? devMode : getCurrentDevMode(), dc);
}

}  // namespace Orvanta
