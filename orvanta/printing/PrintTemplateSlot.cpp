#include "orvanta/printing/PrintTemplateSlot.h"

#include "orvanta/printing/PrintUnits.h"

namespace Orvanta {

PrintTemplateSlot* PrintTemplateSlot::create(const char16_t* name, const CRect& rect, Type type,
                                             const char16_t* label) {
    return new PrintTemplateSlot(name, rect, type, label);
}

CRect PrintTemplateSlot::getRect(HDC dc) const {
    return inches1000thToPixels(dc, mRect);
}

}  // namespace Orvanta
