#include "orvanta/assets/AssetBackupPolicy.h"

#include <fcntl.h>

#include "orvanta/assets/AssetFile.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta {

namespace {

AssetBackupPolicy* mgCurrentPolicy = nullptr;

AssetBackupPolicy& defaultPolicy() {
    static AssetBackupPolicy instance;
    return instance;
}

// Copies the file at from into out, a megabyte at a time.
bool copyInto(const std::string& from, Platform::ReplacementFile& out) {
    Platform::FileSystem& fs = Platform::FileSystem::current();
    const int in = fs.open(from.c_str(), O_RDONLY, 0);
    if (in < 0) return false;
    static constexpr std::size_t kChunk = 1 << 20;
    std::string buffer(kChunk, '\0');
    bool ok = true;
    for (;;) {
        const ssize_t n = fs.read(in, buffer.data(), kChunk);
        if (n <= 0) {
            ok = n == 0;
            break;
        }
        if (!out.write(buffer.data(), static_cast<std::size_t>(n))) {
            ok = false;
            break;
        }
    }
    fs.close(in);
    return ok;
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
    // Begun before the new version is written, so that whatever ReplacementFile holds from open to
    // commit against other rewrites of the file also covers the reading of the old version.
    Platform::ReplacementFile out(file->getPath().toUtf8());
    if (!out.open()) return kNotReplaced;
    const CString temporary = FilePath::getTempFilePath(u"orvanta-save-");
    if (temporary.isEmpty()) return kNotReplaced;
    ReplaceResult result = kNotReplaced;
    if (write(temporary)) {
        if (!prepareForSave(file))
            result = kRefused;
        else if (copyInto(temporary.toUtf8(), out) && out.commit())
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
