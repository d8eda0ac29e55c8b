// The JPEG codec: reading a file whose header runs past the part read first.

#include <gtest/gtest.h>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

std::string segment(int marker, const std::string& contents) {
    const std::size_t length = contents.size() + 2;
    return std::string{'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
           contents;
}

class JpegCodec : public ::testing::Test {
protected:
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
};

}  // namespace

TEST_F(JpegCodec, AHeaderLongerThanTheFirstReadIsReadOnToTheFrame) {
    OwnedPtr<Dib> picture = makePatternDib(72, 40, 3);
    ASSERT_GT(codec->write(picture, dir.wide("small.jpg"), ImageQualityNormal), 0);
    // Three segments as large as segments go, between the start marker and the frame.
    const std::string icc = segment(0xE2, std::string(65000, 'i')),
                      bytes = readFileBytes(dir.file("small.jpg"));
    writeFileBytes(dir.file("long.jpg"), bytes.substr(0, 2) + icc + icc + icc + bytes.substr(2));
    CSize size;
    ASSERT_TRUE(codec->getInfo(dir.wide("long.jpg"), &size, nullptr));
    EXPECT_EQ(CSize(72, 40), size);
}
