// Feeds arbitrary bytes to the record store as a database file (and as the journal beside it),
// opens it, reads everything it holds, and changes it a little.
//
// Input: one flags byte, a 2-byte little-endian length n, n bytes of database file, the rest journal.
// Flag 1 puts the database magic in front of the file bytes, flag 2 the journal magic in front of
// the journal bytes, and flag 4 writes into the journal the identity of the database file it lies
// beside (version, device, inode, block size and count), so that the mutations reach past the magic
// and identity checks to the matching of the change and its replay.

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/PropertyDatabase.h"
#include "orvanta/store/StoreFormat.h"

using namespace Orvanta;

namespace {

void writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return;
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    std::fclose(out);
}

// The bytes of a file: magic (16 bytes) when given, then size bytes of data.
std::vector<std::uint8_t> withMagic(const char* magic, const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint8_t> bytes;
    if (magic) bytes.assign(magic, magic + 16);
    bytes.insert(bytes.end(), data, data + size);
    return bytes;
}

template <typename T>
void put(std::vector<std::uint8_t>& bytes, std::size_t at, T value) {
    std::memcpy(bytes.data() + at, &value, sizeof value);
}

// Empties the folder the files of one input go to (a journal set aside included).
void emptyFolder(const std::string& folder) {
    if (DIR* dir = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.') std::remove((folder + "/" + entry->d_name).c_str());
        closedir(dir);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string folder = "/dev/shm/orvanta-db-fuzz-" + std::to_string(getpid());
    static const std::string path = folder + "/db";
    static const CString widePath = CString::fromUtf8(path);
    static const bool made = mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
    if (size < 3 || !made) return 0;
    const int flags = data[0];
    const std::size_t fileSize = std::min<std::size_t>(data[1] | (data[2] << 8), size - 3);
    emptyFolder(folder);
    std::vector<std::uint8_t> file =
        withMagic((flags & 1) ? StoreFormat::kDatabaseMagic : nullptr, data + 3, fileSize);
    writeFile(path, file);
    if (size - 3 - fileSize > 0 || (flags & 2)) {
        std::vector<std::uint8_t> journal = withMagic((flags & 2) ? StoreFormat::kJournalMagic : nullptr,
                                                      data + 3 + fileSize, size - 3 - fileSize);
        struct stat info;
        if ((flags & 4) && stat(path.c_str(), &info) == 0) {
            journal.resize(std::max<std::size_t>(journal.size(), StoreFormat::kJournalHeaderSize));
            file.resize(std::max<std::size_t>(file.size(), StoreFormat::kDatabaseHeaderSize));
            put(journal, offsetof(StoreFormat::JournalHeader, version), StoreFormat::kJournalVersion);
            put(journal, offsetof(StoreFormat::JournalHeader, device),
                static_cast<std::uint64_t>(info.st_dev));
            put(journal, offsetof(StoreFormat::JournalHeader, inode),
                static_cast<std::uint64_t>(info.st_ino));
            std::memcpy(journal.data() + offsetof(StoreFormat::JournalHeader, blockSize), file.data() + 16,
                        4);
            std::memcpy(journal.data() + offsetof(StoreFormat::JournalHeader, blockCount), file.data() + 20,
                        4);
        }
        writeFile(path + "-journal", journal);
    }

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
