#pragma once
// stretchDIBits: draws a rectangle of a pixel block into a rectangle of a DIB section, scaled with a
// good-quality filter (an area average when shrinking, bilinear when enlarging). The pixels are read
// straight from their rows: nothing copies the source first.
//
// Contract: as the platform call it stands for, the source rectangle's y is counted from the bottom
// edge of the picture, whatever the order of its rows in memory. Sources and destinations of 3 and
// 4 bytes per pixel are drawn (the fourth byte of a 4-byte destination pixel means nothing after);
// anything else, an empty rectangle, or a rectangle outside either picture draws nothing and
// answers 0. Otherwise the answer is the number of source rows used.

#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/WinTypes.h"

union pixman_image;
struct pixman_region32;

namespace Orvanta::Platform {

int stretchDIBits(Bitmap* dest, int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                  int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info);

// The same onto any pixman image (a canvas's surface), through `clip` (in the target's pixels; null:
// no clip). The destination rectangle may lie partly or wholly outside the target. With `filter`
// the scaling is the good-quality one above; without, each destination pixel takes the nearest
// source pixel.
int stretchRowsOnto(pixman_image* target, const pixman_region32* clip, int xDest, int yDest, int destWidth,
                    int destHeight, int xSrc, int ySrc, int srcWidth, int srcHeight, const void* bits,
                    const BITMAPINFO& info, bool filter);

// Whether rows of this header can be drawn: uncompressed, 3 or 4 bytes per pixel.
bool isDrawableRowFormat(const BITMAPINFOHEADER& header);

}  // namespace Orvanta::Platform
