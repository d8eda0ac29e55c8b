#include "tests/foundation/TestEnvironment.h"

#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace OrvantaTest {

namespace {

// Tried with setlocale rather than newlocale: this glibc's newlocale leaks its search path when
// LOCPATH is set, which the leak checker of the sanitizer build reports.
bool localeLoads(const std::string& name) {
    const char* current = std::setlocale(LC_ALL, nullptr);
    const std::string saved = current ? current : "C";
    const bool loads = std::setlocale(LC_ALL, name.c_str()) != nullptr;
    std::setlocale(LC_ALL, saved.c_str());
    return loads;
}

std::string privateLocaleFolder() {
    const char* tmp = std::getenv("TMPDIR");
    return std::string(tmp && *tmp ? tmp : "/tmp") + "/orvanta-test-locales-" + std::to_string(getuid());
}

// "de_DE.UTF-8" -> localedef -i de_DE -f UTF-8, built beside its final place and renamed into it,
// so that concurrent test processes never see half a locale.
bool buildLocale(const std::string& name, const std::string& folder) {
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) return false;
    const std::string source = name.substr(0, dot);
    const std::string charset = name.substr(dot + 1);
    const std::string target = folder + "/" + name;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (std::filesystem::exists(target, error)) return true;
    std::string scratch = folder + "/building-XXXXXX";
    if (!mkdtemp(scratch.data())) return false;
    const std::string built = scratch + "/" + name;
    const std::string command =
        "localedef -i '" + source + "' -f '" + charset + "' '" + built + "' >/dev/null 2>&1";
    const int status = std::system(command.c_str());
    // localedef exits 1 for warnings while still writing the locale.
    bool ok = status != -1 && std::filesystem::exists(built + "/LC_TIME", error);
    if (ok) {
        std::filesystem::rename(built, target, error);
        ok = std::filesystem::exists(target + "/LC_TIME");
    }
    std::filesystem::remove_all(scratch, error);
    return ok;
}

}  // namespace

bool ensureLocale(const std::string& name) {
    const std::string folder = privateLocaleFolder();
    const char* searched = std::getenv("LOCPATH");
    const bool privateFolderInUse = searched && folder == searched;
    if (!privateFolderInUse && localeLoads(name)) return true;
    // The C library remembers a locale it failed to find in a folder, so it is built before it is
    // ever looked for there.
    if (!buildLocale(name, folder)) return false;
    setenv("LOCPATH", folder.c_str(), 1);
    return localeLoads(name);
}

ScopedLocale::ScopedLocale(const std::string& name) {
    const char* current = std::setlocale(LC_ALL, nullptr);
    mSaved = current ? current : "C";
    mOk = std::setlocale(LC_ALL, name.c_str()) != nullptr;
}

ScopedLocale::~ScopedLocale() {
    std::setlocale(LC_ALL, mSaved.c_str());
}

ScopedVariable::ScopedVariable(const char* name, const char* value) : mName(name) {
    const char* current = std::getenv(name);
    mHadValue = current != nullptr;
    if (current) mSaved = current;
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}

ScopedVariable::~ScopedVariable() {
    if (mHadValue)
        setenv(mName.c_str(), mSaved.c_str(), 1);
    else
        unsetenv(mName.c_str());
}

ScopedTimeZone::ScopedTimeZone(const char* rule) : mVariable("TZ", rule) {
    tzset();
}

// The library calls tzset before each conversion, so restoring the variable is enough.
ScopedTimeZone::~ScopedTimeZone() = default;

}  // namespace OrvantaTest
