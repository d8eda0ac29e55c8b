#pragma once
// PrintTemplateSlot: one named rectangle of a print template, holding a photograph or a line of text.
//
// Contract: the rectangle is in thousandths of an inch from the paper's physical top left corner;
// getRect(dc) gives it in pixels of a device. A type other than Image or Text is kept as it is and
// treated as neither. Immutable once made.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CString.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

using HDC = Platform::Canvas*;

class PrintTemplateSlot : public IOwned {
public:
    enum Type : int { Image = 0, Text = 1 };

    // A null name or label is the empty string.
    static PrintTemplateSlot* create(const char16_t* name, const CRect& rect, Type type,
                                     const char16_t* label);

    virtual const CString& getName() const { return mName; }
    virtual CRect getRect(HDC dc) const;
    virtual CRect getRect() const { return mRect; }
    virtual Type getType() const { return mType; }
    virtual const CString& getLabel() const { return mLabel; }

private:
    PrintTemplateSlot(const char16_t* name, const CRect& rect, Type type, const char16_t* label)
        : mName(name), mRect(rect), mType(type), mLabel(label) {}

    CString mName;
    CRect mRect;
    Type mType;
    CString mLabel;
};

}  // namespace Orvanta
