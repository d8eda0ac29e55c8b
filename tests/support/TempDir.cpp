#include "tests/support/TempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace OrvantaTest {

TempDir::TempDir(const std::string& base) {
    std::string root = base;
    if (root.empty()) {
        const char* tmp = std::getenv("TMPDIR");
        root = tmp && *tmp ? tmp : "/tmp";
    }
    std::string pattern = root + "/orvanta-test-XXXXXX";
    if (!mkdtemp(pattern.data())) throw std::runtime_error("cannot make a temporary folder under " + root);
    mPath = pattern;
}

TempDir::~TempDir() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

std::size_t TempDir::count() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(mPath), {}));
}

std::string readFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

void writeFileBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

PrivateTemp::PrivateTemp() {
    if (const char* old = std::getenv("TMPDIR")) mOld = old, mHadOld = true;
    setenv("TMPDIR", mDir.path().c_str(), 1);
}

PrivateTemp::~PrivateTemp() {
    if (mHadOld)
        setenv("TMPDIR", mOld.c_str(), 1);
    else
        unsetenv("TMPDIR");
}

}  // namespace OrvantaTest
