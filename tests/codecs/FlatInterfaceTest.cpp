#include "orvanta/codecs/OrvantaIU.h"

#include <gtest/gtest.h>

#include "orvanta/foundation/OrvantaSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"

using namespace OrvantaTest;

// The flat interface keeps process-wide state; the tests run in this order within one process.
TEST(FlatInterface, HostThatInitialisedFirstKeepsTheLibraryAfterDeInit) {
    ASSERT_FALSE(Orvanta::isInited());
    orvantaIUInit();
    EXPECT_TRUE(Orvanta::isInited());
    orvantaIUInit();  // already initialised: the flat interface no longer owns it
    orvantaIUDeInit();
    EXPECT_TRUE(Orvanta::isInited());
    Orvanta::deinit();
}

TEST(FlatInterface, AnswersWhatAFileIs) {
    ORVANTA_REQUIRE_TESTDATA();
    orvantaIUInit();
    int type = 0, width = 0, height = 0, quality = -1;
    const std::string path = testDataPath("bmp/rgb24-bottomup-127x64-pad3.bmp");
    EXPECT_TRUE(orvantaIUGetImageFileInformationU8(path.c_str(), &type, &width, &height, &quality));
    EXPECT_EQ(type, 3);
    EXPECT_EQ(width, 127);
    EXPECT_EQ(height, 64);
    EXPECT_EQ(quality, 2);
    const std::u16string wide = Orvanta::CString::fromUtf8(path).str();
    width = height = 0;
    EXPECT_TRUE(orvantaIUGetImageFileInformation(wide.c_str(), nullptr, &width, &height, nullptr));
    EXPECT_EQ(width, 127);
}

TEST(FlatInterface, UnsupportedFileGivesFalseAndZeroSize) {
    orvantaIUInit();
    int type = 0, width = 7, height = 7, quality = 0;
    EXPECT_FALSE(orvantaIUGetImageFileInformationU8("/tmp/notes.txt", &type, &width, &height, &quality));
    EXPECT_EQ(width, 0);
    EXPECT_EQ(height, 0);
    EXPECT_FALSE(orvantaIUIsFileTypeSupportedU8("notes.txt"));
    EXPECT_FALSE(orvantaIUIsFileTypeSupported(u"notes"));
    EXPECT_TRUE(orvantaIUIsFileTypeSupported(u"C.BMP"));
    EXPECT_TRUE(orvantaIUIsFileTypeSupportedU8("/a/b/holiday.bmp"));
    EXPECT_FALSE(orvantaIUIsFileTypeSupportedU8(nullptr));
}

TEST(FlatInterface, KnownTypeOfAMissingFileStillReportsItsType) {
    orvantaIUInit();
    int type = 0, width = 7, height = 7;
    // The size cannot be read, but nothing was thrown: the answer is true with a zero size.
    EXPECT_TRUE(
        orvantaIUGetImageFileInformationU8("/nonexistent/picture.bmp", &type, &width, &height, nullptr));
    EXPECT_EQ(type, 3);
    EXPECT_EQ(width, 0);
}

TEST(FlatInterface, VersionIsFixed) {
    EXPECT_EQ(GetOrvantaVersion(), 0x10001);
}
