#pragma once
// The commands of Orvanta Photos: the identifiers its buttons carry, which its shortcuts give too.

namespace OrvantaPhotos {

enum Command : int {
    // The grid.
    kImport = 100,
    kSortChoice,
    kFilterText,
    kImportDevice,
    // Both screens: the selected photos, or the one open.
    kPrint = 150,
    // The picture view.
    kBack = 200,
    kPrevious,
    kNext,
    kFirst,
    kLast,
    kZoomIn,
    kZoomOut,
    kFit,
    kRotateLeft,
    kRotateRight,
    kMirror,
    kCropFree,
    kCrop4x3,
    kCropSquare,
    kCropApply,
    kRedeye,
    kFix,
    kColorize,
    kBlackWhite,
    kSepia,
    kUndo,
    kRedo,
    kSave,
    kRevert,
    kWallpaper,
};

}  // namespace OrvantaPhotos
