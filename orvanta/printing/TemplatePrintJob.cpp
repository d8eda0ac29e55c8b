#include "orvanta/printing/TemplatePrintJob.h"

#include <algorithm>

namespace Orvanta {

TemplatePrintJob* TemplatePrintJob::create(const CString& title) {
    return new TemplatePrintJob(title);
}

TemplatePrintJob::TemplatePrintJob(const CString& title)
    : PrintJob(title), mRenderer(PrintTemplatePageRenderer::create()) {
    mSymmetricMargins = false;
    mRenderer->hidePlaceholders();
}

const DEVMODEW* TemplatePrintJob::getDevModeForPage(int page) {
    if (page < 0 || page >= getPageCount() || !mPages[static_cast<size_t>(page)]->getTemplate())
        return nullptr;
    return getDevMode(mPages[static_cast<size_t>(page)]->getTemplate()->getOrientation());
}

bool TemplatePrintJob::prepare() {
    mRenderer->setTextFont(mDeviceFont);
    return true;
}

// Template coordinates start at the paper's corner, the device's at the printable area's.
bool TemplatePrintJob::drawPage(int page, HDC dc, bool isPreview) {
    if (page < 0 || page >= getPageCount()) return true;
    OwnedPtr<PageGeometry> geometry = getPageGeometry(nullptr, dc);
    const int left = geometry ? geometry->left : 0, top = geometry ? geometry->top : 0;
    mRenderer->setOrigin(-left, -top);
    mRenderer->draw(dc, -left, -top, mPages[static_cast<size_t>(page)], static_cast<unsigned>(getMaxDpi()),
                    mPrinter && mPrinter->canDrawJpegs());
    return true;
}

void TemplatePrintJob::setEffect(EditingOp* effect) {
    PrintJob::setEffect(effect);
    for (auto& page : mPages) page->setEffect(effect);
}

int TemplatePrintJob::addPage(PrintTemplatePage* page) {
    mPages.emplace_back(page);
    return getPageCount() - 1;
}

void TemplatePrintJob::insertPage(PrintTemplatePage* page, int index) {
    index = std::clamp(index, 0, getPageCount());
    mPages.emplace(mPages.begin() + index, page);
    page->setEffect(mEffect);
}

void TemplatePrintJob::removePage(int index) {
    if (index < 0 || index >= getPageCount()) return;
    mPages.erase(mPages.begin() + index);
}

}  // namespace Orvanta
