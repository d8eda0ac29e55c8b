#pragma once
// drawShadowTiles: the shadow drawn around a picture from a 3 x 3 sheet of tiles (a third of the
// sheet's width and height each): the right strip from the top-right tile and then the middle-right
// ones, the bottom strip from the bottom-left tile and then the bottom-middle ones, and the
// bottom-right tile in the corner, all copied at their own size outside the rectangle. A sheet of
// less than 3 pixels either way draws nothing.

#include "orvanta/platform/CRect.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

class Dib;

void drawShadowTiles(Platform::Canvas* dc, Dib* sheet, const CRect& picture);

}  // namespace Orvanta
