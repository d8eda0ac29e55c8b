#include "orvanta/assets/AssetBackupPolicy.h"

#include <fcntl.h>

#include "orvanta/assets/AssetFile.h"
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

bool AssetBackupPolicy::replaceFile(AssetFile* file, const CString& newVersion) {
    Platform::ReplacementFile out(file->getPath().toUtf8());
    return out.open() && copyInto(newVersion.toUtf8(), out) && out.commit();
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
