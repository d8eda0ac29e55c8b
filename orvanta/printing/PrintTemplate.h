#pragma once
// PrintTemplate: a fixed page design: a paper size in thousandths of an inch and named slots on it.
//
// Contract: slots are kept and walked in the order of their names by code unit (case sensitive),
// never in the order they were added; a second slot of one name replaces the first. getSlot has the
// semantics of a map's subscript: an unknown name is inserted with no slot, the answer is null, and
// getSlotCount counts it from then on (a walk meets that null slot and stops there). getSlotAt finds
// the first slot in name order whose rectangle holds the point, right and bottom edges excluded.
// Nothing else changes a template once its slots are added.

#include <map>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Size.h"
#include "orvanta/printing/PrintTemplateSlot.h"

namespace Orvanta {

// Slot names compare by code unit, case sensitive, as wcscmp does.
struct SlotNameOrder {
    bool operator()(const CString& a, const CString& b) const { return a.str() < b.str(); }
};

class PrintTemplate : public IOwned {
    using SlotMap = std::map<CString, OwnedPtr<PrintTemplateSlot>, SlotNameOrder>;

public:
    // Paper orientations, as the printer's settings count them.
    static constexpr int kPortrait = 1;
    static constexpr int kLandscape = 2;

    // The library's cursor: it starts before the first slot (position −1); first() or next() moves
    // and says whether a slot is there, current() gives it, or null past the end.
    class SlotIterator : public IOwned {
    public:
        virtual bool next();
        virtual bool prev();
        virtual bool first();
        virtual PrintTemplateSlot* current();
        virtual int getCount();
        virtual void reset();

    private:
        friend class PrintTemplate;
        explicit SlotIterator(PrintTemplate* owner) : mOwner(owner) {}

        OwnedPtr<PrintTemplate> mOwner;
        int mPosition = -1;
    };

    static PrintTemplate* create(const char16_t* name, const char16_t* description, int width, int height);

    virtual void addSlot(PrintTemplateSlot* slot);
    virtual PrintTemplateSlot* getSlot(const CString& name);
    virtual int getSlotCount() const { return static_cast<int>(mSlots.size()); }
    virtual SlotIterator* getSlots();
    virtual const CString& getName() const { return mName; }
    virtual const CString& getDescription() const { return mDescription; }
    virtual Size getSize(HDC dc) const;
    virtual Size getSize() const { return Size(mWidth, mHeight); }
    virtual int getOrientation() const { return mWidth > mHeight ? kLandscape : kPortrait; }
    virtual CString getSlotAt(HDC dc, int x, int y) const;

    // The slot names in walking order, for the renderers and pages (a null slot is included).
    const SlotMap& slots() const { return mSlots; }

private:
    PrintTemplate(const char16_t* name, const char16_t* description, int width, int height)
        : mName(name), mDescription(description), mWidth(width), mHeight(height) {}

    SlotMap mSlots;
    CString mName;
    CString mDescription;
    int mWidth;
    int mHeight;
};

}  // namespace Orvanta
