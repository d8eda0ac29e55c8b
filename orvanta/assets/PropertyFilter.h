#pragma once
// PropertyFilter: passes the assets whose property equals a value.
//
// Contract: the asset's value stands on the left of PropertyValue's ==, so its type chooses the
// rule: an int property equals a numeric string, and an asset lacking the property (a null value)
// passes only a null value.

#include "orvanta/assets/Filter.h"
#include "orvanta/store/Property.h"

namespace Orvanta {

class PropertyFilter : public Filter {
public:
    static PropertyFilter* create(const Property& property);
    static PropertyFilter* create(const CString& name, const PropertyValue& value);

    using Filter::matches;
    bool matches(PropertyList* properties) override;

private:
    explicit PropertyFilter(const Property& property) : mProperty(property) {}

    Property mProperty;
};

}  // namespace Orvanta
