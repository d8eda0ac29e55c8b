#pragma once
// What the printing tests share: the JPEG codec registered once, photographs of a chosen size made
// in a temporary folder, assets of them, and canvases that stand for a device of a chosen resolution.

#include <memory>
#include <string>

#include "orvanta/assets/Asset.h"
#include "orvanta/platform/Canvas.h"

namespace OrvantaTest {

// Registers the JPEG codec for the whole program (once).
void registerPrintCodecs();
// A JPEG of width x height at path, in four quadrants of plain colours (red, green, blue, grey
// from the top left, clockwise), so a turn or a crop shows.
void writeQuadrantJpeg(const std::string& path, int width, int height);
Orvanta::Asset* assetOf(const std::string& path);
// A canvas that measures as a device of dpiX by dpiY pixels per inch (dpiY 0: as dpiX); what it
// draws goes nowhere.
std::unique_ptr<Orvanta::Platform::Canvas> deviceAt(int dpiX, int dpiY = 0);

}  // namespace OrvantaTest
