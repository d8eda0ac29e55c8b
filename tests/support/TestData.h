#pragma once
// Locates the shared real-file test data (camera photographs, awkward and damaged files) that lives
// beside the project, never inside it. Tests that need it skip with a clear message when it is absent.

#include <gtest/gtest.h>

#include <string>

namespace OrvantaTest {

// The test data folder, or an empty string when it is not there. ORVANTA_TESTDATA overrides the
// built-in location.
std::string testDataDir();
// The path of a file under the test data folder ("bmp/rgb24-topdown-6x6.bmp").
std::string testDataPath(const std::string& relative);
// The files of one test data folder with one of the given extensions, sorted.
std::vector<std::string> testDataFiles(const std::string& folder, const std::vector<std::string>& extensions);

}  // namespace OrvantaTest

#define ORVANTA_REQUIRE_TESTDATA()                                                                  \
    do {                                                                                            \
        if (OrvantaTest::testDataDir().empty())                                                     \
            GTEST_SKIP() << "test data not found: ../shared/testdata is absent beside the project"; \
    } while (0)
