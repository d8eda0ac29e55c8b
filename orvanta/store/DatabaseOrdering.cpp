#include "orvanta/store/DatabaseOrdering.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "orvanta/foundation/Exception.h"
#include "orvanta/store/RawID.h"

namespace Orvanta {

using namespace StoreFormat;

DatabaseOrdering* DatabaseOrdering::create(const char16_t* path) {
    OwnedPtr<DatabaseOrdering> ordering = new (std::nothrow) DatabaseOrdering();
    if (!ordering || !ordering->open(path)) throw Exception(u"Cannot open database index");
    return ordering.detach();
}

bool DatabaseOrdering::createFile(const char16_t* path) {
    OwnedPtr<File> file = File::create(path);
    if (!file || !file->create(false)) return false;
    // The ids behind the header are left to the file system, which supplies zeros.
    file->setSize(kOrderingInitialSize);
    file->seek(0);
    OrderingHeader header{};
    std::memcpy(header.magic, kOrderingMagic, sizeof header.magic);
    header.count = 0;
    file->write(&header, sizeof header);
    return true;
}

DatabaseOrdering::~DatabaseOrdering() {
    close();
}

bool DatabaseOrdering::open(const char16_t* path) {
    close();
    mFile = File::create(path);
    char magic[sizeof kOrderingMagic];
    bool ok = mFile && mFile->open(false) && mFile->read(magic, sizeof magic) &&
              std::memcmp(magic, kOrderingMagic, sizeof magic) == 0 &&
              mFile->getSize() >= kOrderingHeaderSize;
    if (ok) mapFile();
    // A count beyond the ids the file holds would send every walk outside the mapping.
    ok = ok && mBase && getHeader()->count >= 0 && getHeader()->count <= getCapacity();
    if (!ok) close();
    return ok;
}

void DatabaseOrdering::mapFile() {
    mBase = static_cast<unsigned char*>(mFile->map());
    mFileSize = mBase ? mFile->getSize() : 0;
}

void DatabaseOrdering::close() {
    if (mFile) mFile->close();
    mFile = nullptr;
    mBase = nullptr;
    mFileSize = 0;
}

OrderingHeader* DatabaseOrdering::getHeader() {
    return reinterpret_cast<OrderingHeader*>(mBase);
}
unsigned char* DatabaseOrdering::getEntries() {
    return mBase ? mBase + kOrderingHeaderSize : nullptr;
}

int DatabaseOrdering::getCapacity() {
    if (!mBase) return 0;
    return (mFileSize - kOrderingHeaderSize) / kOrderingEntrySize;
}

int DatabaseOrdering::getCount() {
    return mBase ? getHeader()->count : 0;
}

UniqueID DatabaseOrdering::getID(int index) {
    if (index < 0 || index >= getCount()) return UniqueID();
    return RawID::read(getEntries() + static_cast<std::size_t>(index) * kOrderingEntrySize);
}

void DatabaseOrdering::append(const UniqueID& id) {
    insert(getCount(), id);
}

void DatabaseOrdering::insert(int index, const UniqueID& id) {
    if (id.isNull() || !mBase) return;
    const int count = getCount();
    index = std::clamp(index, 0, count);
    if (getCapacity() == count && !grow()) throw Exception(u"Cannot add more records to database index");
    unsigned char* at = getEntries() + static_cast<std::size_t>(index) * kOrderingEntrySize;
    std::memmove(at + kOrderingEntrySize, at, static_cast<std::size_t>(count - index) * kOrderingEntrySize);
    RawID::write(at, id);
    // The count goes up last: an id appended by a process that then dies is either whole or absent.
    getHeader()->count = count + 1;
}

void DatabaseOrdering::removeAt(int index) {
    const int count = getCount();
    if (index < 0 || index >= count) return;
    unsigned char* at = getEntries() + static_cast<std::size_t>(index) * kOrderingEntrySize;
    std::memmove(at, at + kOrderingEntrySize,
                 static_cast<std::size_t>(count - (index + 1)) * kOrderingEntrySize);
    getHeader()->count = count - 1;
}

void DatabaseOrdering::remove(const UniqueID& id) {
    if (id.isNull()) return;
    const int index = indexOf(id);
    if (index != -1) removeAt(index);
}

void DatabaseOrdering::clear() {
    if (mBase) getHeader()->count = 0;
}

int DatabaseOrdering::indexOf(const UniqueID& id) {
    const int count = getCount();
    if (id.isNull() || count == 0) return -1;
    unsigned char wanted[kOrderingEntrySize];
    RawID::write(wanted, id);
    const unsigned char* entries = getEntries();
    for (int i = 0; i < count; ++i)
        if (std::memcmp(entries + static_cast<std::size_t>(i) * kOrderingEntrySize, wanted, sizeof wanted) ==
            0)
            return i;
    return -1;
}

int DatabaseOrdering::move(const UniqueID& id, int index, bool notify) {
    if (id.isNull()) return -1;
    const int found = indexOf(id);
    if (found != -1) {
        removeAt(found);
        // The target was given in the numbering before the removal.
        if (found < index) index -= 1;
    }
    index = std::clamp(index, 0, getCount());
    insert(index, id);
    if (notify) this->notify(0);
    return index;
}

bool DatabaseOrdering::grow() {
    if (!mBase) return false;
    const int count = getCount();
    // Doubles a full list: (count + 1) * 32 bytes hold 2 * count ids. A list too small to double
    // usefully (only a file made elsewhere can be) gets the capacity of a new file.
    const long long wanted =
        std::max(static_cast<long long>(count + 1) * 32, static_cast<long long>(kOrderingInitialSize));
    if (wanted > 0x7fffffff) return false;
    mFile->unmap();
    const bool grown = mFile->allocate(static_cast<int>(wanted));
    mapFile();
    if (!mBase) {
        // The old mapping could not be had again: the ordering is closed from here on.
        close();
        return false;
    }
    return grown;
}

}  // namespace Orvanta
