#pragma once
// What the printing tests share: the JPEG codec registered once, photographs of a chosen size made
// in a temporary folder, assets of them, and canvases that stand for a device of a chosen resolution.

#include <memory>
#include <string>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/platform/Canvas.h"

namespace OrvantaTest {

// Registers the JPEG codec for the whole program (once).
void registerPrintCodecs();
// A JPEG of width x height at path, in four quadrants of plain colours (red, green, blue, grey
// from the top left, clockwise), so a turn or a crop shows.
void writeQuadrantJpeg(const std::string& path, int width, int height);
Orvanta::Asset* assetOf(const std::string& path);
// A list in memory of the assets of the files at paths, in that order.
Orvanta::MemAssetList* listOf(const std::vector<std::string>& paths);
// A canvas that measures as a device of dpiX by dpiY pixels per inch (dpiY 0: as dpiX); what it
// draws goes nowhere.
std::unique_ptr<Orvanta::Platform::Canvas> deviceAt(int dpiX, int dpiY = 0);

}  // namespace OrvantaTest

namespace OrvantaTest {

// The JPEG blocks of a PDF file as pdfimages -j extracts them, in page order; empty when
// poppler-utils are missing.
std::vector<std::string> pdfJpegs(const std::string& pdf, const std::string& folder);
// The output of a shell command line.
std::string commandOutput(const std::string& command);
bool haveCommand(const std::string& name);

}  // namespace OrvantaTest

namespace OrvantaTest {

struct PdfImage {
    int page, width, height;
    std::string encoding;  // "jpeg" for a block embedded as it is, "image" for pixels
};
// What pdfimages -list tells of a PDF's pictures.
std::vector<PdfImage> pdfImages(const std::string& pdf);

}  // namespace OrvantaTest
