#include "tests/support/TestData.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace OrvantaTest {

std::string testDataDir() {
    const char* overridden = std::getenv("ORVANTA_TESTDATA");
    std::filesystem::path dir = overridden && *overridden ? overridden : ORVANTA_TESTDATA_DIR;
    std::error_code error;
    if (!std::filesystem::is_directory(dir, error)) return std::string();
    return std::filesystem::canonical(dir, error).string();
}

std::string testDataPath(const std::string& relative) {
    return testDataDir() + "/" + relative;
}

std::vector<std::string> testDataFiles(const std::string& folder,
                                       const std::vector<std::string>& extensions) {
    std::vector<std::string> files;
    const std::string root = testDataDir();
    if (root.empty()) return files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(root + "/" + folder, error)) {
        const std::string extension = entry.path().extension().string();
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end())
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace OrvantaTest
