#include "orvanta/assets/ThumbnailDb.h"

#include <cstring>
#include <new>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/ThumbnailFormat.h"
#include "orvanta/assets/ThumbnailRecord.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/foundation/Synchronizer.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/store/Database.h"

namespace Orvanta {

namespace {

// A block size beyond which a damaged header is not believed.
constexpr int kLargestBlockSize = 1 << 20;
// An encoding larger than this is not a thumbnail.
constexpr std::size_t kLargestEncoding = 64u << 20;

FILETIME writeTimeOf(Asset* asset) {
    AssetFile* file = asset->getAssetFile();
    return file ? file->getWriteTime() : FILETIME{0, 0};
}

}  // namespace

ThumbnailDb* ThumbnailDb::create(const char16_t* path, int width, int height, ImageCodec* codec) {
    return create(path, CSize(width, height), codec);
}

ThumbnailDb* ThumbnailDb::create(const char16_t* path, CSize size, ImageCodec* codec) {
    if (!codec) codec = static_cast<ImageCodec*>(CodecManager::getDefaultCodec(CodecTypeImage));
    bool rebuilt = false;
    OwnedPtr<Database> database = openOrRebuild(path, &rebuilt);
    ThumbnailDb* store = new (std::nothrow) ThumbnailDb(database, codec, size, path, rebuilt);
    if (!store) throw Exception(u"Cannot open database");
    return store;
}

bool ThumbnailDb::createFile(const char16_t* path, int blockSize, unsigned long reserved) {
    return Database::createFile(path, blockSize, ThumbnailFormat::kFormatVersion, reserved);
}

Database* ThumbnailDb::openOrRebuild(const char16_t* path, bool* rebuilt) {
    try {
        return Database::create(path, ThumbnailFormat::kGrowBlocks);
    } catch (const Exception&) {
        // Missing, or held by another process: not this process's to rebuild.
        OwnedPtr<File> file = File::create(path);
        if (!file || !file->open(false)) throw;
        StoreFormat::DatabaseHeader header;
        int blockSize = ThumbnailFormat::kDefaultBlockSize;
        if (file->read(&header, sizeof header) &&
            std::memcmp(header.magic, StoreFormat::kDatabaseMagic, sizeof header.magic) == 0 &&
            header.blockSize >= StoreFormat::kRecordHeadSize + ThumbnailFormat::kHeaderSize &&
            header.blockSize <= kLargestBlockSize)
            blockSize = header.blockSize;
        // Renamed while still held, so that no other process opens it in between.
        if (!File::replace(path, CString(path) + ThumbnailFormat::kDamagedSuffix)) throw;
        file->close();
        if (!createFile(path, blockSize, 0)) throw;
        *rebuilt = true;
        return Database::create(path, ThumbnailFormat::kGrowBlocks);
    }
}

ThumbnailDb::ThumbnailDb(Database* database, ImageCodec* codec, CSize size, const CString& path, bool rebuilt)
    : mDatabase(database),
      mCodec(codec),
      mSize(size),
      mPath(path),
      mBlockSize(database->getBlockSize()),
      mRebuilt(rebuilt) {}

ThumbnailDb::~ThumbnailDb() = default;

CSize ThumbnailDb::getSize() {
    return mSize;
}

CString ThumbnailDb::getPath() {
    return mPath;
}

Image* ThumbnailDb::getThumbnail(Asset* asset, bool create) {
    if (!asset || !mCodec) return nullptr;
    OwnedPtr<Asset> hold = asset;
    std::vector<unsigned char> payload;
    ThumbnailRecord record;
    if (copyGood(asset, &payload, &record)) {
        OwnedPtr<Dib> dib = record.decode(mCodec);
        if (dib) return Image::create(dib, false);
        drop(asset->getID(), payload);
    }
    if (!create || !updateThumbnail(asset, nullptr)) return nullptr;
    return getThumbnail(asset, false);
}

Image* ThumbnailDb::makeThumbnail(Image* image) {
    if (!image) return nullptr;
    return image->createDownsized(DownsizeOp::DownsizeMethodResample, mSize, false,
                                  DibRect(0.0, 0.0, 1.0, 1.0));
}

Image* ThumbnailDb::makeThumbnail(Asset* asset) {
    AssetFile* file = asset ? asset->getAssetFile() : nullptr;
    return file ? file->createThumbnail(mSize.cx, mSize.cy, true) : nullptr;
}

bool ThumbnailDb::putThumbnail(const UniqueID& id, Image* image, FILETIME time, bool downsize) {
    if (!image || !image->getDib() || !mCodec) return false;
    OwnedPtr<Dib> dib = image->getDib();
    const CSize size = dib->getSize();
    if (downsize && (size.cx > mSize.cx || size.cy > mSize.cy)) {
        OwnedPtr<DownsizeOp> fit = DownsizeOp::create(DownsizeOp::DownsizeMethodResample, mSize, true, false,
                                                      DibRect(0.0, 0.0, 1.0, 1.0));
        dib = fit ? fit->doOp(dib, nullptr) : nullptr;
        if (!dib) return false;
    }
    std::vector<unsigned char> payload;
    int recordSize = 0;
    if (!encode(dib, time, &payload, &recordSize)) return false;
    Synchronizer lock(this);
    Database::Record* record = mDatabase->newRecord(id, recordSize);
    if (!record) return false;
    // Only the fixed fields and the encoding are written: the rest of the capacity keeps what the
    // blocks held, as a writer that encodes straight into the record leaves it.
    std::memcpy(record->getDataBytes(), payload.data(), payload.size());
    mDatabase->commit();
    return true;
}

bool ThumbnailDb::updateThumbnail(Asset* asset, Image* image) {
    if (!asset) return false;
    OwnedPtr<Asset> hold = asset;
    if (!image) return makeFromFile(asset);
    return putThumbnail(asset->getID(), image, writeTimeOf(asset), true);
}

bool ThumbnailDb::invalidate(Asset* asset) {
    if (!asset) return false;
    OwnedPtr<Asset> hold = asset;
    Synchronizer lock(this);
    Database::Record* record = mDatabase->getRecord(asset->getID());
    if (!record || record->getDataSize() < ThumbnailFormat::kHeaderSize) return false;
    const FILETIME invalid{0, 0};
    std::memcpy(record->getDataBytes() + ThumbnailFormat::kWriteTimeOffset, &invalid, sizeof invalid);
    return true;
}

bool ThumbnailDb::isValid(Asset* asset) {
    if (!asset) return false;
    OwnedPtr<Asset> hold = asset;
    Synchronizer lock(this);
    Database::Record* record = mDatabase->getRecord(asset->getID());
    ThumbnailRecord parsed;
    return record && ThumbnailRecord::parse(record->getDataBytes(), record->getDataSize(), &parsed) &&
           !FileTime(parsed.writeTime).isNull();
}

bool ThumbnailDb::isGood(Asset* asset) {
    if (!asset) return false;
    OwnedPtr<Asset> hold = asset;
    const FILETIME written = writeTimeOf(asset);
    Synchronizer lock(this);
    Database::Record* record = mDatabase->getRecord(asset->getID());
    ThumbnailRecord parsed;
    return record && ThumbnailRecord::parse(record->getDataBytes(), record->getDataSize(), &parsed) &&
           (!asset->getAssetFile() || written <= parsed.writeTime);
}

CSize ThumbnailDb::getThumbnailSize(Asset* asset, bool create) {
    if (!asset) return CSize(0, 0);
    OwnedPtr<Asset> hold = asset;
    std::vector<unsigned char> payload;
    ThumbnailRecord record;
    if (copyGood(asset, &payload, &record)) return CSize(record.width, record.height);
    if (create && updateThumbnail(asset, nullptr)) return getThumbnailSize(asset, false);
    return CSize(0, 0);
}

int ThumbnailDb::getDroppedCount() {
    Synchronizer lock(this);
    return mDropped;
}

bool ThumbnailDb::copyGood(Asset* asset, std::vector<unsigned char>* payload, ThumbnailRecord* record) {
    // The file is examined before the lock is taken: it may be on a slow disk.
    const FILETIME written = writeTimeOf(asset);
    Synchronizer lock(this);
    Database::Record* stored = mDatabase->getRecord(asset->getID());
    if (!stored) return false;
    ThumbnailRecord parsed;
    if (!ThumbnailRecord::parse(stored->getDataBytes(), stored->getDataSize(), &parsed)) {
        mDatabase->deleteRecord(stored);
        ++mDropped;
        return false;
    }
    if (asset->getAssetFile() && written > parsed.writeTime) return false;
    payload->assign(stored->getDataBytes(), stored->getDataBytes() + stored->getDataSize());
    return ThumbnailRecord::parse(payload->data(), static_cast<int>(payload->size()), record);
}

void ThumbnailDb::drop(const UniqueID& id, const std::vector<unsigned char>& payload) {
    Synchronizer lock(this);
    Database::Record* stored = mDatabase->getRecord(id);
    // Another thread may have stored a new one meanwhile; that one stays.
    if (!stored || stored->getDataSize() != static_cast<int>(payload.size()) ||
        std::memcmp(stored->getDataBytes(), payload.data(), payload.size()) != 0)
        return;
    mDatabase->deleteRecord(stored);
    ++mDropped;
}

int ThumbnailDb::capacity(int blocks) const {
    const long long first = mBlockSize - StoreFormat::kRecordHeadSize;
    const long long total = first + static_cast<long long>(mBlockSize) * (blocks - 1);
    return total > INT32_MAX ? INT32_MAX : static_cast<int>(total);
}

bool ThumbnailDb::encode(Dib* dib, FILETIME time, std::vector<unsigned char>* payload, int* recordSize) {
    // The encoding's length, from a buffer with room to spare.
    std::vector<unsigned char> buffer(static_cast<std::size_t>(dib->getStride()) * dib->getSize().cy + 4096);
    int length = 0;
    while ((length = mCodec->writeToMemory(dib, buffer.data(), static_cast<int>(buffer.size()),
                                           ImageQualityNormal)) <= 0) {
        if (buffer.size() >= kLargestEncoding) return false;
        buffer.resize(buffer.size() * 2);
    }
    // Fewer blocks than the length needs cannot hold it; from there the encoder judges whether the
    // capacity fits it (it may want room beyond its last byte), one block more at a time.
    int blocks = 1;
    while (capacity(blocks) - ThumbnailFormat::kHeaderSize < length) ++blocks;
    for (;; ++blocks) {
        const int room = capacity(blocks) - ThumbnailFormat::kHeaderSize;
        if (static_cast<std::size_t>(room) > buffer.size()) buffer.resize(static_cast<std::size_t>(room));
        length = mCodec->writeToMemory(dib, buffer.data(), room, ImageQualityNormal);
        if (length > 0) break;
        if (room == INT32_MAX - ThumbnailFormat::kHeaderSize) return false;
    }
    payload->resize(ThumbnailFormat::kHeaderSize + static_cast<std::size_t>(length));
    ThumbnailRecord::writeHeader(payload->data(), time, dib->getSize().cx, dib->getSize().cy);
    std::memcpy(payload->data() + ThumbnailFormat::kHeaderSize, buffer.data(),
                static_cast<std::size_t>(length));
    *recordSize = capacity(blocks);
    return true;
}

bool ThumbnailDb::makeFromFile(Asset* asset) {
    const UniqueID id = asset->getID();
    {
        std::unique_lock<std::mutex> making(mMakingLock);
        if (mMaking.count(id)) {
            mMakingDone.wait(making, [&] { return mMaking.count(id) == 0; });
            making.unlock();
            return isGood(asset);
        }
        mMaking.insert(id);
    }
    struct Done {
        ThumbnailDb* store;
        const UniqueID& id;
        ~Done() {
            {
                std::lock_guard<std::mutex> making(store->mMakingLock);
                store->mMaking.erase(id);
            }
            store->mMakingDone.notify_all();
        }
    } done{this, id};
    // A thread that made it may have finished between this one's look into the store and its claim.
    if (isGood(asset)) return true;
    // The time is taken before the file is read: a file changed while it is read is then newer than
    // its thumbnail, and made again next time.
    const FILETIME written = writeTimeOf(asset);
    OwnedPtr<Image> made = makeThumbnail(asset);
    return made && putThumbnail(id, made, written, false);
}

}  // namespace Orvanta
