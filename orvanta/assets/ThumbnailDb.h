#pragma once
// ThumbnailDb: the thumbnail of each asset, encoded by an image codec, in a record-store file of its
// own keyed by the asset's id (docs/formats/thumbnails.md), so that a catalogue can be shown without
// reading the photos.
//
// Contract: a cache with a validity test: a stored thumbnail is good while the asset's file was
// last written no later than the time stored with it; a stored time of zero marks it invalid. There
// is no eviction: a thumbnail is replaced, never aged out, and records of assets that left the
// catalogue stay. Without a file (an extension no codec knows) any stored thumbnail is shown; a file
// that has gone reads as written at time zero, so its stored thumbnail is shown as well. A thumbnail
// takes the fewest blocks its encoding fits in, the encoder judging the fit.
//
// Nothing stored is trusted blindly. A stored thumbnail that does not parse, does not decode, or
// decodes to another size than the one stored with it is dropped (and made again when asked to
// create). A file that does not open as a record store while no other process holds it is set
// aside under its name + "-damaged" and the store is made anew, with the old block size when its
// header still gives a sane one; wasRebuilt() then answers true. A store held by another process,
// or a missing file, throws Exception "Cannot open database". A process killed at any point leaves
// every thumbnail it finished whole, and a replacement either done or undone (the record store's
// journal).
//
// Threads: every operation takes the store's mutex (Synchronized) for its accesses to the file,
// which are short: thumbnails are made from the photo, encoded and decoded outside it, so workers
// on several cores fill the store while the user interface reads it. One asset is made by one
// thread at a time: a request to make a thumbnail that another thread is making waits for that one
// and takes its result. So a caller that may have a thumbnail made must not hold the store's mutex
// itself. An asset is not locked: each thread works on Asset objects of its own.

#include <condition_variable>
#include <mutex>
#include <set>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Synchronized.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CSize.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class Asset;
class Database;
class Dib;
class Image;
class ImageCodec;
struct ThumbnailRecord;

class ThumbnailDb : public IOwned, public Synchronized {
public:
    // codec null: the default image codec. Throws Exception "Cannot open database" (see above).
    static ThumbnailDb* create(const char16_t* path, int width, int height, ImageCodec* codec);
    static ThumbnailDb* create(const char16_t* path, CSize size, ImageCodec* codec);
    // A new, empty store file; false if the path exists. reserved is accepted and ignored.
    static bool createFile(const char16_t* path, int blockSize, unsigned long reserved);
    ~ThumbnailDb() override;

    virtual CSize getSize();
    // The stored thumbnail when good; otherwise, with create, one made and stored now; else null.
    virtual Image* getThumbnail(Asset* asset, bool create);
    // The picture fitted into the target size; null for a null image.
    virtual Image* makeThumbnail(Image* image);
    // A thumbnail from the asset's file (its embedded one where the codec allows); null when the
    // asset has no file or it cannot be read.
    virtual Image* makeThumbnail(Asset* asset);
    // Stores image under id with the file time, reduced to the target size first when downsize is
    // set and it is larger. False for a null image, or when the store cannot grow.
    virtual bool putThumbnail(const UniqueID& id, Image* image, FILETIME time, bool downsize);
    // Stores image (null: one made from the file) with the file's write time.
    virtual bool updateThumbnail(Asset* asset, Image* image);
    // Zeroes the stored time; false when there is no record.
    virtual bool invalidate(Asset* asset);
    // A record whose time is not zero.
    virtual bool isValid(Asset* asset);
    // The stored size when good (made first with create), else (0, 0).
    virtual CSize getThumbnailSize(Asset* asset, bool create);
    virtual CString getPath();

    // Whether the file was set aside as damaged and made anew when the store opened.
    bool wasRebuilt() const { return mRebuilt; }
    // How many stored thumbnails were dropped as damaged since the store opened.
    int getDroppedCount();
    // Whether a good thumbnail of the asset is stored, by the file's write time.
    bool isGood(Asset* asset);

private:
    ThumbnailDb(Database* database, ImageCodec* codec, CSize size, const CString& path, bool rebuilt);
    ThumbnailDb(const ThumbnailDb&) = delete;
    ThumbnailDb& operator=(const ThumbnailDb&) = delete;
    static Database* openOrRebuild(const char16_t* path, bool* rebuilt);

    // The stored payload of id when the asset's file is no newer than it, copied out; false when
    // there is none or it is not good (a damaged one is dropped on the way).
    bool copyGood(Asset* asset, std::vector<unsigned char>* payload, ThumbnailRecord* record);
    // Drops the record of id if it still holds payload.
    void drop(const UniqueID& id, const std::vector<unsigned char>& payload);
    // The payload's fixed fields and dib encoded, and the record size: the capacity of the fewest
    // blocks the encoding fits in. False when the codec cannot encode it.
    bool encode(Dib* dib, FILETIME time, std::vector<unsigned char>* payload, int* recordSize);
    // The payload capacity of a run of blocks, as the record store counts it.
    int capacity(int blocks) const;
    // Makes and stores the thumbnail of asset from its file, or waits for the thread making it.
    bool makeFromFile(Asset* asset);

    OwnedPtr<Database> mDatabase;
    ImageCodec* mCodec;
    CSize mSize;
    CString mPath;
    int mBlockSize;
    bool mRebuilt;
    int mDropped = 0;

    // The ids whose thumbnails threads are making now.
    std::mutex mMakingLock;
    std::condition_variable mMakingDone;
    std::set<UniqueID> mMaking;
};

}  // namespace Orvanta
