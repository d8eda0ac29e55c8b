#pragma once
// Asset: one item of the catalogue, a photo or a video known by its id. It ties what the catalogue
// knows (a PropertyList) to what lies on disk (an AssetFile) and keeps the two in step both ways.
//
// Contract: the id, name, folder and date live in the list, the path in the file object. A change
// of the file's path rewrites "filename", "folder" and "timestamp" (without a notification per
// property, then one list notification), and asset listeners hear code 2 and then code 1; a file
// that changed on disk gives codes 2 and 0. A change of the list (by anyone, with notification)
// gives the file object the path made of "folder" and "filename" if that differs, and asset
// listeners hear code 2: this is what tells a catalogue to write the record. An asset whose
// extension no codec knows has no file object, but is an asset all the same. Clones share
// nothing. Assets are not locked: whoever holds them guards them.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/ListenerLink.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class AssetFile;
class ImageFile;
class PropertyList;
class VideoFile;

class Asset : public IOwned, public Notifier {
public:
    static constexpr const char16_t* kPropFilename = u"filename";
    // The folder without a trailing separator, as FilePath::getFolder gives it.
    static constexpr const char16_t* kPropFolder = u"folder";
    static constexpr const char16_t* kPropTimestamp = u"timestamp";

    // An asset of a copy of list (the caller's list is not adopted), with a file object for the
    // path its folder and filename make. No file is touched and no property rewritten.
    static Asset* create(PropertyList* list);
    // A new asset of the file at path: id, filename, folder and timestamp are set from the file
    // (null times are read from the disk).
    static Asset* create(const UniqueID& id, const CString& path, const FILETIME* writeTime,
                         const FILETIME* creationTime);
    ~Asset() override;

    virtual UniqueID getID();
    virtual AssetFile* getAssetFile();
    // The file when its codec is of that type, else null.
    virtual ImageFile* getImageFile();
    virtual VideoFile* getVideoFile();
    virtual PropertyList* getProperties();
    virtual Asset* clone();
    // Puts the file on the clipboard (Platform::Clipboard::setFiles) as a copied file and, for a
    // picture that can be read, the picture as a packed DIB (rows bottom-up, no palette), which the
    // clipboard offers as a BMP file. False without a file, for a path that has no file address, or
    // without an X server to hold the clipboard.
    virtual bool copyToClipboard();
    // A new file object for path, by the codec of its extension and the current AssetFileFactory;
    // none when no codec knows the extension. Properties are not rewritten.
    virtual void setFile(const CString& path, const FILETIME* writeTime, const FILETIME* creationTime);
    // Rewrites filename, folder and timestamp from the file object, then notifies the list once.
    virtual void syncFromFile();

private:
    Asset();

    class FileListener : public NotifierListener {
    public:
        explicit FileListener(Asset* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        Asset* mOwner;
    };
    class ListListener : public NotifierListener {
    public:
        explicit ListListener(Asset* owner) : mOwner(owner) {}
        void onNotification(void* sender, const Notification& notification) override;

    private:
        Asset* mOwner;
    };

    void followFile(int code);
    void followList();

    FileListener mFileListener{this};
    ListListener mListListener{this};
    // Set up in the constructor, where the linked classes are complete.
    ListenerLink<PropertyList> mProperties;
    ListenerLink<AssetFile> mFile;
};

}  // namespace Orvanta
