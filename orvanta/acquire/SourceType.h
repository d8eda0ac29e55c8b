#pragma once
// The kinds of source photos are acquired from: bits that a request may combine.

namespace Orvanta {

enum SourceType : int {
    kSourceNone = 0,
    kSourceImagingDevice = 1,  // a camera or scanner
    kSourceRemovableDrive = 2,
    kSourceOpticalDrive = 4,
};

}  // namespace Orvanta
