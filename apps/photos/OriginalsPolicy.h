#pragma once
// OriginalsPolicy: lets an edited photo be saved over its file only once the original is kept: the
// first save of a file that re-encodes it copies the file as it was into the originals folder beside
// the catalogue, under a name made of its path's hash and its own name. Later saves keep that first
// original. A copy that cannot be made refuses the save, so the user's file stays as it was.

#include <string>

#include "orvanta/assets/AssetBackupPolicy.h"

namespace OrvantaPhotos {

class OriginalsPolicy : public Orvanta::AssetBackupPolicy {
public:
    explicit OriginalsPolicy(std::string folder) : mFolder(std::move(folder)) {}

    // Where the original of the file at path is kept.
    std::string originalOf(const std::string& path) const;

protected:
    bool handlePrepareForSave(Orvanta::AssetFile* file) override;
    bool handlePreviousVersionExists(Orvanta::AssetFile* file) override;

private:
    std::string mFolder;
};

}  // namespace OrvantaPhotos
