#include "orvanta/platform/CameraDriverCache.h"

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <vector>

#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/Gphoto2Library.h"
#include "orvanta/platform/UserDirectories.h"

namespace Orvanta::Platform {

namespace {

// FNV-1a: a folder name for any model ("Canon:EOS 5D", "Directory Browse") without escaping.
std::string hashName(const std::string& text) {
    std::uint64_t hash = 14695981039346656037ull;
    for (const unsigned char c : text) hash = (hash ^ c) * 1099511628211ull;
    char name[17];
    std::snprintf(name, sizeof name, "%016llx", static_cast<unsigned long long>(hash));
    return name;
}

}  // namespace

CameraDriverCache::CameraDriverCache(std::string folder) : mFolder(std::move(folder)) {}

CameraDriverCache CameraDriverCache::user() {
    return CameraDriverCache(cacheHome() + "/" + kFolder);
}

std::string CameraDriverCache::folderOf(const std::string& model) const {
    return mFolder + "/" + hashName(model);
}

bool CameraDriverCache::find(const std::string& model, CameraAbilities* abilities, GPContext* context) const {
    // The folder's one link must lead to a file: the loader is not asked about a driver gone, since
    // it may answer with a driver of that name it already has loaded.
    FileSystem& fs = FileSystem::current();
    const std::string folder = folderOf(model);
    std::vector<std::string> names;
    struct stat info;
    if (fs.listDirectory(folder.c_str(), &names) != 0 || names.size() != 1 ||
        fs.stat((folder + "/" + names[0]).c_str(), &info) != 0 || !S_ISREG(info.st_mode))
        return false;
    const Gphoto2Api& gp = gphoto2();
    CameraAbilitiesList* list = nullptr;
    if (gp.gp_abilities_list_new(&list) < GP_OK) return false;
    const bool found = gp.gp_abilities_list_load_dir(list, folder.c_str(), context) >= GP_OK && [&] {
        const int index = gp.gp_abilities_list_lookup_model(list, model.c_str());
        return index >= 0 && gp.gp_abilities_list_get_abilities(list, index, abilities) >= GP_OK;
    }();
    gp.gp_abilities_list_free(list);
    return found;
}

void CameraDriverCache::remember(const std::string& model, const CameraAbilities& abilities) const {
    FileSystem& fs = FileSystem::current();
    const std::string driver = std::string(abilities.library) + kDriverExtension;
    struct stat info;
    if (driver.front() != '/' || fs.stat(driver.c_str(), &info) != 0) return;
    const std::string folder = folderOf(model);
    if (fs.makeDirectories(folder, 0700) != 0) return;
    // The folder holds this one driver: whatever link it had goes first.
    std::vector<std::string> names;
    if (fs.listDirectory(folder.c_str(), &names) == 0)
        for (const std::string& name : names) fs.unlink((folder + "/" + name).c_str());
    fs.makeSymbolicLink(driver.c_str(), (folder + driver.substr(driver.rfind('/'))).c_str());
}

}  // namespace Orvanta::Platform
