#pragma once
// PrintJob: a document that knows how to draw its page n on a device context; the spooler sends it
// to a printer and the preview shows it, through the same drawing code.
//
// Contract: begin(printer, previewMode) and end() bracket a use of the job on a printer, any number
// of times (the preview does it per page); between them the job holds the printer, the caption font
// rescaled to the printer's resolution, and one copy of the printer's settings for each orientation.
// cancel() may be called from any thread; a job polls it between cells, finishes the page it is on,
// and end() clears it. Nothing is thrown.

#include <atomic>
#include <memory>

#include "orvanta/editing/EditingOp.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/printing/Printer.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

class PrintJob : public IOwned {
public:
    virtual void onBeginDocument(HDC dc) {}
    virtual void onEndDocument(HDC dc, bool aborted) {}
    virtual void onBeginPage(int page, HDC dc);
    // Draws the page between a save and a restore of the canvas; false stops the document.
    virtual bool printPage(int page, HDC dc);
    virtual void onEndPage(int page, HDC dc);
    // The settings page n prints under (remembered as the current ones); the default portrait or
    // landscape copy of this job when the page asks for none.
    virtual const DEVMODEW* getDevModeForPrint(int previousPage, int page);
    virtual bool canContinue(int page) { return true; }
    virtual bool drawPage(int page, HDC dc, bool isPreview) = 0;
    virtual int getPageCount() = 0;
    virtual int getFirstAssetOfPage(int page) = 0;
    virtual int getPageOfAsset(int assetIndex) = 0;
    virtual bool isPageBlank(int page) = 0;
    virtual const DEVMODEW* getDevModeForPage(int page) { return nullptr; }
    virtual void begin(Printer* printer, int previewMode);
    virtual void end();
    virtual void cancel() { mCancelled = true; }
    virtual bool isCancelled() { return mCancelled; }
    virtual CString getTitle() { return mTitle; }
    virtual bool isPrepared() { return mPrepared; }
    virtual const DEVMODEW* getCurrentDevMode() { return mCurrentDevMode; }
    virtual void setSymmetricMargins(bool symmetric) { mSymmetricMargins = symmetric; }
    virtual bool getSymmetricMargins() { return mSymmetricMargins; }
    virtual void setFont(Font* font) { mFont = font; }
    virtual Font* getFont() { return mFont; }
    virtual void setEffect(EditingOp* effect) { mEffect = effect; }
    virtual EditingOp* getEffect() { return mEffect; }
    virtual void setMaxDpi(int dpi) { mMaxDpi = dpi; }
    // In a preview the screen's resolution (the larger of its two), otherwise the field (default 300).
    virtual int getMaxDpi();
    virtual CSize getCellSize() { return CSize(0, 0); }
    virtual bool prepare() { return true; }
    virtual Printer* getPrinter() { return mPrinter; }
    virtual Font* getDeviceFont() { return mDeviceFont; }
    // 1 the portrait copy, 2 the landscape copy, anything else the printer's current settings.
    virtual const DEVMODEW* getDevMode(int orientation);

    PageGeometry* getPageGeometry(const DEVMODEW* devMode = nullptr, HDC dc = nullptr);
    bool isPreview() const { return mPreviewMode != 0; }

protected:
    explicit PrintJob(const CString& title) : mTitle(title) {}

    CString mTitle;
    bool mPrepared = false;
    std::atomic<bool> mCancelled{false};
    OwnedPtr<Printer> mPrinter;
    int mPreviewMode = 0;
    bool mSymmetricMargins = true;
    OwnedPtr<Font> mFont;
    OwnedPtr<Font> mDeviceFont;
    OwnedPtr<EditingOp> mEffect;
    std::unique_ptr<DEVMODEW> mPortrait;
    std::unique_ptr<DEVMODEW> mLandscape;
    int mMaxDpi = 300;
    const DEVMODEW* mCurrentDevMode = nullptr;

private:
    void rescaleFont();
};

}  // namespace Orvanta
