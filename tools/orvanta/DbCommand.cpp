// orvanta db: a look inside a record store file (a catalogue or a thumbnail store).

#include <dirent.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>

#include <cstdio>
#include <cstring>
#include <string>

#include "Commands.h"
#include "VideoStock.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/CatalogueEntry.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/DateTime.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/PropertyDatabase.h"
#include "orvanta/store/StoreFormat.h"

namespace OrvantaTool {

using namespace Orvanta;

namespace {

std::string utf8(const CString& text) {
    return text.toUtf8();
}

std::string idText(const UniqueID& id) {
    return utf8(id.asString());
}

const char* typeName(PropertyValue::Type type) {
    switch (type) {
        case PropertyValue::kNull:
            return "null";
        case PropertyValue::kBytes:
            return "bytes";
        case PropertyValue::kString:
            return "string";
        case PropertyValue::kInt:
            return "int";
        case PropertyValue::kDateTime:
            return "datetime";
        case PropertyValue::kUniqueID:
            return "id";
        default:
            return "unknown";
    }
}

std::string hex(const void* data, int length, int most) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    const auto* p = static_cast<const unsigned char*>(data);
    for (int i = 0; p && i < length && i < most; ++i) {
        out += digits[p[i] >> 4];
        out += digits[p[i] & 15];
    }
    if (length > most) out += "...";
    return out;
}

std::string valueText(const PropertyValue& value) {
    char text[64];
    switch (value.getType()) {
        case PropertyValue::kNull:
            return "";
        case PropertyValue::kString:
            return utf8(value.asString());
        case PropertyValue::kInt:
            return std::to_string(value.asInt());
        case PropertyValue::kUniqueID:
            return idText(value.asUniqueID());
        case PropertyValue::kDateTime: {
            const DateTime d = value.asDateTime();
            std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d", d.getYear(), d.getMonth(),
                          d.getMDay(), d.getHour(), d.getMinute(), d.getSecond(), d.getMillisecond());
            return text;
        }
        default: {
            const Bytes& bytes = value.asBytes();
            return std::to_string(bytes.getLength()) + " bytes " +
                   hex(bytes.getBytes(), bytes.getLength(), 32);
        }
    }
}

// Says why the record store at path did not open: the library's message and, where it can tell,
// the reason (a journal beside it that cannot be handled, another program holding it...).
void reportOpenFailure(const std::string& path, const Exception& e) {
    const std::string why = utf8(Database::explainOpenFailure(CString::fromUtf8(path)));
    std::fprintf(stderr, "orvanta: %s: %s%s%s\n", path.c_str(), utf8(e.getMessage()).c_str(),
                 why.empty() ? "" : ": ", why.c_str());
}

// Opens a database for reading its records, or says why not.
Database* openDatabase(const std::string& path) {
    try {
        return Database::create(CString::fromUtf8(path), 100);
    } catch (const Exception& e) {
        reportOpenFailure(path, e);
        return nullptr;
    }
}

// The ordering files beside a database: files in its folder whose name starts with the database's
// name and which carry the ordering magic.
std::vector<std::string> orderingsBeside(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    std::vector<std::string> found;
    DIR* dir = opendir(folder.c_str());
    if (!dir) return found;
    while (const dirent* entry = readdir(dir)) {
        const std::string candidate = entry->d_name;
        if (candidate == name || candidate.compare(0, name.size(), name) != 0) continue;
        const std::string full = (slash == std::string::npos ? "" : folder) + candidate;
        FILE* file = std::fopen(full.c_str(), "rb");
        if (!file) continue;
        char magic[16];
        const bool isOrdering =
            std::fread(magic, 1, 16, file) == 16 && std::memcmp(magic, StoreFormat::kOrderingMagic, 16) == 0;
        std::fclose(file);
        if (isOrdering) found.push_back(full);
    }
    closedir(dir);
    std::sort(found.begin(), found.end());
    return found;
}

int runStats(const std::string& path) {
    OwnedPtr<Database> db = openDatabase(path);
    if (!db) return 1;
    long long payload = 0, recordBlocks = 0, largest = 0;
    int heads = 0, propertyLists = 0;
    for (auto cursor = db->blocksBegin(), end = db->blocksEnd(); cursor != end; ++cursor) {
        if (cursor->getType() == Database::Block::kBlockFree) continue;
        auto* record = static_cast<Database::Record*>(*cursor);
        ++heads;
        payload += record->getDataSize();
        recordBlocks += db->getRecordBlocks(record);
        largest = std::max<long long>(largest, record->getDataSize());
        OwnedPtr<PropertyList> list =
            PropertyDatabase::decode(record->getID(), record->getDataBytes(), record->getDataSize());
        if (list) ++propertyLists;
    }
    const int blockSize = db->getBlockSize(), blocks = db->getBlockCount();
    std::printf("file\t%s\n", path.c_str());
    std::printf("file size\t%lld\n", static_cast<long long>(StoreFormat::kDatabaseHeaderSize) +
                                         static_cast<long long>(blocks) * blockSize);
    std::printf("block size\t%d\n", blockSize);
    std::printf("block count\t%d\n", blocks);
    std::printf("format version\t%d\n", db->getFormatVersion());
    std::printf("records\t%d\n", db->getRecordCount());
    std::printf("info record\t%s\n", db->hasRecord(Database::kInfoRecordID) ? "yes" : "no");
    std::printf("record blocks\t%lld\n", recordBlocks);
    std::printf("free blocks\t%d\n", db->getFreeBlockCount());
    std::printf("payload bytes\t%lld\n", payload);
    std::printf("largest record\t%lld\n", largest);
    std::printf("property lists\t%d of %d\n", propertyLists, heads);
    const auto orderings = orderingsBeside(path);
    if (orderings.empty()) std::printf("ordering\tnone\n");
    for (const auto& orderingPath : orderings) {
        try {
            OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(CString::fromUtf8(orderingPath));
            int known = 0;
            for (int i = 0; i < ordering->getCount(); ++i) known += db->hasRecord(ordering->getID(i)) ? 1 : 0;
            std::printf("ordering\t%s: %d ids (%d with a record), capacity %d\n", orderingPath.c_str(),
                        ordering->getCount(), known, ordering->getCapacity());
        } catch (const Exception& e) {
            std::printf("ordering\t%s: %s\n", orderingPath.c_str(), utf8(e.getMessage()).c_str());
        }
    }
    return 0;
}

