#include "orvanta/printing/PrintTemplate.h"

#include <iterator>

#include "orvanta/printing/PrintUnits.h"

namespace Orvanta {

PrintTemplate* PrintTemplate::create(const char16_t* name, const char16_t* description, int width,
                                     int height) {
    return new PrintTemplate(name, description, width, height);
}

void PrintTemplate::addSlot(PrintTemplateSlot* slot) {
    if (slot) mSlots[slot->getName()] = slot;
}

PrintTemplateSlot* PrintTemplate::getSlot(const CString& name) {
    return mSlots[name];
}

PrintTemplate::SlotIterator* PrintTemplate::getSlots() {
    return new SlotIterator(this);
}

Size PrintTemplate::getSize(HDC dc) const {
    return inches1000thToPixels(dc, getSize());
}

CString PrintTemplate::getSlotAt(HDC dc, int x, int y) const {
    for (const auto& [name, slot] : mSlots) {
        if (!slot) break;
        if (slot->getRect(dc).contains(CPoint(x, y))) return name;
    }
    return CString();
}

bool PrintTemplate::SlotIterator::next() {
    if (mPosition + 1 >= getCount()) return false;
    ++mPosition;
    return current() != nullptr;
}

bool PrintTemplate::SlotIterator::prev() {
    if (mPosition <= 0) return false;
    --mPosition;
    return true;
}

bool PrintTemplate::SlotIterator::first() {
    mPosition = -1;
    return next();
}

PrintTemplateSlot* PrintTemplate::SlotIterator::current() {
    if (mPosition < 0 || mPosition >= getCount()) return nullptr;
    return std::next(mOwner->mSlots.begin(), mPosition)->second;
}

int PrintTemplate::SlotIterator::getCount() {
    return mOwner->getSlotCount();
}

void PrintTemplate::SlotIterator::reset() {
    mPosition = -1;
}

}  // namespace Orvanta
