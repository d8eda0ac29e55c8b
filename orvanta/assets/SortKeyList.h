#pragma once
// SortKeyList: the keys a sorted view orders by, most significant first, each a property name and a
// direction.

#include <vector>

#include "orvanta/platform/CString.h"

namespace Orvanta {

class SortKeyList {
public:
    struct SortKey {
        CString name;
        bool ascending;
    };

    SortKeyList() = default;
    SortKeyList(const CString& name, bool ascending) { add(name, ascending); }

    void add(const CString& name, bool ascending) { mKeys.push_back(SortKey{name, ascending}); }
    int getCount() const { return static_cast<int>(mKeys.size()); }
    const SortKey& operator[](int index) const { return mKeys[static_cast<std::size_t>(index)]; }
    std::vector<SortKey>::const_iterator begin() const { return mKeys.begin(); }
    std::vector<SortKey>::const_iterator end() const { return mKeys.end(); }

private:
    std::vector<SortKey> mKeys;
};

}  // namespace Orvanta
