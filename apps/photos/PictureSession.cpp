#include "apps/photos/PictureSession.h"

#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/LastError.h"

using namespace Orvanta;

namespace OrvantaPhotos {

std::string PictureSession::fileName() const {
    if (!mAsset || !mAsset->getAssetFile()) return std::string();
    const std::string path = mAsset->getAssetFile()->getPath().toUtf8();
    return path.substr(path.find_last_of('/') + 1);
}

bool PictureSession::open(Asset* asset, CSize screen, std::string* message) {
    close();
    mAsset = asset;
    const std::string path = asset && asset->getAssetFile() ? asset->getAssetFile()->getPath().toUtf8() : "";
    if (!asset || !asset->getImageFile()) {
        *message = fileName();
        message->insert(0, 1, '"').append("\" is a video or a file Orvanta Photos cannot show as a picture.");
        return false;
    }
    if (!FilePath::exists(CString::fromUtf8(path), false)) {
        *message = "The photo " + path + " is no longer there. It may have been moved or deleted.";
        return false;
    }
    mFile = asset->getImageFile();
    mImage = mFile->loadImage(screen.cy, screen.cx, false);
    if (!mImage || !mImage->getDib()) {
        *message = "The photo " + path + " cannot be shown: its file is damaged or of an unknown kind.";
        mImage = nullptr;
        return false;
    }
    return true;
}

bool PictureSession::makeEditable(std::string* message) {
    if (mEditable) return true;
    if (!mFile) return false;
    OwnedPtr<Image> whole = mFile->loadImage(0, 0, true);
    if (!whole || !whole->getDib()) {
        *message = "The photo " + mFile->getPath().toUtf8() + " cannot be read whole for editing.";
        return false;
    }
    mImage = whole;
    mEditable = true;
    return true;
}

void PictureSession::close() {
    mImage = nullptr;
    mFile = nullptr;
    mAsset = nullptr;
    mEditable = false;
}

bool PictureSession::apply(EditingOp* op) {
    OwnedPtr<EditingOp> hold = op;
    return mEditable && op && mImage->doOp(op);
}

bool PictureSession::save(std::string* message) {
    if (!mEditable || !mImage->isEdited()) return true;
    // Image::save folds the history whether or not the file was written. The file is asked to write
    // the picture the same way, and the history folded only once it has, so that after a failed save
    // the edits can still be undone and redone, and saved again.
    mImage->notify(Image::kSaving);
    switch (mFile->getLastSaveResult()) {
        case ImageFile::SaveRotatedInFile:
        case ImageFile::SaveReencoded:
            mImage->commit();
            return true;
        case ImageFile::SaveRefused:
            *message =
                "The photo " + mFile->getPath().toUtf8() + " was not saved: no copy of it could be kept.";
            return false;
        default:
            *message = "The photo " + mFile->getPath().toUtf8() + " could not be saved (" +
                       Platform::describeError(Platform::getLastError()) + "). The file is as it was.";
            return false;
    }
}

void PictureSession::revert() {
    if (mEditable) mImage->revert(false);
}

}  // namespace OrvantaPhotos
