#include "orvanta/printing/PrintTemplatePage.h"

#include <algorithm>

#include "orvanta/codecs/ImageFile.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/printing/PrintPicture.h"
#include "orvanta/printing/PrintUnits.h"

namespace Orvanta {

PrintTemplatePage* PrintTemplatePage::create() {
    return new PrintTemplatePage();
}

PrintTemplateSlot* PrintTemplatePage::slotOf(const CString& slot) {
    return mTemplate ? mTemplate->getSlot(slot) : nullptr;
}

void PrintTemplatePage::setTemplate(PrintTemplate* printTemplate) {
    mTemplate = printTemplate;
    reloadAll();
    recentreAll();
    notify(0);
}

Asset* PrintTemplatePage::getAsset(const CString& slot) {
    return mStates[slot].asset;
}

void PrintTemplatePage::setAsset(HDC dc, const CString& slot, Asset* asset) {
    SlotState& state = mStates[slot];
    state.asset = asset;
    state.image = nullptr;
    state.rotation = 0;
    if (!asset) return;
    loadWorkingCopy(dc, slot);
    centre(dc, slot);
}

Image* PrintTemplatePage::getImage(const CString& slot) {
    return mStates[slot].image;
}

CPoint PrintTemplatePage::getOffset(HDC dc, const CString& slot) {
    const SlotState& state = mStates[slot];
    return inches1000thToPixels(dc, CPoint(state.offsetX, state.offsetY));
}

void PrintTemplatePage::setOffset(HDC dc, const CString& slot, int x, int y) {
    const CPoint offset = pixelsToInches1000th(dc, CPoint(x, y));
    SlotState& state = mStates[slot];
    state.offsetX = offset.x;
    state.offsetY = offset.y;
}

double PrintTemplatePage::getZoom(const CString& slot) {
    return mStates[slot].zoom;
}

void PrintTemplatePage::setZoom(const CString& slot, double zoom) {
    mStates[slot].zoom = zoom;
}

CString PrintTemplatePage::getText(const CString& slot) {
    return mStates[slot].text;
}

void PrintTemplatePage::setText(const CString& slot, const CString& text) {
    mStates[slot].text = text;
}

CString PrintTemplatePage::getSlotLabel(const CString& slot) {
    PrintTemplateSlot* templateSlot = slotOf(slot);
    if (!templateSlot) return CString();
    return templateSlot->getType() == PrintTemplateSlot::Text ? templateSlot->getName()
                                                              : templateSlot->getLabel();
}

bool PrintTemplatePage::isSlotEmpty(const CString& slot) {
    switch (getSlotType(slot)) {
        case PrintTemplateSlot::Image:
            return !mStates[slot].image;
        case PrintTemplateSlot::Text:
            return mStates[slot].text.length() == 0;
        default:
            return true;
    }
}

bool PrintTemplatePage::getSlotRect(HDC dc, const CString& slot, CRect& rect) {
    PrintTemplateSlot* templateSlot = slotOf(slot);
    if (!templateSlot) return false;
    rect = templateSlot->getRect(dc);
    return true;
}

CRect PrintTemplatePage::getSlotRect(const CString& slot) {
    PrintTemplateSlot* templateSlot = slotOf(slot);
    return templateSlot ? templateSlot->getRect() : CRect();
}

int PrintTemplatePage::getSlotType(const CString& slot) {
    PrintTemplateSlot* templateSlot = slotOf(slot);
    return templateSlot ? templateSlot->getType() : -1;
}

void PrintTemplatePage::rotateSlot(HDC dc, const CString& slot, int degrees) {
    if (getSlotType(slot) != PrintTemplateSlot::Image) return;
    SlotState& state = mStates[slot];
    if (!state.image) return;
    OwnedPtr<RotateOp> rotate = RotateOp::create(clockwiseQuarterTurn(degrees));
    OwnedPtr<Image> turned = applyToPicture(state.image, rotate);
    if (turned) state.image = turned;
    fit(dc, slot);
    state.rotation = (state.rotation + degrees) % 360;
    centre(dc, slot);
}

int PrintTemplatePage::getRotation(const CString& slot) {
    return mStates[slot].rotation;
}

bool PrintTemplatePage::isEffectApplied(const CString& slot) {
    return mStates[slot].effectApplied;
}

void PrintTemplatePage::setEffect(EditingOp* effect) {
    mEffect = effect;
    if (!mTemplate) return;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    for (const auto& entry : mTemplate->slots()) {
        const CString& name = entry.first;
        SlotState& state = mStates[name];
        if (!state.asset) continue;
        if (mEffect && !state.effectApplied && state.image) {
            OwnedPtr<Image> changed = applyToPicture(state.image, mEffect);
            if (changed) state.image = changed;
            state.effectApplied = true;
        } else {
            loadWorkingCopy(screen.get(), name);
        }
    }
}

CString PrintTemplatePage::getSlotAt(HDC dc, int x, int y) {
    return mTemplate ? mTemplate->getSlotAt(dc, x, y) : CString();
}

void PrintTemplatePage::reloadSlot(const CString& slot) {
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    loadWorkingCopy(screen.get(), slot);
}

void PrintTemplatePage::reloadAll() {
    if (!mTemplate) return;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    for (const auto& entry : mTemplate->slots()) loadWorkingCopy(screen.get(), entry.first);
}

void PrintTemplatePage::recentreAll() {
    if (!mTemplate) return;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    for (const auto& entry : mTemplate->slots()) centre(screen.get(), entry.first);
}

// The working copy never holds more pixels than the screen shows at the slot's physical size; the
// larger of the two ratios is taken so that neither axis falls below the screen's resolution.
void PrintTemplatePage::loadWorkingCopy(HDC dc, const CString& slot) {
    SlotState& state = mStates[slot];
    ImageFile* file = state.asset ? state.asset->getImageFile() : nullptr;
    if (!file) return;
    const CRect rect = getSlotRect(slot);
    const CSize pixels = file->getPictureSize();
    const int dpiX = printResolution(pixels.cx, rect.width());
    const int dpiY = printResolution(pixels.cy, rect.height());
    const Size screen = getScreenResolution();
    Size request(0, 0);
    if (dpiX > screen.cx || dpiY > screen.cy) {
        const double scale =
            std::max(static_cast<double>(screen.cx) / dpiX, static_cast<double>(screen.cy) / dpiY);
        request = Size(static_cast<int>(pixels.cx * scale), static_cast<int>(pixels.cy * scale));
    }
    OwnedPtr<Image> image = loadPrintPicture(state.asset, request);
    if (!image) return;
    if (mEffect) {
        OwnedPtr<Image> changed = applyToPicture(image, mEffect);
        if (changed) image = changed;
        state.effectApplied = true;
    }
    if (state.rotation > 0) {
        OwnedPtr<RotateOp> rotate = RotateOp::create(clockwiseQuarterTurn(state.rotation));
        OwnedPtr<Image> turned = applyToPicture(image, rotate);
        if (turned) image = turned;
    }
    state.image = image;
    fit(dc, slot);
}

// Fill, enlarging allowed: the picture always covers the slot.
void PrintTemplatePage::fit(HDC dc, const CString& slot) {
    SlotState& state = mStates[slot];
    CRect rect;
    if (!state.image || !getSlotRect(dc, slot, rect)) return;
    state.zoom = Image::calcScale(state.image->getSize(), rect.size(), true, true);
}

// A fill-scaled picture overhangs on one axis only, so one test is enough; x goes first.
void PrintTemplatePage::centre(HDC dc, const CString& slot) {
    SlotState& state = mStates[slot];
    CRect rect;
    if (!state.image || !getSlotRect(dc, slot, rect)) return;
    const CSize size = state.image->getSize();
    const int scaledW = static_cast<int>(size.cx * state.zoom);
    const int scaledH = static_cast<int>(size.cy * state.zoom);
    int x = 0, y = 0;
    if (scaledW > rect.width())
        x = (rect.width() - scaledW) / 2;
    else if (scaledH > rect.height())
        y = (rect.height() - scaledH) / 2;
    setOffset(dc, slot, x, y);
}

}  // namespace Orvanta
