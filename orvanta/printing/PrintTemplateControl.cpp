#include "orvanta/printing/PrintTemplateControl.h"

#include <algorithm>

#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"

namespace Orvanta {

PrintTemplateControl* PrintTemplateControl::create(PrintTemplateControlHelper* helper) {
    return new PrintTemplateControl(helper);
}

PrintTemplateControl::PrintTemplateControl(PrintTemplateControlHelper* helper)
    : mRenderer(PrintTemplatePageRenderer::create()), mHelper(helper) {}

void PrintTemplateControl::setPage(PrintTemplatePage* page) {
    mRenderer->setPage(page);
    updateScale();
    invalidate();
}

void PrintTemplateControl::setRectImpl(const CRect& rect) {
    Control::setRectImpl(rect);
    updateScale();
}

void PrintTemplateControl::updateScale() {
    PrintTemplate* design = mRenderer->getTemplate();
    if (!design) return;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    const CRect client = getClientRect();
    mScale = Image::calcScale(design->getSize(screen.get()), CSize(client.width() - 20, client.height() - 20),
                              false, false);
}

void PrintTemplateControl::paintContent(HDC dc) {
    if (!getPage()) return;
    const int level = dc->save();
    scaleDC(dc, mScale);
    const Size screen = getScreenResolution();
    mRenderer->draw(dc, 0, 0, getPage(), static_cast<unsigned>(std::min(screen.cx, screen.cy)), false);
    dc->restore(level);
}

void PrintTemplateControl::editText(const CString& slot) {
    PrintTemplatePage* page = getPage();
    if (!mHelper || !page) return;
    const CString old = page->getText(slot);
    const CString text = mHelper->requestText(slot, old);
    if (text == old) return;
    page->setText(slot, text);
    invalidate();
}

int PrintTemplateControl::dragAt(PrintTemplatePage* page, Platform::Canvas* screen, CPoint at,
                                 CSize* overhangOut) {
    const CString slot = page->getSlotAt(screen, at.x, at.y);
    if (slot.isEmpty() || page->getSlotType(slot) != PrintTemplateSlot::Image) return DragNone;
    Image* image = page->getImage(slot);
    CRect rect;
    if (!image || !page->getSlotRect(screen, slot, rect)) return DragNone;
    const CSize size = image->getSize();
    const double zoom = page->getZoom(slot);
    const CSize overhang(static_cast<int>(size.cx * zoom) - rect.width(),
                         static_cast<int>(size.cy * zoom) - rect.height());
    if (overhangOut) *overhangOut = overhang;
    return overhang.cx > 0 ? DragHorizontal : overhang.cy > 0 ? DragVertical : DragNone;
}

bool PrintTemplateControl::onMouse(UINT message, CPoint point, WPARAM keys) {
    PrintTemplatePage* page = getPage();
    if (!page || mScale <= 0) return false;
    std::unique_ptr<Platform::Canvas> screen = Platform::Canvas::createScreenContext();
    const CPoint at(static_cast<int>(point.x / mScale), static_cast<int>(point.y / mScale));
    switch (message) {
        case WM_LBUTTONDOWN: {
            const CString slot = page->getSlotAt(screen.get(), at.x, at.y);
            if (slot.isEmpty()) return false;
            const int type = page->getSlotType(slot);
            if (type == PrintTemplateSlot::Text) {
                editText(slot);
                return true;
            }
            CSize overhang;
            mDragMode = dragAt(page, screen.get(), at, &overhang);
            mDragSlot = slot;
            mDragStart = at;
            const CPoint offset = page->getOffset(screen.get(), slot);
            mDragOffsetX = offset.x;
            mDragOffsetY = offset.y;
            mDragLimitX = std::max<int>(overhang.cx, 0);
            mDragLimitY = std::max<int>(overhang.cy, 0);
            return true;
        }
        case WM_MOUSEMOVE: {
            if (mDragMode == DragNone) {
                // The pointer shows which way a press here would move the picture.
                const int drag = dragAt(page, screen.get(), at, nullptr);
                setCursor(drag == DragHorizontal ? Platform::Cursor::system(IDC_SIZEWE)
                          : drag == DragVertical ? Platform::Cursor::system(IDC_SIZENS)
                                                 : nullptr);
                return false;
            }
            int x = mDragOffsetX, y = mDragOffsetY;
            if (mDragMode == DragHorizontal)
                x = std::clamp(mDragOffsetX + at.x - mDragStart.x, -mDragLimitX, 0);
            if (mDragMode == DragVertical)
                y = std::clamp(mDragOffsetY + at.y - mDragStart.y, -mDragLimitY, 0);
            page->setOffset(screen.get(), mDragSlot, x, y);
            invalidate();
            return true;
        }
        case WM_LBUTTONUP:
            mDragMode = DragNone;
            return true;
        case WM_RBUTTONDOWN: {
            const CString slot = page->getSlotAt(screen.get(), at.x, at.y);
            if (slot.isEmpty() || !mHelper) return false;
            const int type = page->getSlotType(slot);
            switch (mHelper->requestContextMenuCommand(page->isSlotEmpty(slot), type)) {
                case PrintTemplateControlHelper::ClearSlot:
                    if (type == PrintTemplateSlot::Text)
                        page->setText(slot, CString());
                    else
                        page->setAsset(screen.get(), slot, nullptr);
                    break;
                case PrintTemplateControlHelper::Rotate270:
                    page->rotateSlot(screen.get(), slot, 270);
                    break;
                case PrintTemplateControlHelper::Rotate90:
                    page->rotateSlot(screen.get(), slot, 90);
                    break;
                case PrintTemplateControlHelper::EditText:
                    editText(slot);
                    break;
                default:
                    return true;
            }
            invalidate();
            return true;
        }
        default:
            return false;
    }
}

}  // namespace Orvanta
