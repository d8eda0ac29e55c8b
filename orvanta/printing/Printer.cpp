#include "orvanta/printing/Printer.h"

#include "orvanta/foundation/MulDiv.h"
#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/printing/PrinterManager.h"

namespace Orvanta {

namespace {

constexpr int kDefaultDpi = 300;

// Hundredths of a millimetre in dots.
int toDots(int hundredths, int dpi) {
    return MulDiv(hundredths, dpi, 2540);
}

}  // namespace

Printer::Paper* Printer::Paper::create(int id, const CString& name, int width, int height, bool borderless) {
    return new Paper(id, name, width, height, borderless);
}

Printer::Paper* Printer::Paper::getNoPaperType() {
    static OwnedPtr<Paper> paper = create(-1, u"don't set paper type", 0, 0, false);
    return paper;
}

Printer* Printer::create(const CString& name, PrinterManager* manager) {
    return new Printer(name, manager);
}

Printer* Printer::createPdfFile() {
    Printer* printer = new Printer(u"PDF file", nullptr);
    printer->mPdfFile = true;
    Platform::PrinterDescription description;
    description.name = "PDF file";
    description.makeAndModel = "Orvanta PDF";
    description.deviceUri = "file:";
    description.media = {{"na_letter_8.5x11in", "US Letter", 21590, 27940, 0, 0, 0, 0},
                         {"iso_a4_210x297mm", "A4", 21000, 29700, 0, 0, 0, 0},
                         {"na_index-4x6_4x6in", "4 x 6", 10160, 15240, 0, 0, 0, 0}};
    description.defaultMedia = "na_letter_8.5x11in";
    description.resolutions = {CSize(kDefaultDpi, kDefaultDpi)};
    std::lock_guard<std::mutex> lock(printer->mMutex);
    printer->loadFrom(description);
    return printer;
}

Printer::~Printer() = default;

void Printer::ensureLoaded() {
    std::lock_guard<std::mutex> lock(mMutex);
    if (mLoaded) return;
    mLoaded = true;
    Platform::PrinterDescription description;
    if (Platform::CupsPrinters::describe(mName.toUtf8(), description)) loadFrom(description);
}

// Called with the mutex held.
void Printer::loadFrom(const Platform::PrinterDescription& description) {
    mLoaded = mOpened = true;
    mDescription = description;
    mResolutions = description.resolutions;
    mDefaultDevMode = std::make_unique<DEVMODEW>();
    mDefaultDevMode->dmFields = DM_ORIENTATION | DM_PAPERSIZE | DM_COPIES;
    for (size_t i = 0; i < description.media.size(); ++i)
        if (description.media[i].name == description.defaultMedia)
            mDefaultDevMode->dmPaperSize = static_cast<short>(i + 1);
    if (!mDefaultDevMode->dmPaperSize && !description.media.empty()) mDefaultDevMode->dmPaperSize = 1;
    if (!mResolutions.empty()) {
        mDefaultDevMode->dmFields |= DM_PRINTQUALITY | DM_YRESOLUTION;
        mDefaultDevMode->dmPrintQuality = static_cast<short>(mResolutions[0].cx);
        mDefaultDevMode->dmYResolution = static_cast<short>(mResolutions[0].cy);
    }
    mDevMode = std::make_unique<DEVMODEW>(*mDefaultDevMode);
    mPapers.clear();
    for (size_t i = 0; i < description.media.size(); ++i) {
        const Platform::PrinterMedia& media = description.media[i];
        mPapers.emplace_back(Paper::create(static_cast<int>(i + 1), CString::fromUtf8(media.displayName),
                                           media.width / 10, media.height / 10, media.isBorderless()));
    }
    mCanDrawJpeg = true;
}

int Printer::ruleFlags() {
    int flags = 0;
    if (mManager)
        for (int i = 0; i < mManager->getRuleCount(); ++i)
            if (mManager->getRule(i)->matches(this)) flags |= mManager->getRule(i)->getFlags();
    return flags;
}

CString Printer::getDriverName() {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return CString::fromUtf8(mDescription.makeAndModel);
}

CString Printer::getPortName() {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return CString::fromUtf8(mDescription.deviceUri);
}

const Platform::PrinterMedia* Printer::mediaOf(const DEVMODEW* devMode) {
    if (mDescription.media.empty()) return nullptr;
    int paper = devMode ? devMode->dmPaperSize : 0;
    if (paper < 1 || paper > static_cast<int>(mDescription.media.size()))
        paper = mDefaultDevMode ? mDefaultDevMode->dmPaperSize : 1;
    return &mDescription.media[static_cast<size_t>(paper - 1)];
}

DeviceCaps Printer::getPageCaps(const DEVMODEW* devMode) {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    if (!devMode) devMode = mDevMode.get();
    DeviceCaps caps;
    caps.dpiX = caps.dpiY = kDefaultDpi;
    if (!mResolutions.empty()) {
        caps.dpiX = mResolutions[0].cx;
        caps.dpiY = mResolutions[0].cy;
    }
    if (devMode && devMode->dmPrintQuality > 0) {
        caps.dpiX = devMode->dmPrintQuality;
        caps.dpiY = devMode->dmYResolution > 0 ? devMode->dmYResolution : devMode->dmPrintQuality;
    }
    const Platform::PrinterMedia* media = mediaOf(devMode);
    if (!media) return caps;
    int width = media->width, height = media->height;
    int left = media->left, top = media->top, right = media->right, bottom = media->bottom;
    // Landscape turns the paper a quarter counter-clockwise: its left edge comes to the bottom.
    if (devMode && devMode->dmOrientation == DMORIENT_LANDSCAPE) {
        std::swap(width, height);
        const int oldLeft = left;
        left = top;
        top = right;
        right = bottom;
        bottom = oldLeft;
    }
    caps.paperWidth = toDots(width, caps.dpiX);
    caps.paperHeight = toDots(height, caps.dpiY);
    caps.offsetX = toDots(left, caps.dpiX);
    caps.offsetY = toDots(top, caps.dpiY);
    caps.printableWidth = caps.paperWidth - caps.offsetX - toDots(right, caps.dpiX);
    caps.printableHeight = caps.paperHeight - caps.offsetY - toDots(bottom, caps.dpiY);
    return caps;
}

std::unique_ptr<Platform::Canvas> Printer::createDC(const DEVMODEW* devMode) {
    ensureLoaded();
    if (!mOpened) return nullptr;
    const DeviceCaps caps = getPageCaps(devMode);
    // A page that draws nowhere: it measures, and tells whether JPEG blocks are taken.
    std::unique_ptr<Platform::Canvas> dc =
        Platform::Canvas::createPdf([](const unsigned char*, unsigned int) { return true; }, 72, 72);
    if (dc) dc->setDeviceCaps(caps);
    return dc;
}

DEVMODEW* Printer::getDevMode() {
    ensureLoaded();
    return mDevMode.get();
}

int Printer::getPaperCount() {
    if (ruleFlags() & kNoPaperType) return 1;
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return static_cast<int>(mPapers.size());
}

Printer::Paper* Printer::getPaper(int index) {
    if (ruleFlags() & kNoPaperType) return Paper::getNoPaperType();
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return index >= 0 && index < static_cast<int>(mPapers.size()) ? mPapers[static_cast<size_t>(index)].get()
                                                                  : nullptr;
}

int Printer::getResolutionCount() {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return static_cast<int>(mResolutions.size());
}

CSize Printer::getResolution(int index) {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return index >= 0 && index < static_cast<int>(mResolutions.size())
               ? mResolutions[static_cast<size_t>(index)]
               : CSize(0, 0);
}

int Printer::getMediaType() {
    DEVMODEW* devMode = getDevMode();
    return devMode ? static_cast<int>(devMode->dmMediaType) : 0;
}

void Printer::setMediaType(int type) {
    DEVMODEW* devMode = getDevMode();
    if (!devMode || (ruleFlags() & kNoPaperType)) return;
    devMode->dmFields |= DM_MEDIATYPE;
    devMode->dmMediaType = static_cast<DWORD>(type);
}

int Printer::getPaperSize() {
    DEVMODEW* devMode = getDevMode();
    return devMode ? devMode->dmPaperSize : 0;
}

void Printer::setPaperSize(int paper) {
    DEVMODEW* devMode = getDevMode();
    if (!devMode) return;
    devMode->dmFields |= DM_PAPERSIZE;
    devMode->dmPaperSize = static_cast<short>(paper);
}

void Printer::setOrientation(bool landscape) {
    DEVMODEW* devMode = getDevMode();
    if (!devMode) return;
    devMode->dmFields |= DM_ORIENTATION;
    devMode->dmOrientation = landscape ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT;
}

bool Printer::isLandscape() {
    DEVMODEW* devMode = getDevMode();
    return devMode && devMode->dmOrientation != DMORIENT_PORTRAIT;
}

void Printer::setPrintQuality(int quality) {
    DEVMODEW* devMode = getDevMode();
    if (!devMode || (ruleFlags() & kNoPrintQuality)) return;
    if (quality < DMRES_HIGH || quality == 0) return;
    devMode->dmFields |= DM_PRINTQUALITY;
    devMode->dmFields &= ~DM_YRESOLUTION;
    devMode->dmYResolution = 0;
    devMode->dmPrintQuality = static_cast<short>(quality);
}

int Printer::getPrintQuality() {
    DEVMODEW* devMode = getDevMode();
    if (!devMode) return 0;
    const int quality = devMode->dmPrintQuality;
    return quality < DMRES_HIGH ? 0 : quality;
}

bool Printer::canDrawJpegs() {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    return mCanDrawJpeg;
}

bool Printer::canDrawJpeg(void* data, int size) {
    if (!canDrawJpegs()) return false;
    std::unique_ptr<Platform::Canvas> dc = createDC(nullptr);
    return dc && canDrawJpegDirect(dc.get(), data, size);
}

bool Printer::showDocumentProperties() {
    return false;
}

PageGeometry* Printer::getPageGeometry(bool symmetric, const DEVMODEW* devMode, HDC dc) {
    std::unique_ptr<Platform::Canvas> printerDC = createDC(devMode);
    if (!printerDC) return nullptr;
    HDC target = dc ? dc : printerDC.get();
    PageGeometry* geometry = PageGeometry::create();
    geometry->paperWidth = printerDC->getDeviceCaps(PHYSICALWIDTH);
    geometry->paperHeight = printerDC->getDeviceCaps(PHYSICALHEIGHT);
    geometry->left = printerDC->getDeviceCaps(PHYSICALOFFSETX);
    geometry->top = printerDC->getDeviceCaps(PHYSICALOFFSETY);
    geometry->right = geometry->left + printerDC->getDeviceCaps(HORZRES);
    geometry->bottom = geometry->top + printerDC->getDeviceCaps(VERTRES);
    geometry->dpiX = target->getDeviceCaps(LOGPIXELSX);
    geometry->dpiY = target->getDeviceCaps(LOGPIXELSY);
    const int printerDpiX = printerDC->getDeviceCaps(LOGPIXELSX);
    const int printerDpiY = printerDC->getDeviceCaps(LOGPIXELSY);
    if (geometry->dpiX != printerDpiX || geometry->dpiY != printerDpiY) {
        for (int* value : {&geometry->paperWidth, &geometry->left, &geometry->right})
            *value = MulDiv(*value, geometry->dpiX, printerDpiX);
        for (int* value : {&geometry->paperHeight, &geometry->top, &geometry->bottom})
            *value = MulDiv(*value, geometry->dpiY, printerDpiY);
    }
    if (symmetric) {
        // The narrower margin on each axis grows to the wider one when it is the left or top one.
        const int newLeft = std::max(geometry->left, geometry->paperWidth - geometry->right);
        const int newTop = std::max(geometry->top, geometry->paperHeight - geometry->bottom);
        geometry->offsetX = newLeft - geometry->left;
        geometry->offsetY = newTop - geometry->top;
        geometry->left = newLeft;
        geometry->top = newTop;
    }
    return geometry;
}

bool Printer::isBorderless() {
    OwnedPtr<PageGeometry> geometry = getPageGeometry(false, nullptr, nullptr);
    return geometry && geometry->left == 0 && geometry->top == 0;
}

bool Printer::normalizeDevMode(DEVMODEW* devMode) {
    if (!devMode) return false;
    if (ruleFlags()) return true;
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    if (!mOpened) return false;
    if (devMode->dmPaperSize < 0 || devMode->dmPaperSize > static_cast<int>(mDescription.media.size()))
        devMode->dmPaperSize = mDefaultDevMode->dmPaperSize;
    if (devMode->dmOrientation != DMORIENT_LANDSCAPE) devMode->dmOrientation = DMORIENT_PORTRAIT;
    if (devMode->dmCopies < 1) devMode->dmCopies = 1;
    return true;
}

void Printer::clearPapers() {
    std::lock_guard<std::mutex> lock(mMutex);
    mPapers.clear();
}

void Printer::addPaper(int id, const CString& name, int width, int height, bool borderless) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPapers.emplace_back(Paper::create(id, name, width, height, borderless));
}

