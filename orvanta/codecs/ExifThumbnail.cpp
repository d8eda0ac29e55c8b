#include "orvanta/codecs/ExifThumbnail.h"

#include <libexif/exif-data.h>
#include <libexif/exif-mem.h>

#include <cstring>

namespace Orvanta {

std::unique_ptr<ExifThumbnail> ExifThumbnail::load(const unsigned char* segment, int size) {
    if (!segment || size <= 0) return nullptr;
    ExifMem* memory = exif_mem_new_default();
    if (!memory) return nullptr;
    ExifData* data = exif_data_new_mem(memory);
    if (!data) {
        exif_mem_unref(memory);
        return nullptr;
    }
    // The block passes through untouched but for its thumbnail: libexif must not drop the tags it
    // does not know, add the ones the standard asks for, or rewrite the maker note.
    exif_data_unset_option(data, EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data, EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_set_option(data, EXIF_DATA_OPTION_DONT_CHANGE_MAKER_NOTE);
    exif_data_load_data(data, segment, static_cast<unsigned int>(size));
    bool found = false;
    for (ExifContent* content : data->ifd) found = found || (content && content->count > 0);
    if (!found && !data->data) {
        exif_data_unref(data);
        exif_mem_unref(memory);
        return nullptr;
    }
    return std::unique_ptr<ExifThumbnail>(new ExifThumbnail(memory, data));
}

ExifThumbnail::~ExifThumbnail() {
    exif_data_unref(mData);
    exif_mem_unref(mMemory);
}

const unsigned char* ExifThumbnail::getThumbnail() const {
    return mData->size > 0 ? mData->data : nullptr;
}

int ExifThumbnail::getThumbnailSize() const {
    return mData->data ? static_cast<int>(mData->size) : 0;
}

bool ExifThumbnail::setThumbnail(const unsigned char* bytes, int size) {
    if (mData->data) exif_mem_free(mMemory, mData->data);
    mData->data = nullptr;
    mData->size = 0;
    if (!bytes || size <= 0) return true;
    auto* copy = static_cast<unsigned char*>(exif_mem_alloc(mMemory, static_cast<ExifLong>(size)));
    if (!copy) return false;
    std::memcpy(copy, bytes, static_cast<std::size_t>(size));
    mData->data = copy;
    mData->size = static_cast<unsigned int>(size);
    return true;
}

std::vector<unsigned char> ExifThumbnail::save() const {
    unsigned char* bytes = nullptr;
    unsigned int size = 0;
    exif_data_save_data(mData, &bytes, &size);
    std::vector<unsigned char> block;
    if (bytes && size > 0) block.assign(bytes, bytes + size);
    if (bytes) exif_mem_free(mMemory, bytes);
    return block;
}

}  // namespace Orvanta
