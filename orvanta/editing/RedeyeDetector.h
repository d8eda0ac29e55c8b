#pragma once
// RedeyeDetector: finds the red pupil near a click inside a box of the picture, decides how far it
// reaches, and takes the red out of it.
//
// Contract: detect() works on views of one box: the source pixels, the destination pixels (a copy of
// the source that receives the correction) and two 1-byte masks of the box's size, all given as
// CGrNavs; (x, y) is the click in box coordinates and must lie inside the box. It answers the
// rectangle it corrected (right and bottom exclusive), or (0, 0, 0, 0) when there is no pupil there.
// Two answers draw nothing although they are not empty: (0, 0, w, h) when the seed's region already
// reaches the box edge at a redness above 128, and (0, 0, w, w) (the width twice, as it always has
// been) when the region escapes the box while the chosen threshold is still above 128. mask1 ends up
// holding the redness map, mask2 the reconstruction from the seed.
//
// The steps: a redness map (red lifted through a curve minus the larger of green and blue); the seed
// climbs from the click to the reddest point nearby, at a cost of a quarter of the squared distance,
// within up to 10 pixels; a grey reconstruction from the seed gives each pixel the highest threshold
// at which it is still joined to the seed; the threshold kept is the one just above the sharpest
// growth of that region; pixels above it lose red in proportion to how far above they are.

#include <array>

#include "orvanta/pixels/CGrNav.h"
#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/CRect.h"

namespace Orvanta {

class RedeyeDetector {
public:
    // blueFirst: pixels are stored blue, green, red (red is byte 2); otherwise red is byte 0.
    // showMask: paint the reconstruction instead of correcting, to see what was found.
    static CRect detect(const CGrNav& source, const CGrNav& dest, int x, int y, const CGrNav& mask1,
                        const CGrNav& mask2, bool blueFirst, bool showMask);

    // The redness lift of a channel value: trunc((0.5 t^3 - 1.5 t^2 + 2 t) * 255.9) at most 255, with
    // t = i * (1/255 as a float).
    static const std::array<int, 256>& rednessCurve();

    // The steps, each usable alone.
    // mask1 = max(0, curve[red] - max(curve[green], curve[blue])) over the whole view.
    static void mapRedness(const CGrNav& source, const CGrNav& mask1, bool blueFirst);
    // The seed reached from the click by the climbing search over mask1.
    static CPoint refineSeed(const CGrNav& mask1, int x, int y);
    // Fills mask2 with the reconstruction of mask1 from the seed, whose value is v.
    static void reconstruct(const CGrNav& mask1, const CGrNav& mask2, CPoint seed, int v);

private:
    struct Regions;
};

}  // namespace Orvanta
