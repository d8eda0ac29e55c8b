#pragma once
// AssetIterator: a walk over the assets of a list (AssetList::createIterator) or of a selection
// (AssetSelection::createIterator), which starts over when what it walks changes.
//
// Contract: the iterator keeps a position and a step counter. first() goes to the first asset and
// answers whether there is one; next() and prev() move by one and answer false at an end, where
// they stay. current() is the asset at the position (null when there is none); the pointer is not an
// owning one, so take a reference before the next call on the list. getCount() is the number of
// steps taken since first(): −1 before the first call to first() and after every change of what the
// iterator walks (reset), which tells a loop to call first() again rather than next(), as step()
// does. Changes of one asset (list code 3) do not reset a list's iterator. Iterators take the lock
// of their list, so a walk may run on one thread while another changes the list.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

class Asset;

class AssetIterator : public IOwned {
public:
    virtual bool next() = 0;
    virtual bool prev() = 0;
    virtual bool first() = 0;
    virtual Asset* current() = 0;
    virtual int getCount() = 0;
    virtual void onAdded(Asset* asset) { reset(); }
    virtual void onRemoved(Asset* asset) { reset(); }
    // Sets the counter back to −1: the walk starts over at its next step.
    virtual void reset() = 0;

    // One step of a walk that starts over after a change: first() while the counter is negative,
    // else next(). `while (it->step()) use(it->current());`
    bool step() { return getCount() < 0 ? first() : next(); }
};

}  // namespace Orvanta
