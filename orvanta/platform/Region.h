#pragma once
// Region: a set of pixels made of rectangles (the HRGN), used for invalid areas, clips and the parts
// of a backing store that changed. A plain value: copies are independent.

#include <vector>

#include "orvanta/platform/CRect.h"

struct pixman_region32;

namespace Orvanta::Platform {

class Region {
public:
    Region();
    explicit Region(const CRect& rect);
    Region(const Region& other);
    Region& operator=(const Region& other);
    ~Region();

    bool isEmpty() const;
    // The smallest rectangle holding the region; empty for an empty region.
    CRect getBox() const;
    std::vector<CRect> getRects() const;
    bool contains(CPoint point) const;
    bool intersects(const CRect& rect) const;

    void clear();
    void unite(const CRect& rect);
    void unite(const Region& other);
    void subtract(const CRect& rect);
    void subtract(const Region& other);
    void intersect(const CRect& rect);
    void intersect(const Region& other);
    void offset(int dx, int dy);

    friend bool operator==(const Region& a, const Region& b);

    const pixman_region32* pixmanRegion() const { return mRegion; }

private:
    pixman_region32* mRegion;
};

}  // namespace Orvanta::Platform
