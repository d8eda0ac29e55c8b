#pragma once
// VideoFile: the file of a video in the catalogue. The file is never opened, so a damaged video is
// as good an item as any; its thumbnail is the stock picture of its GenericVideoCodec, fitted into
// the box, a new Image for every call.

#include "orvanta/assets/AssetFile.h"

namespace Orvanta {

class VideoFile : public AssetFile {
public:
    static VideoFile* create(const CString& path, Codec* codec, const FILETIME* writeTime,
                             const FILETIME* creationTime);

    // Null without a video codec or without a stock picture. allowEmbedded is not used.
    Image* createThumbnail(int width, int height, bool allowEmbedded) override;

private:
    using AssetFile::AssetFile;
};

}  // namespace Orvanta
