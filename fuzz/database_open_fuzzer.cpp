// Feeds arbitrary bytes to the record store as a database file (and as the journal beside it),
// opens it, reads everything it holds, and changes it a little.
//
// Input: one flags byte, a 2-byte little-endian length n, n bytes of database file, the rest journal.
// Flag 1 puts the database magic in front of the file bytes, flag 2 the journal magic in front of
// the journal bytes, so that the mutations reach past the magic checks.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/PropertyDatabase.h"
#include "orvanta/store/StoreFormat.h"

using namespace Orvanta;

namespace {

void writeFile(const std::string& path, const void* magic, const std::uint8_t* data, std::size_t size) {
    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return;
    if (magic) std::fwrite(magic, 1, 16, out);
    std::fwrite(data, 1, size, out);
    std::fclose(out);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/dev/shm/orvanta-db-fuzz-" + std::to_string(getpid());
    static const CString widePath = CString::fromUtf8(path);
    if (size < 3) return 0;
    const int flags = data[0];
    const std::size_t fileSize = std::min<std::size_t>(data[1] | (data[2] << 8), size - 3);
    writeFile(path, (flags & 1) ? StoreFormat::kDatabaseMagic : nullptr, data + 3, fileSize);
    std::remove((path + "-journal").c_str());
    if (size - 3 - fileSize > 0 || (flags & 2))
        writeFile(path + "-journal", (flags & 2) ? StoreFormat::kJournalMagic : nullptr, data + 3 + fileSize,
                  size - 3 - fileSize);

    OwnedPtr<Database> db;
    try {
        db = Database::create(widePath, 1);
    } catch (const Exception&) {
        return 0;
    }
    long long seen = 0;
    for (auto cursor = db->blocksBegin(), end = db->blocksEnd(); cursor != end; ++cursor) {
        if (cursor->getType() == Database::Block::kBlockFree) continue;
        auto* record = static_cast<Database::Record*>(*cursor);
        OwnedPtr<PropertyList> list =
            PropertyDatabase::decode(record->getID(), record->getDataBytes(), record->getDataSize());
        seen += record->getDataSize() + (list ? list->getCount() : 0);
    }
    OwnedPtr<Database::Iterator> walk = db->createIterator();
    while (Database::Record* record = walk->next()) seen += record->getDataBytes()[-1];
    for (int i = 0; i < db->getRecordCount(); ++i)
        if (Database::Record* record = db->getRecord(i)) seen += record->getDataSize();
    // Allocation on what was read, where the blocks are small enough to keep the file small. A run
    // can be refused (growth is not always enough), never written out of place.
    if (db->getBlockSize() <= 4096 && db->getBlockCount() <= 4096) {
        Database::Record* first = db->getRecord(0);
        const UniqueID some = first ? first->getID() : UniqueID();
        const unsigned char bytes[300] = {1, 2, 3};
        if (db->addRecord(some, bytes, static_cast<int>(seen & 255)) && !db->hasRecord(some))
            __builtin_trap();
        db->removeRecord(some);
        db->addRecord(UniqueID(), bytes, 300);
        if (seen & 1) db->clear();
    }
    return 0;
}
