#pragma once
// ImageFile: the file of a still picture in the catalogue. It loads the picture through its codec,
// makes thumbnails, and writes an edited picture back.
//
// Contract: the pixels come only through loadImage. A picture loaded editable stays tied to the
// file (a later editable load replaces it): when its save() is called, the file is rewritten before
// the history is folded. If the only edits were rotations and the rotate mode allows, the file is
// turned in place by the codec, without decoding (JPEG: every segment kept). Otherwise the picture
// is encoded at ImageQualityHigh into a file of its own (a JPEG keeps the source's APP1, APP13 and
// COM segments), AssetBackupPolicy::prepareForSave is asked, and only on true is the user's file
// replaced by it; on false the new version is dropped. Either way a landed save ends with a new
// 160 x 160 EXIF thumbnail made from the file as written, for codecs that have one. Every write of
// the file holds its RewriteLock from the read it builds on to the rename, and replaces the file the
// path resolves to; at no step is the user's file anything but its old version whole or the new one
// whole. Failures are never thrown: loads give null, saves say how they ended in
// getLastSaveResult, and the reason of a failed one is the thread's last error.

#include "orvanta/assets/AssetFile.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/ListenerLink.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

class ImageFile : public AssetFile {
public:
    // When an edited picture is saved.
    enum FileBasedRotateMode : int {
        FileBasedRotateNever = 0,     // always re-encode
        FileBasedRotateAlways = 1,    // rotate in the file if the codec can, even dropping edge blocks
        FileBasedRotateLossless = 2,  // rotate in the file only where the codec loses nothing
    };
    // How the last save of a picture of this file ended.
    enum SaveResult : int {
        SaveNone = 0,       // nothing saved yet
        SaveRotatedInFile,  // turned in place by the codec
        SaveReencoded,      // replaced by the picture encoded anew
        SaveRefused,        // the backup policy refused; the file is as it was
        SaveFailed,         // the new version could not be written; the file is as it was
    };

    static ImageFile* create(const CString& path, Codec* codec, const FILETIME* writeTime,
                             const FILETIME* creationTime);
    // Process-wide, FileBasedRotateLossless unless set; set it at start-up.
    static void setFileBasedRotateMode(FileBasedRotateMode mode);
    static FileBasedRotateMode getFileBasedRotateMode();

    // The picture fitted into width x height, always in those proportions of the box. With
    // allowEmbedded and fast thumbnailing on, the codec's embedded thumbnail is the source when
    // there is one; otherwise the file is decoded (reduced where the codec can). Null for a file
    // that cannot be read.
    Image* createThumbnail(int width, int height, bool allowEmbedded) override;
    // Also forgets the picture size.
    void fileChanged() override;
    // Decodes the file, reduced where the codec can within maxHeight x maxWidth (0: no limit), and
    // notes the file's full picture size. Null when the file cannot be read.
    virtual Image* loadImage(int maxHeight, int maxWidth, bool editable);
    // The file's picture size, asked of the codec once; (0, 0) for a file that cannot be read, which
    // is asked again next time.
    virtual CSize getPictureSize();

    SaveResult getLastSaveResult() const { return mLastSave; }

private:
    ImageFile(const CString& path, Codec* codec, const FILETIME* writeTime, const FILETIME* creationTime);

    // What the picture under edit calls: code 1 means "write me now".
    class ImageFileListener : public NotifierListener {
    public:
        explicit ImageFileListener(ImageFile* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        ImageFile* mOwner;
    };

    void save(Image* image);
    SaveResult saveReencoded(Image* image);
    void writeNewThumbnail();

    ImageFileListener mListener{this};
    ListenerLink<Image> mImage{&mListener};
    CSize mPictureSize{0, 0};
    SaveResult mLastSave = SaveNone;
};

}  // namespace Orvanta
