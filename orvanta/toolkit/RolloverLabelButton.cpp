#include "orvanta/toolkit/RolloverLabelButton.h"

#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/Mnemonic.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

RolloverLabelButton::RolloverLabelButton(int id, const CString& text) : TextButton(id, text) {
    setCursorId(IDC_HAND);
    refit();
}

RolloverLabelButton* RolloverLabelButton::create(int id, const CString& text, CommandListener* listener) {
    auto* button = new RolloverLabelButton(id, text);
    if (listener) button->addCommandListener(listener);
    return button;
}

void RolloverLabelButton::refit() {
    const CString shown = (captionFormat() & DT_NOPREFIX) ? mText : Mnemonic::strip(mText);
    const CSize text = Platform::TextLayout(shown, getFont()->getDescription()).getSize();
    setMinSize(text.cx + 2 * kPadding, text.cy + 2 * kPadding);
}

// No face: the container's background shows.
void RolloverLabelButton::paintBackground(HDC dc) {
    dc->fillRect(getClientRect(), getBkColor(true));
}

CRect RolloverLabelButton::captionRect() const {
    const CRect client = getClientRect();
    return CRect(client.left + kPadding, client.top, client.right - kPadding, client.bottom);
}

void RolloverLabelButton::paintContent(HDC dc) {
    CRect text = captionRect();
    if (isPressed()) text = CRect(text.left + 1, text.top + 1, text.right + 1, text.bottom + 1);
    const bool enabled = isEnabled();
    const COLORREF color =
        enabled ? Platform::getSysColor(COLOR_HOTLIGHT) : Platform::getSysColor(COLOR_GRAYTEXT);
    WidgetLook::drawCaption(dc, mText, text, captionFormat(), color, enabled && isHot());
    if (hasFocus()) WidgetLook::drawFocusRect(dc, getClientRect());
}

}  // namespace Orvanta
