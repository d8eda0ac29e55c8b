#include "apps/photos/OriginalsPolicy.h"

#include <filesystem>
#include <functional>

#include "orvanta/assets/AssetFile.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FilePath.h"

using namespace Orvanta;

namespace OrvantaPhotos {

std::string OriginalsPolicy::originalOf(const std::string& path) const {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    return mFolder + "/" + std::to_string(std::hash<std::string>()(path)) + "-" + name;
}

bool OriginalsPolicy::handlePrepareForSave(AssetFile* file) {
    const std::string path = file->getPath().toUtf8();
    const CString kept = CString::fromUtf8(originalOf(path));
    if (FilePath::exists(kept, false)) return true;
    // The file is held by the save's lock: it is copied by name, not opened as a File (which locks).
    std::error_code error;
    std::filesystem::create_directories(mFolder, error);
    const std::string partial = originalOf(path) + ".part";
    std::filesystem::remove(partial, error);
    // Copied under a temporary name and renamed: a half-written copy is never taken for the original.
    if (!std::filesystem::copy_file(path, partial, error) ||
        !File::replace(CString::fromUtf8(partial), kept)) {
        std::filesystem::remove(partial, error);
        return false;
    }
    return true;
}

bool OriginalsPolicy::handlePreviousVersionExists(AssetFile* file) {
    return FilePath::exists(CString::fromUtf8(originalOf(file->getPath().toUtf8())), false);
}

}  // namespace OrvantaPhotos
