#include "tests/foundation/TestEnvironment.h"

#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>

namespace OrvantaTest {

namespace {

// "de_DE.UTF-8" -> localedef -i de_DE -f UTF-8, built beside its final place and renamed into it,
// so that concurrent test processes never see half a locale.
bool buildLocale(const std::string& name, const std::string& folder) {
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos) return false;
    const std::string target = folder + "/" + name;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (std::filesystem::exists(target, error)) return true;
    std::string scratch = folder + "/building-XXXXXX";
    if (!mkdtemp(scratch.data())) return false;
    const std::string built = scratch + "/" + name;
    const std::string command = "localedef -i '" + name.substr(0, dot) + "' -f '" + name.substr(dot + 1) +
                                "' '" + built + "' >/dev/null 2>&1";
    // localedef exits 1 for warnings while still writing the locale.
    bool ok = std::system(command.c_str()) != -1 && std::filesystem::exists(built + "/LC_TIME", error);
    if (ok) {
        std::filesystem::rename(built, target, error);
        ok = std::filesystem::exists(target + "/LC_TIME", error);
    }
    std::filesystem::remove_all(scratch, error);
    return ok;
}

}  // namespace

// Tried with setlocale rather than newlocale: this glibc's newlocale leaks its search path when
// LOCPATH is set, which the leak checker of the sanitizer build reports.
ScopedLocale::ScopedLocale(const std::string& name) {
    const char* current = std::setlocale(LC_ALL, nullptr);
    mSaved = current ? current : "C";
    const char* tmp = std::getenv("TMPDIR");
    const std::string folder =
        std::string(tmp && *tmp ? tmp : "/tmp") + "/orvanta-test-locales-" + std::to_string(getuid());
    const char* searched = std::getenv("LOCPATH");
    mOk = !(searched && folder == searched) && std::setlocale(LC_ALL, name.c_str()) != nullptr;
    // The C library remembers a locale it failed to find in a folder, so it is built before it is
    // ever looked for there.
    if (!mOk && buildLocale(name, folder)) {
        setenv("LOCPATH", folder.c_str(), 1);
        mOk = std::setlocale(LC_ALL, name.c_str()) != nullptr;
    }
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

}  // namespace OrvantaTest
