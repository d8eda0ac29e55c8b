#include "orvanta/printing/PrintTemplateRenderer.h"

#include <memory>

#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

PrintTemplateRenderer* PrintTemplateRenderer::create() {
    return new PrintTemplateRenderer();
}

PrintTemplateRenderer::PrintTemplateRenderer() {
    styleOf(PrintTemplateSlot::Text).fillColor = 0x808080;
}

void PrintTemplateRenderer::setOutline(int width, COLORREF color) {
    mOutlineWidth = width;
    mOutlineColor = color;
}

void PrintTemplateRenderer::setSlotFillColor(PrintTemplateSlot::Type type, COLORREF color) {
    styleOf(type).fillColor = color;
}

COLORREF PrintTemplateRenderer::getSlotFillColor(PrintTemplateSlot::Type type) {
    return styleOf(type).fillColor;
}

void PrintTemplateRenderer::setSlotBorder(PrintTemplateSlot::Type type, int width, COLORREF color) {
    styleOf(type).borderWidth = width;
    styleOf(type).borderColor = color;
}

int PrintTemplateRenderer::getSlotBorderWidth(PrintTemplateSlot::Type type) {
    return styleOf(type).borderWidth;
}

COLORREF PrintTemplateRenderer::getSlotBorderColor(PrintTemplateSlot::Type type) {
    return styleOf(type).borderColor;
}

void PrintTemplateRenderer::setSlotText(PrintTemplateSlot::Type type, const CString& text) {
    styleOf(type).text = text;
}

void PrintTemplateRenderer::setSlotFont(PrintTemplateSlot::Type type, Font* font) {
    styleOf(type).font = font;
}

void PrintTemplateRenderer::draw(HDC dc, int x, int y) {
    setOrigin(x, y);
    drawPageOutline(dc);
    if (!mTemplate) return;
    for (const auto& [name, slot] : mTemplate->slots()) {
        if (!slot) break;
        drawSlotBox(dc, name, true, true);
    }
}

DibSection* PrintTemplateRenderer::renderPreview(int cx, int cy) {
    if (!mTemplate || cx <= 0 || cy <= 0) return nullptr;
    SlotStyle& text = styleOf(PrintTemplateSlot::Text);
    const COLORREF keptColor = text.borderColor;
    text.borderColor = text.fillColor;
    // Four bytes a pixel: the rows a canvas draws on.
    OwnedPtr<DibSection> section = DibSection::create(cx, cy, 4);
    std::unique_ptr<Platform::Canvas> dc = Platform::Canvas::createForBitmap(section->getHBitmap());
    if (dc) {
        DeviceCaps caps;
        const Size screen = getScreenResolution();
        caps.dpiX = screen.cx;
        caps.dpiY = screen.cy;
        dc->setDeviceCaps(caps);
        const double scale =
            Image::calcScale(mTemplate->getSize(dc.get()),
                             CSize(cx - 2 * mOutlineWidth, cy - 2 * mOutlineWidth), false, false);
        dc->fillRect(CRect(0, 0, cx, cy), 0xFFFFFF);
        scaleDC(dc.get(), scale);
        draw(dc.get(), 0, 0);
        dc->finish();
    }
    text.borderColor = keptColor;
    return section.detach();
}

bool PrintTemplateRenderer::getSlotDeviceRect(HDC dc, const CString& slot, CRect& rect) {
    PrintTemplateSlot* templateSlot = mTemplate ? mTemplate->getSlot(slot) : nullptr;
    if (!templateSlot) return false;
    rect = templateSlot->getRect(dc);
    rect =
        CRect(rect.left + mOrigin.x, rect.top + mOrigin.y, rect.right + mOrigin.x, rect.bottom + mOrigin.y);
    return true;
}

void PrintTemplateRenderer::drawSlotBox(HDC dc, const CString& slot, bool showFill, bool showText) {
    PrintTemplateSlot* templateSlot = mTemplate ? mTemplate->getSlot(slot) : nullptr;
    CRect rect;
    if (!templateSlot || !getSlotDeviceRect(dc, slot, rect)) return;
    const SlotStyle& style = styleOf(templateSlot->getType());
    drawBox(dc, rect, showFill ? style.fillColor : kNoColor, style.borderWidth, style.borderColor, false);
    if (showText && !style.text.isEmpty()) {
        const int level = dc->save();
        if (style.font) dc->selectFont(&style.font->getDescription());
        dc->drawText(style.text, &rect,
                     DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        dc->restore(level);
    }
}

void PrintTemplateRenderer::clearSlot(HDC dc, const CString& slot) {
    PrintTemplateSlot* templateSlot = mTemplate ? mTemplate->getSlot(slot) : nullptr;
    CRect rect;
    if (!templateSlot || !getSlotDeviceRect(dc, slot, rect)) return;
    drawBox(dc, rect, mBackground, styleOf(templateSlot->getType()).borderWidth, mBackground, false);
    dc->fillRect(rect, mBackground);
}

void PrintTemplateRenderer::drawPageOutline(HDC dc) {
    if (!mTemplate) return;
    const Size size = mTemplate->getSize(dc);
    drawBox(dc, CRect(mOrigin.x, mOrigin.y, mOrigin.x + size.cx, mOrigin.y + size.cy), mBackground,
            mOutlineWidth, mOutlineColor, false);
}

}  // namespace Orvanta
