// Lossless rotation of JPEG files in place: jpegtran as the reference over every real file, a
// synthetic picture for the direction and the trimmed edge, and every way the new version can fail.
// (A process killed at each step of a turn is ImageFileTest's: a save of a turn is this turn.)

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/LastError.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class JpegRotate : public ::testing::Test {
protected:
    std::string place(const std::string& bytes, const std::string& name = "photo.jpg") {
        return placeFile(dir, bytes, name);
    }
    // A 40 x 24 picture of 8 x 8 blocks of distinct colours, as a 4:2:2 JPEG (block groups of
    // 16 x 8): a quarter turn to the left has to trim its right edge.
    std::string synthetic() {
        OwnedPtr<Dib> blocks = makeDib(40, 24, [](int x, int y) {
            return Rgb{40 * (x / 8), 70 * (y / 8), 128};
        });
        EXPECT_GT(codec->write(blocks, dir.wide("made.jpg"), ImageQualityHigh), 0);
        return readFileBytes(dir.file("made.jpg"));
    }
    // A picture of noise whose turned file comes out in many pieces, over two megabytes of them
    // (each megabyte sent on to the device as it is written).
    std::string large() {
        OwnedPtr<Dib> noise = makeDib(2400, 1600, [](int x, int y) {
            const unsigned h = (static_cast<unsigned>(x) * 2654435761u) ^ (static_cast<unsigned>(y) * 40503u);
            return Rgb{static_cast<int>(h >> 24), static_cast<int>((h >> 16) & 255),
                       static_cast<int>(h & 255)};
        });
        EXPECT_GT(codec->write(noise, dir.wide("made.jpg"), ImageQualityHigh), 0);
        return readFileBytes(dir.file("made.jpg"));
    }
    bool rotate(const std::string& path, int angle) {
        OwnedPtr<RotateOp> op = RotateOp::create(angle);
        return codec->rotateFile(CString::fromUtf8(path), op);
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
};

}  // namespace

TEST_F(JpegRotate, RefusalsAndPixelsAgreeWithJpegtran) {
    ORVANTA_REQUIRE_TESTDATA();
    if (!haveTool("jpegtran") || !haveTool("djpeg")) GTEST_SKIP() << "jpegtran or djpeg is not installed";
    for (const char* folder : {"jpeg", "jpeg-awkward", "large"}) {
        for (const std::string& file : testDataFiles(folder, {".jpg", ".jpeg", ".mpo"})) {
            const std::string bytes = readFileBytes(file), path = place(bytes);
            const JpegtranResult reference = jpegtranRotate(path, 90, dir.file("reference.jpg"));
            // The frame's height and that of its block groups (a single component: one block).
            int height = 0, group = 1;
            for (int marker : {0xC0, 0xC1, 0xC2, 0xC9, 0xCA})
                for (const std::string& frame : jpegSegments(bytes, marker))
                    height =
                        (static_cast<unsigned char>(frame[5]) << 8) | static_cast<unsigned char>(frame[6]);
            for (const std::string& factors : jpegSampling(bytes))
                group = std::max(group, factors.back() - '0');
            if (jpegSampling(bytes).size() == 1) group = 1;
            // jpegtran turns what it only warns about, except data cut short. A picture lower than one
            // block group has nothing to trim: jpegtran turns its padding into view; the codec refuses.
            const bool refuse = reference.status == 1 || (height > 0 && height < 8 * group) ||
                                reference.messages.find("Premature end") != std::string::npos;
            bool done = false;
            try {
                done = rotate(path, 90);
            } catch (const Exception&) {
            }
            EXPECT_EQ(!refuse, done) << file << ": " << reference.messages;
            const std::string after = readFileBytes(path);
            if (done) {
                EXPECT_EQ(djpegDigest(dir.file("reference.jpg")), djpegDigest(path))
                    << file << ": pixels differ";
                for (int marker : {0xE1, 0xE2, 0xED, 0xFE})
                    EXPECT_EQ(jpegSegments(bytes, marker), jpegSegments(after, marker))
                        << file << " " << marker;
                EXPECT_EQ(readFileBytes(dir.file("reference.jpg")).substr(0, 4), after.substr(0, 4))
                    << file << ": the first segment is not jpegtran's";
                struct stat info;
                stat(path.c_str(), &info);
                EXPECT_EQ(1200000000, info.st_mtim.tv_sec) << "the times are kept";
            } else {
                EXPECT_TRUE(bytes == after) << file;
            }
            std::remove(dir.file("reference.jpg").c_str());
            EXPECT_EQ(1u, dir.count()) << "a temporary file was left";
        }
    }
}

