#include "orvanta/toolkit/RolloverToolbarLabel.h"

#include <algorithm>

#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

RolloverToolbarLabel::RolloverToolbarLabel(int id, const CString& text, Bitmaps* picture)
    : RolloverLabelButton(id, text), mPicture(picture) {
    setCursor(nullptr);
    refit();
}

RolloverToolbarLabel* RolloverToolbarLabel::create(int id, const CString& text, const Resource& picture,
                                                   int frames, COLORREF transparentColor,
                                                   CommandListener* listener) {
    auto* button = new RolloverToolbarLabel(id, text, Bitmaps::create(picture, frames, transparentColor));
    if (listener) button->addCommandListener(listener);
    return button;
}

void RolloverToolbarLabel::setFrame(int frame) {
    mFrame = frame;
    invalidate();
}

void RolloverToolbarLabel::refit() {
    const CSize text = WidgetLook::measureCaption(mText, getFont()->getDescription());
    const CSize picture = pictureSize();
    const int gap = picture.cy > 0 ? kPictureGap : 0;
    setMinSize(std::max(text.cx, picture.cx) + 2 * kPadding, picture.cy + gap + text.cy + 2 * kPadding);
}

CRect RolloverToolbarLabel::captionRect() const {
    const CRect client = getClientRect();
    const int top = client.top + kPadding + pictureSize().cy + (pictureSize().cy > 0 ? kPictureGap : 0);
    return CRect(client.left + kPadding, top, client.right - kPadding, client.bottom - kPadding);
}

void RolloverToolbarLabel::paintBackground(HDC dc) {
    const CRect client = getClientRect();
    dc->fillRect(client, getBkColor(true));
    if (!isEnabled() || (!isHot() && !isPressed())) return;
    // A raised edge under the pointer, a sunken one while pressed: light and shadow change places.
    const COLORREF light = Platform::getSysColor(COLOR_BTNHIGHLIGHT);
    const COLORREF shadow = Platform::getSysColor(COLOR_BTNSHADOW);
    const COLORREF topLeft = isPressed() ? shadow : light;
    const COLORREF bottomRight = isPressed() ? light : shadow;
    dc->fillRect(CRect(client.left, client.top, client.right, client.top + 1), topLeft);
    dc->fillRect(CRect(client.left, client.top, client.left + 1, client.bottom), topLeft);
    dc->fillRect(CRect(client.left, client.bottom - 1, client.right, client.bottom), bottomRight);
    dc->fillRect(CRect(client.right - 1, client.top, client.right, client.bottom), bottomRight);
}

void RolloverToolbarLabel::paintContent(HDC dc) {
    const int shift = isPressed() ? 1 : 0;
    const CRect client = getClientRect();
    if (mPicture) {
        const CSize picture = pictureSize();
        const int frame = mFrame < mPicture->getFrameCount() ? mFrame : 0;
        mPicture->draw(dc, frame,
                       CPoint((client.width() - picture.cx) / 2 + shift, client.top + kPadding + shift));
    }
    CRect text = captionRect();
    text = CRect(text.left + shift, text.top + shift, text.right + shift, text.bottom + shift);
    WidgetLook::drawCaption(dc, mText, text, DT_CENTER, WidgetLook::textColor(isEnabled(), COLOR_BTNTEXT));
    if (hasFocus())
        WidgetLook::drawFocusRect(
            dc, CRect(client.left + 2, client.top + 2, client.right - 2, client.bottom - 2));
}

}  // namespace Orvanta