Platform::PrintOptions Printer::getPrintOptions(const DEVMODEW* devMode) {
    ensureLoaded();
    std::lock_guard<std::mutex> lock(mMutex);
    Platform::PrintOptions options;
    if (!devMode) devMode = mDevMode.get();
    if (!devMode) return options;
    if (const Platform::PrinterMedia* media = mediaOf(devMode)) options.emplace_back("media", media->name);
    // No orientation-requested: each page of the document already has the size and orientation it
    // prints on, which a requested orientation would turn a second time.
    if (devMode->dmPrintQuality > 0) {
        const int y = devMode->dmYResolution > 0 ? devMode->dmYResolution : devMode->dmPrintQuality;
        options.emplace_back("printer-resolution",
                             std::to_string(devMode->dmPrintQuality) + "x" + std::to_string(y) + "dpi");
    } else if (devMode->dmPrintQuality < 0) {
        // draft and low are draft (3), medium normal (4), high high (5)
        const int quality = devMode->dmPrintQuality == DMRES_HIGH     ? 5
                            : devMode->dmPrintQuality == DMRES_MEDIUM ? 4
                                                                      : 3;
        options.emplace_back("print-quality", std::to_string(quality));
    }
    if (devMode->dmMediaType) options.emplace_back("media-type", std::to_string(devMode->dmMediaType));
    if (devMode->dmCopies > 1) options.emplace_back("copies", std::to_string(devMode->dmCopies));
    return options;
}

}  // namespace Orvanta
