#include "orvanta/assets/AssetBackupPolicy.h"

#include "orvanta/assets/AssetFile.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta {

namespace {

AssetBackupPolicy* mgCurrentPolicy = nullptr;

AssetBackupPolicy& defaultPolicy() {
    static AssetBackupPolicy instance;
    return instance;
}

}  // namespace

AssetBackupPolicy::~AssetBackupPolicy() {
    if (mgCurrentPolicy == this) clearCurrentPolicy();
}

bool AssetBackupPolicy::prepareForSave(AssetFile* file) {
    return getCurrentPolicy()->handlePrepareForSave(file);
}

bool AssetBackupPolicy::previousVersionExists(AssetFile* file) {
    return getCurrentPolicy()->handlePreviousVersionExists(file);
}

bool AssetBackupPolicy::restorePrevious(bool flag) {
    return getCurrentPolicy()->handleRestorePrevious(flag);
}

AssetBackupPolicy::ReplaceResult AssetBackupPolicy::replaceFile(
    AssetFile* file, const std::function<bool(const CString& newVersion)>& write) {
    // Opened first: its lock must be held before write reads the old version.
    Platform::ReplacementFile out(file->getPath().toUtf8());
    if (!out.open()) return kNotReplaced;
    const CString temporary = FilePath::getTempFilePath(u"orvanta-save-");
    if (temporary.isEmpty()) return kNotReplaced;
    ReplaceResult result = kNotReplaced;
    if (write(temporary)) {
        Platform::FileContents newVersion;
        if (!prepareForSave(file))
            result = kRefused;
        else if (newVersion.open(temporary.toUtf8()) &&
                 out.write(newVersion.data(), static_cast<std::size_t>(newVersion.size())) && out.commit())
            result = kReplaced;
    }
    File::remove(temporary);
    return result;
}

AssetBackupPolicy* AssetBackupPolicy::getCurrentPolicy() {
    return mgCurrentPolicy ? mgCurrentPolicy : &defaultPolicy();
}

void AssetBackupPolicy::clearCurrentPolicy() {
    mgCurrentPolicy = nullptr;
}

void AssetBackupPolicy::makePolicyCurrent() {
    mgCurrentPolicy = this;
}

}  // namespace Orvanta
