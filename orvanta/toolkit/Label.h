#pragma once
// Label: a windowless line (or paragraph) of text, drawn by the toolkit in the control's font and
// text colour, placed in its content rectangle by its format (DT_LEFT, DT_CENTER, DT_RIGHT,
// DT_VCENTER, DT_WORDBREAK, DT_END_ELLIPSIS).
//
// Contract: the label's minimum size is its text's extent plus its borders, so a container makes
// room for it; a word-wrapping label with a fixed width measures its text wrapped at that width. A
// change of text, font, format or fixed width changes it (code 3 to the listeners). The text is shaped
// once per change, not at every paint. A text colour of kInheritColor is the platform's window text.

#include <memory>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Control.h"

namespace Orvanta {

class Label : public Control {
public:
    static Label* create(const CString& text, UINT format = DT_LEFT | DT_VCENTER | DT_SINGLELINE);
    ~Label() override;

    void setText(const CString& text) override;
    void setFont(Font* font) override;
    void setFixedWidth(int width) override;
    void setTextColor(COLORREF color);
    COLORREF getTextColor() const;
    void setFormat(UINT format);
    UINT getFormat() const { return mFormat; }

    void paintContent(HDC dc) override;

protected:
    Label(const CString& text, UINT format);

private:
    void refit();
    const Platform::TextLayout& layoutFor(int width);

    UINT mFormat;
    COLORREF mTextColor = kInheritColor;
    std::unique_ptr<Platform::TextLayout> mLayout;
    int mLayoutWidth = -2;
};

}  // namespace Orvanta
