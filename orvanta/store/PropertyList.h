#pragma once
// PropertyList: the in-memory form of one catalogue entry, a sorted map from property name to value.
//
// Contract: names are ordered and matched with Platform::compareText (lstrcmpW): case-sensitive, in
// the locale's word-sort order. set copies the value, marks the list dirty and, when asked, notifies
// listeners with code 0; remove notifies when asked and leaves the dirty flag alone. getValue of an
// absent name gives a shared null value and creates nothing. Every stored list holds its record id
// under kPropID ("id") as a kUniqueID value. Walks over a list (merge, storing, joining) stop at
// the first property whose value is null, so users remove a property rather than set it null.
// One thread at a time; no lock.

#include <map>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/store/Property.h"
#include "orvanta/store/PropertyValue.h"

namespace Orvanta {

class PropertyList : public IOwned, public Notifier {
    using ValueMap = std::map<CString, PropertyValue, Platform::TextOrder>;

public:
    static constexpr const char16_t* kPropID = u"id";

    // Walks the properties in name order. next gives the current property and steps on, and the
    // default Property past the end; prev steps back and gives the property reached, and the default
    // Property before the first. Changes to the list meanwhile are taken into account.
    class Iterator : public IOwned {
    public:
        virtual Property next();
        virtual Property prev();

    private:
        friend class PropertyList;
        explicit Iterator(PropertyList* list);
        void resync();

        OwnedPtr<PropertyList> mList;
        ValueMap::iterator mAt;
        CString mKey;  // the name at mAt, to find the place again after a change
        bool mAtEnd = false;
        unsigned long mStamp = 0;
    };

    static PropertyList* create();

    virtual const PropertyValue& getValue(const CString& name);
    virtual void merge(PropertyList* other, bool notify);
    virtual void set(const Property& property, bool notify);
    virtual void set(const CString& name, const PropertyValue& value, bool notify);
    virtual void remove(const CString& name, bool notify);
    virtual bool contains(const CString& name);
    virtual int getCount();
    virtual bool isDirty();
    virtual void clearDirty();
    virtual Iterator* createIterator();
    virtual PropertyList* clone();

private:
    PropertyList() = default;

    ValueMap mValues;
    bool mDirty = false;
    unsigned long mStamp = 0;  // bumped when a name comes or goes, for iterators
};

}  // namespace Orvanta
