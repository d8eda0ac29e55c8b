#include "orvanta/assets/PropertyFilter.h"

#include <new>

#include "orvanta/store/PropertyList.h"

namespace Orvanta {

PropertyFilter* PropertyFilter::create(const Property& property) {
    return new (std::nothrow) PropertyFilter(property);
}

PropertyFilter* PropertyFilter::create(const CString& name, const PropertyValue& value) {
    return create(Property(name, value));
}

bool PropertyFilter::matches(PropertyList* properties) {
    return properties && properties->getValue(mProperty.getName()) == mProperty.getValue();
}

}  // namespace Orvanta
