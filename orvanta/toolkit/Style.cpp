#include "orvanta/toolkit/Style.h"

#include <bit>

namespace Orvanta {

int Style::indexOf(int side) {
    const unsigned bits = static_cast<unsigned>(side) & kAll;
    return bits ? std::countr_zero(bits) : -1;
}

int Style::getWidth(int side) const {
    const int i = indexOf(side);
    return i < 0 ? 0 : mValues[i];
}

void Style::setWidth(int width, int sides) {
    for (int i = 0; i < 6; ++i)
        if (sides & (1 << i)) mValues[i] = width;
}

COLORREF Style::getColor(int side) const {
    const int i = indexOf(side);
    return i < 0 ? 0 : static_cast<COLORREF>(mValues[6 + i]);
}

void Style::setColor(COLORREF color, int sides) {
    for (int i = 0; i < 6; ++i)
        if (sides & (1 << i)) mValues[6 + i] = static_cast<int>(color);
}

CRect Style::getBorders() const {
    return CRect(mValues[0], mValues[1], mValues[2], mValues[3]);
}

CSize Style::getSpacing() const {
    return CSize(mValues[5], mValues[4]);
}

}  // namespace Orvanta
