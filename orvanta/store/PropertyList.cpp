#include "orvanta/store/PropertyList.h"

#include <iterator>
#include <new>

namespace Orvanta {

PropertyList* PropertyList::create() {
    return new PropertyList();
}

PropertyList::Iterator::Iterator(PropertyList* list)
    : mList(list), mAt(list->mValues.begin()), mStamp(list->mStamp) {
    mAtEnd = mAt == list->mValues.end();
    if (!mAtEnd) mKey = mAt->first;
}

void PropertyList::Iterator::resync() {
    if (mStamp == mList->mStamp) return;
    mStamp = mList->mStamp;
    if (!mAtEnd) {
        mAt = mList->mValues.lower_bound(mKey);
        mAtEnd = mAt == mList->mValues.end();
    } else {
        mAt = mList->mValues.end();
    }
}

Property PropertyList::Iterator::next() {
    resync();
    if (mAtEnd) return Property();
    Property property(mAt->first, mAt->second);
    ++mAt;
    mAtEnd = mAt == mList->mValues.end();
    if (!mAtEnd) mKey = mAt->first;
    return property;
}

Property PropertyList::Iterator::prev() {
    resync();
    if (mAt == mList->mValues.begin()) return Property();
    --mAt;
    mAtEnd = false;
    mKey = mAt->first;
    return Property(mAt->first, mAt->second);
}

const PropertyValue& PropertyList::getValue(const CString& name) {
    static const PropertyValue kNullValue;
    const auto found = mValues.find(name);
    return found == mValues.end() ? kNullValue : found->second;
}

void PropertyList::merge(PropertyList* other, bool notify) {
    OwnedPtr<Iterator> walk = other->createIterator();
    for (Property property = walk->next(); !property.isNull(); property = walk->next()) set(property, false);
    if (notify) this->notify(0);
}

void PropertyList::set(const Property& property, bool notify) {
    set(property.getName(), property.getValue(), notify);
}

void PropertyList::set(const CString& name, const PropertyValue& value, bool notify) {
    // A name after every name held (as a record's names come, and a clone's) goes at the end with
    // one comparison instead of a search.
    if (!mValues.empty() && Platform::compareText(std::prev(mValues.end())->first, name) < 0) {
        mValues.emplace_hint(mValues.end(), name, value);
        ++mStamp;
    } else if (mValues.insert_or_assign(name, value).second) {
        ++mStamp;
    }
    mDirty = true;
    if (notify) this->notify(0);
}

void PropertyList::remove(const CString& name, bool notify) {
    if (mValues.erase(name) > 0) ++mStamp;
    if (notify) this->notify(0);
}

bool PropertyList::contains(const CString& name) {
    return mValues.count(name) > 0;
}
int PropertyList::getCount() {
    return static_cast<int>(mValues.size());
}
bool PropertyList::isDirty() {
    return mDirty;
}
void PropertyList::clearDirty() {
    mDirty = false;
}
PropertyList::Iterator* PropertyList::createIterator() {
    return new Iterator(this);
}

PropertyList* PropertyList::clone() {
    OwnedPtr<PropertyList> copy = create();
    copy->merge(this, false);
    return copy.detach();
}

}  // namespace Orvanta
