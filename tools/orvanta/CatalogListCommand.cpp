// orvanta catalog list: the assets of a catalogue, one a line or as JSON, in the order of a sorted
// view and through a filter on the path.

#include <cstdio>
#include <string>

#include "CatalogCommand.h"
#include "VideoStock.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/assets/Filter.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/FilePath.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

CString pathOf(PropertyList* properties) {
    return FilePath::makePath(properties->getValue(Asset::kPropFolder).asString(),
                              properties->getValue(Asset::kPropFilename).asString(), false);
}

// Passes the assets whose path holds a text, whatever the case.
class PathFilter : public Filter {
public:
    explicit PathFilter(const CString& text) : mText(text.lowered()) {}
    using Filter::matches;
    bool matches(PropertyList* properties) override {
        return pathOf(properties).lowered().find(mText.view()) != CString::npos;
    }

private:
    CString mText;
};

// The sort keys of each --sort: the named one, then the folder and the file name, so that a listing
// does not depend on the order of the records.
bool sortKeys(const std::string& name, SortKeyList* keys) {
    if (name == "timestamp")
        keys->add(Asset::kPropTimestamp, true);
    else if (name == "size")
        keys->add(CatalogueFormat::kPropFileSize, true);
    else if (name == "filename")
        keys->add(Asset::kPropFilename, true);
    else if (name != "folder")
        return false;
    keys->add(Asset::kPropFolder, true);
    keys->add(Asset::kPropFilename, true);
    return true;
}

std::string jsonString(const std::string& text) {
    std::string out = "\"";
    for (const unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

std::string jsonNumber(const PropertyValue& value) {
    return value.isInt() ? std::to_string(value.asInt()) : "null";
}

const char* typeOf(const CString& path) {
    Codec* codec = CodecManager::getCodec(FilePath::getExtension(path));
    if (!codec) return nullptr;
    return codec->getCodecType() == CodecTypeVideo ? "video" : "photo";
}

int usage() {
    std::fprintf(stderr,
                 "usage: orvanta catalog list [--catalog FILE] [--sort timestamp|filename|folder|size] "
                 "[--filter TEXT] [--json]\n");
    return 2;
}

}  // namespace

int runCatalogList(const CatalogueChoice& choice, const Arguments& arguments) {
    std::string sort = "timestamp", text;
    bool json = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--json")
            json = true;
        else if (arguments[i] == "--sort" && i + 1 < arguments.size())
            sort = arguments[++i];
        else if (arguments[i] == "--filter" && i + 1 < arguments.size())
            text = arguments[++i];
        else
            return usage();
    }
    SortKeyList keys;
    if (!sortKeys(sort, &keys)) return usage();
    OwnedPtr<AssetDb> db = openCatalogue(choice, false);
    if (!db) return 1;
    orvantaIUInit();
    registerVideoCodec();
    OwnedPtr<Filter> filter = text.empty() ? nullptr : new PathFilter(CString::fromUtf8(text));
    OwnedPtr<SortedAssetList> view = db->createSorted(keys, filter);
    if (json) std::printf("[");
    bool first = true;
    for (int i = 0, count = view->getCount(); i < count; ++i) {
        const UniqueID id = view->getID(i);
        OwnedPtr<PropertyList> properties = view->readProperties(id);
        if (!properties) continue;
        const CString path = pathOf(properties);
        const std::string date = isoDate(properties->getValue(Asset::kPropTimestamp).asDateTime());
        if (!json) {
            std::printf("%s\t%s\t%s\n", id.asString().toUtf8().c_str(), date.c_str(), path.toUtf8().c_str());
            continue;
        }
        const char* type = typeOf(path);
        std::printf(
            "%s\n  {\"id\": \"%s\", \"path\": %s, \"timestamp\": %s, \"type\": %s, \"width\": %s, "
            "\"height\": %s}",
            first ? "" : ",", id.asString().toUtf8().c_str(), jsonString(path.toUtf8()).c_str(),
            date.empty() ? "null" : ("\"" + date + "\"").c_str(), type ? jsonString(type).c_str() : "null",
            jsonNumber(properties->getValue(CatalogueFormat::kPropWidth)).c_str(),
            jsonNumber(properties->getValue(CatalogueFormat::kPropHeight)).c_str());
        first = false;
    }
    if (json) std::printf("%s]\n", first ? "" : "\n");
    orvantaIUDeInit();
    return 0;
}

}  // namespace OrvantaTool
