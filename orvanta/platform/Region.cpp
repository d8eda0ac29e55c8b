#include "orvanta/platform/Region.h"

#include <pixman.h>

namespace Orvanta::Platform {

namespace {

pixman_box32_t boxOf(const CRect& rect) {
    return pixman_box32_t{rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace

Region::Region() : mRegion(new pixman_region32_t) {
    pixman_region32_init(mRegion);
}

Region::Region(const CRect& rect) : mRegion(new pixman_region32_t) {
    if (rect.isEmpty())
        pixman_region32_init(mRegion);
    else
        pixman_region32_init_rect(mRegion, rect.left, rect.top, rect.width(), rect.height());
}

Region::Region(const Region& other) : mRegion(new pixman_region32_t) {
    pixman_region32_init(mRegion);
    pixman_region32_copy(mRegion, other.mRegion);
}

Region& Region::operator=(const Region& other) {
    if (this != &other) pixman_region32_copy(mRegion, other.mRegion);
    return *this;
}

Region::~Region() {
    pixman_region32_fini(mRegion);
    delete mRegion;
}

bool Region::isEmpty() const {
    return !pixman_region32_not_empty(const_cast<pixman_region32_t*>(mRegion));
}

CRect Region::getBox() const {
    if (isEmpty()) return CRect();
    const pixman_box32_t* box = pixman_region32_extents(const_cast<pixman_region32_t*>(mRegion));
    return CRect(box->x1, box->y1, box->x2, box->y2);
}

std::vector<CRect> Region::getRects() const {
    int count = 0;
    const pixman_box32_t* boxes = pixman_region32_rectangles(const_cast<pixman_region32_t*>(mRegion), &count);
    std::vector<CRect> rects;
    rects.reserve(count);
    for (int i = 0; i < count; ++i) rects.emplace_back(boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2);
    return rects;
}

bool Region::contains(CPoint point) const {
    return pixman_region32_contains_point(const_cast<pixman_region32_t*>(mRegion), point.x, point.y, nullptr);
}

bool Region::intersects(const CRect& rect) const {
    if (rect.isEmpty()) return false;
    pixman_box32_t box = boxOf(rect);
    return pixman_region32_contains_rectangle(const_cast<pixman_region32_t*>(mRegion), &box) !=
           PIXMAN_REGION_OUT;
}

void Region::clear() {
    pixman_region32_clear(mRegion);
}

void Region::unite(const CRect& rect) {
    if (!rect.isEmpty())
        pixman_region32_union_rect(mRegion, mRegion, rect.left, rect.top, rect.width(), rect.height());
}

void Region::unite(const Region& other) {
    pixman_region32_union(mRegion, mRegion, const_cast<pixman_region32_t*>(other.mRegion));
}

void Region::subtract(const CRect& rect) {
    subtract(Region(rect));
}

void Region::subtract(const Region& other) {
    pixman_region32_subtract(mRegion, mRegion, const_cast<pixman_region32_t*>(other.mRegion));
}

void Region::intersect(const CRect& rect) {
    if (rect.isEmpty()) {
        clear();
        return;
    }
    pixman_region32_intersect_rect(mRegion, mRegion, rect.left, rect.top, rect.width(), rect.height());
}

void Region::intersect(const Region& other) {
    pixman_region32_intersect(mRegion, mRegion, const_cast<pixman_region32_t*>(other.mRegion));
}

void Region::offset(int dx, int dy) {
    pixman_region32_translate(mRegion, dx, dy);
}

bool operator==(const Region& a, const Region& b) {
    return pixman_region32_equal(const_cast<pixman_region32_t*>(a.mRegion),
                                 const_cast<pixman_region32_t*>(b.mRegion));
}

}  // namespace Orvanta::Platform
