#pragma once
// AssetFile: the side of a catalogue item that lies on disk: its path, its codec, its file times
// and size, and the rule by which a picture is dated. ImageFile and VideoFile are its two forms.
//
// Contract: times and size are read lazily, all three at once, by stat and statx on the path: the
// file is never opened for that, so cataloguing never locks or changes a user's photo; a file that
// cannot be examined leaves them as they were (null, 0). The creation time is the file system's
// birth time, or, where it records none, the time of the last change of the file's status, which
// is also when a copy was made. Notifications: code 1 after fileChanged, code 2 after a change of
// path. The back pointer to the asset is not owned; an asset sets it and clears it.

#include "orvanta/foundation/DateTime.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class Asset;
class Codec;
class Image;

class AssetFile : public IOwned, public Notifier {
public:
    ~AssetFile() override = default;

    virtual CString getPath();
    // Stores a path that differs under lstrcmpW and then notifies code 2; an equal one changes nothing.
    virtual void setPath(const char16_t* path);
    virtual CString getFilename();
    // The folder without a trailing separator.
    virtual CString getFolder();
    virtual CString getExtension();
    virtual CString getFileTitle();
    virtual bool exists();
    // Renames the file within its folder. A name equal to the file's name, with or without its
    // extension, is true at once; the old extension stays unless name brings its own; a name in use
    // gets a number ("photo-2.jpg"). False when the file cannot be moved, and nothing changes.
    virtual bool rename(const char16_t* name);
    // Whether the file's owner may not write it, the nearest Linux has to a read-only attribute;
    // false when the file cannot be examined.
    virtual bool isReadOnly();
    virtual Codec* getCodec();
    virtual FILETIME getWriteTime();
    virtual void setWriteTime(FILETIME time);
    virtual FILETIME getCreationTime();
    virtual void setCreationTime(FILETIME time);
    virtual long long getFileSize();
    // Sets the file's times on disk (a null one is left alone); the cached times are not touched.
    // Linux keeps creation times itself, so only the write time reaches the disk. False when both
    // are null or the file cannot be opened for writing.
    virtual bool setFileTimes(const FILETIME* creation, const FILETIME* write);
    // A picture of the file fitted into width x height, or null.
    virtual Image* createThumbnail(int width, int height, bool allowEmbedded) = 0;
    // The date the item is shown under, in local time: the earlier of creation and write time, but
    // a time before 1980-01-02 counts as unset and the other one is taken. Copying a camera file
    // gives it a new creation time and keeps its write time, and a camera clock that was never set
    // writes dates of 1970 or 1980: either way the date of the photo wins.
    virtual DateTime getTimestamp();
    // Forgets the cached times (the file changed on disk), then notifies code 1.
    virtual void fileChanged();
    virtual void setAsset(Asset* asset);
    Asset* getAsset() const { return mAsset; }

protected:
    // Null times are allowed: they are read from the disk when first asked for.
    AssetFile(const CString& path, Codec* codec, const FILETIME* writeTime, const FILETIME* creationTime);

private:
    void readFromDisk();

    CString mPath;
    FILETIME mWriteTime{0, 0};
    FILETIME mCreationTime{0, 0};
    Codec* mCodec;
    Asset* mAsset = nullptr;
    long long mFileSize = 0;
};

}  // namespace Orvanta
