#pragma once
// The host's own file of a print template, one line per statement (the library keeps no template
// files; this is the orvanta command's way to name one):
//   paper WIDTH HEIGHT                 the paper, in thousandths of an inch (first, once)
//   image NAME LEFT TOP RIGHT BOTTOM   a photo slot, in thousandths of an inch from the paper's corner
//   text NAME LEFT TOP RIGHT BOTTOM TEXT...   a text slot and the text it prints
// Blank lines and lines starting with # are skipped.

#include <string>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/printing/TemplatePrintJob.h"

namespace OrvantaTool {

// A job of as many pages as it takes to place the photos in the image slots in name order, each
// page with the template's texts; null with a reason in `error` for a file that cannot be read.
Orvanta::TemplatePrintJob* readTemplateJob(const std::string& path,
                                           const std::vector<Orvanta::Asset*>& photos, std::string& error);

}  // namespace OrvantaTool
