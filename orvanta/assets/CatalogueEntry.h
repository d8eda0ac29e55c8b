#pragma once
// CatalogueEntry: what the catalogue records of a file when it is added, and whether the file is
// still the one recorded.
//
// Contract: create gives an asset with a new id whose list holds what Asset::create reads of the
// file (file name, folder, date), the file's size and write time as stat gives them, and for a
// picture its width and height from the picture's header (CatalogueFormat's property names); a
// video is not opened. The codecs must be registered first. isUnchanged compares the size and write
// time recorded with the file now at the asset's path, without opening it.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class Asset;

class CatalogueEntry {
public:
    // Null for a file that is not there, that no codec knows, or a picture whose header cannot be
    // read. The asset is at owner count 0.
    static Asset* create(const CString& path);
    // False too when the file is gone or the asset records neither size nor time.
    static bool isUnchanged(Asset* asset);
};

}  // namespace Orvanta
