#include "orvanta/platform/BackingStore.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>

namespace Orvanta::Platform {

namespace {

cairo_surface_t* newSurface(CSize size) {
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, std::max(size.cx, 1), std::max(size.cy, 1));
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_destroy(cr);
    return surface;
}

}  // namespace

BackingStore::BackingStore(CSize size) : mSize(size), mSurface(newSurface(size)) {}

BackingStore::~BackingStore() {
    cairo_surface_destroy(mSurface);
}

void BackingStore::resize(CSize size) {
    if (size == mSize) return;
    cairo_surface_t* surface = newSurface(size);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_surface(cr, mSurface, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_rectangle(cr, 0, 0, std::min(size.cx, mSize.cx), std::min(size.cy, mSize.cy));
    cairo_fill(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(mSurface);
    mSurface = surface;
    mSize = size;
    mChanged.intersect(CRect(0, 0, size.cx, size.cy));
}

const unsigned char* BackingStore::getPixels() const {
    cairo_surface_flush(mSurface);
    return cairo_image_surface_get_data(mSurface);
}

int BackingStore::getStride() const {
    return cairo_image_surface_get_stride(mSurface);
}

DWORD BackingStore::getPixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= mSize.cx || y >= mSize.cy) return 0xFFFFFFFF;
    const unsigned char* p = getPixels() + static_cast<std::ptrdiff_t>(y) * getStride() + x * 4;
    return DWORD(p[2]) | (DWORD(p[1]) << 8) | (DWORD(p[0]) << 16);
}

void BackingStore::markChanged(const Region& region) {
    Region clipped(region);
    clipped.intersect(CRect(0, 0, mSize.cx, mSize.cy));
    mChanged.unite(clipped);
}

void BackingStore::markChanged(const CRect& rect) {
    markChanged(Region(rect));
}

Region BackingStore::takeChanged() {
    Region changed = mChanged;
    mChanged.clear();
    return changed;
}

void BackingStore::scroll(const CRect& rect, int dx, int dy) {
    const CRect bounds(0, 0, mSize.cx, mSize.cy);
    CRect area(std::max(rect.left, 0), std::max(rect.top, 0), std::min(rect.right, bounds.right),
               std::min(rect.bottom, bounds.bottom));
    // The source is what stays inside the area after moving.
    const CRect from(std::max(area.left, area.left - dx), std::max(area.top, area.top - dy),
                     std::min(area.right, area.right - dx), std::min(area.bottom, area.bottom - dy));
    if (from.isEmpty() || (dx == 0 && dy == 0)) return;
    cairo_surface_flush(mSurface);
    unsigned char* bits = cairo_image_surface_get_data(mSurface);
    const int stride = getStride();
    // Row by row, from the far side when moving down, so that no source row is overwritten before it
    // is copied; memmove takes care of the overlap within a row.
    const std::size_t bytes = static_cast<std::size_t>(from.width()) * 4;
    for (int i = 0; i < from.height(); ++i) {
        const int y = dy > 0 ? from.bottom - 1 - i : from.top + i;
        std::memmove(bits + static_cast<std::ptrdiff_t>(y + dy) * stride + (from.left + dx) * 4,
                     bits + static_cast<std::ptrdiff_t>(y) * stride + from.left * 4, bytes);
    }
    cairo_surface_mark_dirty(mSurface);
    markChanged(CRect(from.left + dx, from.top + dy, from.right + dx, from.bottom + dy));
}

}  // namespace Orvanta::Platform
