#pragma once
// BackingStore: the pixels of one top-level window, kept by the library, and the part of them
// changed since they were last shown.
//
// Contract: a Cairo image surface of 32-bit pixels (blue, green, red, unused: the DIB order) of the
// window's client size. resize keeps what still fits, white elsewhere. scroll moves the pixels of a
// rectangle in place, as ScrollWindowEx does, and marks the moved area changed; what it
// uncovers is left for the caller to repaint. takeChanged hands the changed region over and
// forgets it.

#include "orvanta/platform/Region.h"
#include "orvanta/platform/WinTypes.h"

typedef struct _cairo_surface cairo_surface_t;

namespace Orvanta::Platform {

class BackingStore {
public:
    explicit BackingStore(CSize size);
    ~BackingStore();
    BackingStore(const BackingStore&) = delete;
    BackingStore& operator=(const BackingStore&) = delete;

    CSize getSize() const { return mSize; }
    void resize(CSize size);
    cairo_surface_t* getSurface() const { return mSurface; }
    const unsigned char* getPixels() const;
    int getStride() const;
    // One pixel as a COLORREF.
    DWORD getPixel(int x, int y) const;

    void markChanged(const Region& region);
    void markChanged(const CRect& rect);
    bool hasChanges() const { return !mChanged.isEmpty(); }
    Region takeChanged();

    // Moves the pixels of `rect` by (dx, dy), keeping within `rect`.
    void scroll(const CRect& rect, int dx, int dy);

private:
    CSize mSize;
    cairo_surface_t* mSurface;
    Region mChanged;
};

}  // namespace Orvanta::Platform
