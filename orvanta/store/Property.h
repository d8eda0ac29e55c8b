#pragma once
// Property: a name with a PropertyValue.
//
// Contract: a plain value. The name is a String shared between copies; the value is copied (an owned
// copy of a wrapped value). The default Property has an empty name and a null value: walks over a
// PropertyList end at the first Property whose value is null.

#include "orvanta/foundation/String.h"
#include "orvanta/platform/CString.h"
#include "orvanta/store/PropertyValue.h"

namespace Orvanta {

class Property {
public:
    Property() = default;
    Property(const Property& other) = default;
    Property(const CString& name, PropertyValue value) : mName(name.c_str()), mValue(std::move(value)) {}
    Property& operator=(const Property& other) = default;

    const char16_t* getName() const { return mName; }
    const PropertyValue& getValue() const { return mValue; }
    bool isNull() const { return mValue.isNull(); }

private:
    String mName;
    PropertyValue mValue;
};

}  // namespace Orvanta
