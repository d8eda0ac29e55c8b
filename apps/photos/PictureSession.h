#pragma once
// PictureSession: the photo open in the picture view: its asset and file, the picture shown, and its
// history of edits.
//
// Contract: open answers false with a message for the user when the file has gone, is a video, or
// cannot be decoded; the caller keeps running. A picture fitted to the screen comes first (the
// codec decodes reduced where it can), so the photo shows at once; makeEditable then loads it whole,
// tied to its file, before the first edit. save writes through the file (rotated in place when only
// rotations were done, re-encoded otherwise) and answers false with a message when the write failed,
// the file and the history of edits then being as they were. Nothing here ever deletes or truncates the
// user's photo.

#include <string>

#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/editing/EditingOp.h"

namespace OrvantaPhotos {

class PictureSession {
public:
    bool open(Orvanta::Asset* asset, Orvanta::CSize screen, std::string* message);
    bool makeEditable(std::string* message);
    void close();

    Orvanta::Asset* asset() const { return mAsset; }
    Orvanta::Image* image() const { return mImage; }
    bool isEditable() const { return mEditable; }
    std::string fileName() const;

    // False when the operation found nothing to do.
    bool apply(Orvanta::EditingOp* op);
    bool save(std::string* message);
    void revert();

private:
    Orvanta::OwnedPtr<Orvanta::Asset> mAsset;
    Orvanta::OwnedPtr<Orvanta::ImageFile> mFile;
    Orvanta::OwnedPtr<Orvanta::Image> mImage;
    bool mEditable = false;
};

}  // namespace OrvantaPhotos
