#pragma once
// Printer: one of the system's printers (a CUPS destination), or the PDF file printer that writes
// documents to a file: its settings (DEVMODEW), papers, resolutions and the geometry of a page.
//
// Contract: asking a printer is slow, so nothing is read until first needed, and that reading is
// guarded by a mutex, since a preview's worker and the user-interface thread share one Printer. A
// printer that cannot be asked answers with empty lists and null settings. A driver rule that
// matches the printer (PrinterManager::addRule) can hide its print quality (bit 1) or paper type
// (bit 2: one paper, "don't set paper type", id −1) and skip the borderless test (bit 4).
// Papers are counted from 1 in DEVMODEW::dmPaperSize (0: the printer's default); their sizes are in
// tenths of a millimetre. A device context of the printer (createDC) measures as its page: the
// printer's dots, the paper and the printable area, with (0, 0) at the printable area's corner.

#include <memory>
#include <mutex>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/CupsPrinters.h"
#include "orvanta/platform/DevMode.h"
#include "orvanta/printing/PageGeometry.h"

namespace Orvanta {

using HDC = Platform::Canvas*;
class PrinterManager;

class Printer : public IOwned {
public:
    class Paper : public IOwned {
    public:
        static Paper* create(int id, const CString& name, int width, int height, bool borderless);
        // The one paper of printers that are given no paper type.
        static Paper* getNoPaperType();
        virtual int getId() const { return mId; }
        virtual CString getName() const { return mName; }
        virtual CSize getSize() const { return CSize(mWidth, mHeight); }
        virtual bool isBorderless() const { return mBorderless; }

    private:
        Paper(int id, const CString& name, int width, int height, bool borderless)
            : mId(id), mName(name), mWidth(width), mHeight(height), mBorderless(borderless) {}
        int mId;
        CString mName;
        int mWidth, mHeight;
        bool mBorderless;
    };

    // Rule bits.
    static constexpr int kNoPrintQuality = 1;
    static constexpr int kNoPaperType = 2;
    static constexpr int kNoBorderlessTest = 4;

    static Printer* create(const CString& name, PrinterManager* manager);
    // The printer that writes each document to a PDF file (setOutputFile) instead of a print queue:
    // Letter and A4 with no margins and a borderless 4 x 6, at 300 dots per inch.
    static Printer* createPdfFile();
    ~Printer() override;

    virtual CString getName() const { return mName; }
    virtual CString getDriverName();
    virtual CString getPortName();
    // A device context measuring as a page of the printer under devMode (the current settings when
    // null); the caller deletes it. Null when the printer cannot be asked.
    virtual std::unique_ptr<Platform::Canvas> createDC(const DEVMODEW* devMode);
    virtual DEVMODEW* getDevMode();
    virtual int getPaperCount();
    virtual Paper* getPaper(int index);
    virtual int getResolutionCount();
    virtual CSize getResolution(int index);
    virtual int getMediaType();
    virtual void setMediaType(int type);
    virtual int getPaperSize();
    virtual void setPaperSize(int paper);
    virtual void setOrientation(bool landscape);
    virtual bool isLandscape();
    virtual void setPrintQuality(int quality);
    virtual int getPrintQuality();
    virtual bool canDrawJpegs();
    virtual bool canDrawJpeg(void* data, int size);
    // The driver's own settings dialog has no form here: always false.
    virtual bool showDocumentProperties();
    virtual PageGeometry* getPageGeometry(bool symmetric, const DEVMODEW* devMode, HDC dc);
    virtual bool isBorderless();
    virtual bool normalizeDevMode(DEVMODEW* devMode);
    virtual PrinterManager* getManager() { return mManager; }
    virtual void clearPapers();
    virtual void addPaper(int id, const CString& name, int width, int height, bool borderless);

    // The page a document starts under devMode: what a device context of it measures.
    DeviceCaps getPageCaps(const DEVMODEW* devMode);
    // The job options that carry devMode to the print system.
    Platform::PrintOptions getPrintOptions(const DEVMODEW* devMode);
    // Documents go to this file rather than to a queue (empty: to the queue).
    void setOutputFile(const CString& path) { mOutputFile = path; }
    CString getOutputFile() const { return mOutputFile; }
    bool isPdfFile() const { return mPdfFile; }

private:
    Printer(const CString& name, PrinterManager* manager) : mName(name), mManager(manager) {}

    void ensureLoaded();
    void loadFrom(const Platform::PrinterDescription& description);
    int ruleFlags();
    const Platform::PrinterMedia* mediaOf(const DEVMODEW* devMode);

    std::mutex mMutex;
    bool mLoaded = false;
    bool mOpened = false;
    CString mName;
    Platform::PrinterDescription mDescription;
    std::unique_ptr<DEVMODEW> mDevMode;
    std::unique_ptr<DEVMODEW> mDefaultDevMode;
    std::vector<OwnedPtr<Paper>> mPapers;
    std::vector<CSize> mResolutions;
    bool mCanDrawJpeg = false;
    PrinterManager* mManager;
    bool mPdfFile = false;
    CString mOutputFile;
};

}  // namespace Orvanta
