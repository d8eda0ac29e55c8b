#include "orvanta/toolkit/WidgetLook.h"

#include <algorithm>

#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Mnemonic.h"

namespace Orvanta {

namespace {

// A shade lighter than the button face, for a button under the pointer.
constexpr COLORREF kHotFace = RGB(228, 226, 220);

}  // namespace

COLORREF WidgetLook::textColor(bool enabled, int sysColor) {
    return Platform::getSysColor(enabled ? sysColor : COLOR_GRAYTEXT);
}

CSize WidgetLook::measureCaption(const CString& caption, const Platform::FontDescription& font) {
    return Platform::TextLayout(Mnemonic::strip(caption), font).getSize();
}

void WidgetLook::drawCaption(HDC dc, const CString& caption, const CRect& box, UINT format, COLORREF color,
                             bool underlined) {
    int marked = -1;
    const CString shown = (format & DT_NOPREFIX) ? caption : Mnemonic::strip(caption, &marked);
    Platform::TextLayout layout(shown, dc->getFont());
    layout.setSingleParagraph();
    if (underlined)
        layout.underline(0, layout.getLength());
    else if (marked >= 0)
        layout.underline(marked, layout.nextCursorPosition(marked, true));
    const CSize size = layout.getSize();
    int x = box.left;
    if (format & DT_CENTER) x += (box.width() - size.cx) / 2;
    if (format & DT_RIGHT) x = box.right - size.cx;
    int y = box.top;
    if (format & DT_VCENTER) y += (box.height() - size.cy) / 2;
    const int level = dc->save();
    dc->intersectClipRect(box);
    const COLORREF old = dc->setTextColor(color);
    dc->drawLayout(layout, CPoint(x, y));
    dc->setTextColor(old);
    dc->restore(level);
}

void WidgetLook::drawButtonFace(HDC dc, const CRect& rect, bool pressed, bool hot) {
    COLORREF face = Platform::getSysColor(COLOR_BTNFACE);
    if (pressed)
        face = Platform::getSysColor(COLOR_BTNSHADOW);
    else if (hot)
        face = kHotFace;
    dc->fillRect(rect, face);
    dc->frameRect(rect, Platform::getSysColor(pressed ? COLOR_3DDKSHADOW : COLOR_BTNSHADOW));
}

CRect WidgetLook::drawField(HDC dc, const CRect& rect, bool enabled) {
    dc->frameRect(rect, Platform::getSysColor(COLOR_BTNSHADOW));
    const CRect inside(rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1);
    dc->fillRect(inside, Platform::getSysColor(enabled ? COLOR_WINDOW : COLOR_BTNFACE));
    return inside;
}

// Row i of the triangle (from its tip) is 2i + 1 pixels long, so the tip is a single pixel.
void WidgetLook::drawArrow(HDC dc, const CRect& box, Direction direction, int size, COLORREF color) {
    const int base = std::max(size | 1, 1);
    const int depth = (base + 1) / 2;
    const bool vertical = direction == Direction::Up || direction == Direction::Down;
    const int cx = box.left + box.width() / 2;
    const int cy = box.top + box.height() / 2;
    for (int i = 0; i < depth; ++i) {
        // Distance of this row from the tip, along the arrow's axis.
        const bool tipFirst = direction == Direction::Down || direction == Direction::Right;
        const int along = tipFirst ? depth / 2 - i : i - depth / 2;
        if (vertical) {
            const int y = cy + along;
            dc->fillRect(CRect(cx - i, y, cx + i + 1, y + 1), color);
        } else {
            const int x = cx + along;
            dc->fillRect(CRect(x, cy - i, x + 1, cy + i + 1), color);
        }
    }
}

void WidgetLook::drawRadio(HDC dc, const CRect& box, bool selected, bool enabled) {
    const int level = dc->save();
    const CRect ring(box.left, box.top + (box.height() - kRadioSize) / 2, box.left + kRadioSize,
                     box.top + (box.height() - kRadioSize) / 2 + kRadioSize);
    dc->setPen(Platform::getSysColor(COLOR_BTNSHADOW));
    dc->setBrush(Platform::getSysColor(enabled ? COLOR_WINDOW : COLOR_BTNFACE));
    dc->ellipse(ring);
    if (selected) {
        const COLORREF dot = textColor(enabled);
        dc->setPen(dot);
        dc->setBrush(dot);
        dc->ellipse(CRect(ring.left + 4, ring.top + 4, ring.right - 4, ring.bottom - 4));
    }
    dc->restore(level);
}

void WidgetLook::drawFocusRect(HDC dc, const CRect& rect) {
    const int level = dc->save();
    dc->setPen(Platform::getSysColor(COLOR_BTNTEXT), 1, Platform::Canvas::PenStyle::Dot);
    dc->setNullBrush();
    dc->rectangle(rect);
    dc->restore(level);
}

COLORREF WidgetLook::selectionColor(bool focused) {
    return Platform::getSysColor(focused ? COLOR_HIGHLIGHT : COLOR_BTNFACE);
}

COLORREF WidgetLook::selectedTextColor(bool focused) {
    return Platform::getSysColor(focused ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT);
}

}  // namespace Orvanta
