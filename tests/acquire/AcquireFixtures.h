#pragma once
// What the acquisition tests share: the codecs registered once, SANE confined to the test backends,
// the library's loop run until a condition holds, and the fixture of the tests on photographs.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "tests/support/TempDir.h"

namespace OrvantaTest {

// SANE for this process and the helpers it starts: SANE's test backend (two devices) and the
// crashing backend of tests/acquire/crash-backend, and none of the machine's settings.
class PrivateSane {
public:
    PrivateSane();

private:
    TempDir mDir;
};

// JPEG, TIFF and BMP, and the video codec.
void registerAcquireCodecs();

// Runs the loop as a host does until done() holds; false after two minutes.
bool pumpUntil(const std::function<bool()>& done);

// A file's write time in nanoseconds since 1970; -1 when it cannot be read.
long long mtimeNs(const std::string& path);

// The tests on the test data's photographs, with the codecs registered and cameras reached through
// libgphoto2 (the TWAIN mode "never").
class AcquireTest : public ::testing::Test {
protected:
    void SetUp() override;
};

}  // namespace OrvantaTest
