#pragma once
// TempDir: a fresh folder for the files one test makes, removed with everything in it at the end.

#include <string>

#include "orvanta/platform/CString.h"

namespace OrvantaTest {

class TempDir {
public:
    // base: where to make it; the system's temporary folder by default.
    explicit TempDir(const std::string& base = std::string());
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return mPath; }
    std::string file(const std::string& name) const { return mPath + "/" + name; }
    // The same path as UTF-16, for the library's interfaces.
    Orvanta::CString wide(const std::string& name) const { return Orvanta::CString::fromUtf8(file(name)); }
    // How many entries the folder holds (a temporary file left behind shows here).
    std::size_t count() const;

private:
    std::string mPath;
};

// A fresh temporary folder put in place of the system's (TMPDIR) while it lives, so that a test
// can count what the library left there.
class PrivateTemp {
public:
    PrivateTemp();
    ~PrivateTemp();
    std::size_t count() const { return mDir.count(); }

private:
    TempDir mDir;
    std::string mOld;
    bool mHadOld = false;
};

// Reads or writes a whole file in a test, outside the library.
std::string readFileBytes(const std::string& path);
void writeFileBytes(const std::string& path, const std::string& bytes);

}  // namespace OrvantaTest
