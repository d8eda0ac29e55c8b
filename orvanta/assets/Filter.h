#pragma once
// Filter: decides which assets a sorted view shows.
//
// Contract: a filter judges an asset by its properties alone, so that a view can filter the records
// of a catalogue without building an asset for each: matches(PropertyList*) is what a filter
// implements, and matches(Asset*) asks it about the asset's list (false for null). A filter is
// called with the lock of the view that holds it, on whichever thread changes the view.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

class Asset;
class PropertyList;

class Filter : public IOwned {
public:
    bool matches(Asset* asset);
    virtual bool matches(PropertyList* properties) = 0;
};

}  // namespace Orvanta
