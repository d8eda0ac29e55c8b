#pragma once
// CSize: a width and a height in pixels, with the Windows field names.

namespace Orvanta {

struct CSize {
    int cx = 0;
    int cy = 0;

    constexpr CSize() = default;
    constexpr CSize(int width, int height) : cx(width), cy(height) {}

    friend constexpr bool operator==(const CSize&, const CSize&) = default;
};

}  // namespace Orvanta
