#include "orvanta/toolkit/Label.h"

#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

Label::Label(const CString& text, UINT format) : mFormat(format) {
    mText = text;
    refit();
}

Label::~Label() = default;

Label* Label::create(const CString& text, UINT format) {
    return new Label(text, format);
}

void Label::setText(const CString& text) {
    if (text.str() == mText.str()) return;
    mText = text;
    refit();
    invalidate();
}

void Label::setFont(Font* font) {
    Control::setFont(font);
    refit();
}

void Label::setFixedWidth(int width) {
    Control::setFixedWidth(width);
    refit();
}

void Label::setTextColor(COLORREF color) {
    mTextColor = color;
    invalidate();
}

COLORREF Label::getTextColor() const {
    return mTextColor == kInheritColor ? Platform::getSysColor(COLOR_WINDOWTEXT) : mTextColor;
}

void Label::setFormat(UINT format) {
    mFormat = format;
    refit();
    invalidate();
}

// The minimum size is the text on one line (or as wrapped at the fixed width) plus the borders.
void Label::refit() {
    mLayout.reset();
    Platform::TextLayout natural(mText, getFont()->getDescription());
    const CRect borders = getStyle().getBorders();
    const int wrapWidth = getFixedWidth() - borders.left - borders.right;
    if ((mFormat & DT_WORDBREAK) && !(mFormat & DT_SINGLELINE) && getFixedWidth() > 0 && wrapWidth > 0)
        natural.setWidth(wrapWidth, Platform::TextLayout::Overflow::Wrap);
    const CSize text = natural.getSize();
    setMinSize(text.cx + borders.left + borders.right, text.cy + borders.top + borders.bottom);
}

const Platform::TextLayout& Label::layoutFor(int width) {
    const bool limited = (mFormat & (DT_WORDBREAK | DT_END_ELLIPSIS)) != 0;
    const int wanted = limited ? width : -1;
    if (!mLayout || wanted != mLayoutWidth) {
        mLayout = std::make_unique<Platform::TextLayout>(mText, getFont()->getDescription());
        if (limited)
            mLayout->setWidth(width, (mFormat & DT_WORDBREAK) && !(mFormat & DT_SINGLELINE)
                                         ? Platform::TextLayout::Overflow::Wrap
                                         : Platform::TextLayout::Overflow::Ellipsis);
        if (mFormat & DT_CENTER) mLayout->setAlignment(Platform::TextLayout::Align::Center);
        if (mFormat & DT_RIGHT) mLayout->setAlignment(Platform::TextLayout::Align::Right);
        mLayoutWidth = wanted;
    }
    return *mLayout;
}

void Label::paintContent(HDC dc) {
    const CRect content = getContentRect();
    if (content.isEmpty() || mText.isEmpty()) return;
    const Platform::TextLayout& layout = layoutFor(content.width());
    const CSize size = layout.getSize();
    const bool limited = mLayoutWidth >= 0;
    int x = content.left;
    if (!limited && (mFormat & DT_CENTER)) x += (content.width() - size.cx) / 2;
    if (!limited && (mFormat & DT_RIGHT)) x = content.right - size.cx;
    int y = content.top;
    if (mFormat & DT_VCENTER) y += (content.height() - size.cy) / 2;
    if (mFormat & DT_BOTTOM) y = content.bottom - size.cy;
    dc->intersectClipRect(content);
    dc->setTextColor(getTextColor());
    dc->drawLayout(layout, CPoint(x, y));
}

}  // namespace Orvanta