TEST_F(JpegRotate, TurnsEachWayAndTrimsTheEdgeThatCannotTurn) {
    // The longest name a file may have: the temporary name must not grow from it.
    const std::string bytes = synthetic(), path = place(bytes, std::string(251, 'n') + ".jpg");
    OwnedPtr<Dib> before = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
    for (const auto& [angle, size] :
         {std::pair{90, CSize(24, 40)}, {180, CSize(32, 24)}, {270, CSize(24, 32)}}) {
        writeFileBytes(path, bytes);
        ASSERT_TRUE(rotate(path, angle)) << Platform::describeError(Platform::getLastError());
        OwnedPtr<Dib> after = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
        ASSERT_EQ(size, after->getSize()) << angle;
        // The centre of every block, where the colour is flat, came from where the turn says.
        for (int y = 4; y < size.cy; y += 8)
            for (int x = 4; x < size.cx; x += 8) {
                const int fromX = angle == 90 ? y : angle == 180 ? 31 - x : 31 - y;
                const int fromY = angle == 90 ? 23 - x : angle == 180 ? 23 - y : x;
                const Rgb want = pixelAt(before, fromX, fromY), got = pixelAt(after, x, y);
                EXPECT_LE(std::abs(want.r - got.r) + std::abs(want.g - got.g), 24)
                    << angle << ": " << x << "," << y;
            }
    }
}

TEST_F(JpegRotate, AFailureAtAnyStepLeavesTheOriginalAndSaysWhy) {
    const std::string small = synthetic(), big = large();
    ASSERT_GT(big.size(), 2u << 20);
    const std::string path = place(small);
    EXPECT_TRUE(rotate(path, 0));
    EXPECT_EQ(u"Angle not supported", messageOf([&] { rotate(path, 45); }));
    EXPECT_EQ(u"Cannot read src file", messageOf([&] { rotate(dir.file("missing.jpg"), 90); }));
    const struct {
        const std::string* before;
        long long budget;  // bytes written before the disk is full; -1: no limit
        int renameError, createError, error;
    } cases[] = {{&small, 0, 0, 0, ENOSPC},     {&small, 500, 0, 0, ENOSPC},   {&small, -1, EXDEV, 0, EXDEV},
                 {&small, -1, 0, 0, EIO},       {&small, -1, 0, EROFS, EROFS}, {&big, 300000, 0, 0, ENOSPC},
                 {&big, 1800000, 0, 0, ENOSPC}, {&big, -1, 0, 0, EIO}};
    for (const auto& c : cases) {
        writeFileBytes(path, *c.before);
        FaultyFileSystem disk;
        disk.failWritesAfter(c.budget);
        disk.failRenames(c.renameError);
        disk.failCreates(c.createError);
        disk.failSync(c.error == EIO);
        Platform::setLastError(0);
        bool done = false;
        const std::u16string thrown = messageOf([&] { done = rotate(path, 90); });
        EXPECT_FALSE(done) << c.error;
        EXPECT_EQ(c.createError ? u"Cannot open destination file" : u"(nothing thrown)", thrown);
        EXPECT_EQ(c.error, Platform::getLastError());
        EXPECT_TRUE(*c.before == readFileBytes(path)) << c.budget;
        EXPECT_EQ(2u, dir.count()) << "no temporary file is left";
    }
}