int runDump(const std::string& path) {
    OwnedPtr<Database> db = openDatabase(path);
    if (!db) return 1;
    for (auto cursor = db->blocksBegin(), end = db->blocksEnd(); cursor != end; ++cursor) {
        if (cursor->getType() == Database::Block::kBlockFree) continue;
        auto* record = static_cast<Database::Record*>(*cursor);
        const UniqueID id = record->getID();
        std::printf("%s\t%d bytes\tblock %d%s\n", idText(id).c_str(), record->getDataSize(),
                    db->blockToOffset(record) / db->getBlockSize(), id.isNull() ? "\tinfo record" : "");
        OwnedPtr<PropertyList> list =
            PropertyDatabase::decode(id, record->getDataBytes(), record->getDataSize());
        if (!list) {
            std::printf("\t(not a property list) %s\n",
                        hex(record->getDataBytes(), record->getDataSize(), 48).c_str());
            continue;
        }
        OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
        // The whole list, null values included: a dump shows what is stored, not what a walk would use.
        for (int i = 0; i < list->getCount(); ++i) {
            const Property property = walk->next();
            if (CString(property.getName()) == PropertyList::kPropID) continue;
            std::printf("\t%s\t%s\t%s\n", utf8(property.getName()).c_str(),
                        typeName(property.getValue().getType()), valueText(property.getValue()).c_str());
        }
    }
    return 0;
}

// The files to add for one argument: the file itself, or the files directly in a folder that a codec
// knows, in name order.
std::vector<std::string> filesOf(const std::string& argument) {
    struct stat info;
    std::vector<std::string> names;
    if (stat(argument.c_str(), &info) != 0 || !S_ISDIR(info.st_mode) ||
        Platform::FileSystem::current().listDirectory(argument.c_str(), &names) != 0)
        return {argument};
    std::sort(names.begin(), names.end());
    std::vector<std::string> files;
    for (const std::string& name : names)
        if (CodecManager::getCodec(CString::fromUtf8(name))) files.push_back(argument + "/" + name);
    return files;
}

int runAdd(const std::string& path, const std::vector<std::string>& pictures) {
    const CString catalogue = CString::fromUtf8(path);
    if (!FilePath::exists(catalogue, false) && !AssetDb::createFile(catalogue)) {
        std::fprintf(stderr, "orvanta db: cannot create '%s'\n", path.c_str());
        return 1;
    }
    OwnedPtr<AssetDb> db;
    try {
        db = AssetDb::create(catalogue);
    } catch (const Exception& e) {
        reportOpenFailure(path, e);
        return 1;
    }
    orvantaIUInit();
    registerVideoCodec();
    int status = 0;
    for (const auto& argument : pictures) {
        for (const std::string& picture : filesOf(argument)) {
            char resolved[PATH_MAX];
            const std::string absolute = realpath(picture.c_str(), resolved) ? resolved : picture;
            OwnedPtr<Asset> asset = CatalogueEntry::create(CString::fromUtf8(absolute));
            if (!asset) {
                std::printf("%s\tunreadable\n", picture.c_str());
                status = 1;
            } else if (!db->addAsset(asset, false)) {
                std::printf("%s\tnot stored\n", picture.c_str());
                status = 1;
            } else {
                std::printf("%s\t%s\n", picture.c_str(), idText(asset->getID()).c_str());
            }
        }
    }
    orvantaIUDeInit();
    return status;
}

}  // namespace

int runDb(const Arguments& arguments) {
    const bool inspect = arguments.size() == 2 && (arguments[0] == "stats" || arguments[0] == "dump");
    const bool add = arguments.size() >= 3 && arguments[0] == "add";
    if (!inspect && !add) {
        std::fprintf(stderr,
                     "usage: orvanta db stats FILE\n       orvanta db dump FILE\n       orvanta db add FILE "
                     "PICTURE...\n");
        return 2;
    }
    if (add) return runAdd(arguments[1], Arguments(arguments.begin() + 2, arguments.end()));
    return arguments[0] == "stats" ? runStats(arguments[1]) : runDump(arguments[1]);
}

}  // namespace OrvantaTool
