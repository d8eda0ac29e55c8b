// orvanta convert, rotate and thumb, run as a user runs them.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

CSize jpegSize(const std::string& path) {
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    CSize size(0, 0);
    try {
        codec->getInfo(CString::fromUtf8(path), &size, nullptr);
    } catch (...) {
    }
    return size;
}

class ImageCommands : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::getenv("ORVANTA_TOOL")) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
    }
    std::string copyOf(const std::string& name) {
        const std::string path = dir.file("photo.jpg");
        writeFileBytes(path, readFileBytes(testDataPath(name)));
        return path;
    }
    TempDir dir;
};

}  // namespace

TEST_F(ImageCommands, ConvertPrintsTheResultFlags) {
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    ToolRun r = runTool("convert '" + photo + "' '" + dir.file("a.jpg") + "'");
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(dir.file("a.jpg") + "\t1\tcopied\n", r.output);
    r = runTool("convert '" + photo + "' '" + dir.file("b.tif") + "' --max 320x320 --quality high");
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(dir.file("b.tif") + "\t12\tformat-changed,made-smaller\n", r.output);
    r = runTool("convert '" + photo + "' '" + dir.file("c.jpg") + "' --max 100x100");
    EXPECT_EQ(dir.file("c.jpg") + "\t24\tmade-smaller,quality-changed\n", r.output);
    EXPECT_EQ(CSize(100, 75), jpegSize(dir.file("c.jpg")));
}

TEST_F(ImageCommands, ConvertRefusesBadArgumentsAndUnreadableFiles) {
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(2, runTool("convert '" + photo + "'").status);
    EXPECT_EQ(2, runTool("convert '" + photo + "' x.jpg --max 100").status);
    EXPECT_EQ(2, runTool("convert '" + photo + "' x.jpg --quality best").status);
    EXPECT_EQ(1, runTool("convert '" + dir.file("missing.jpg") + "' '" + dir.file("x.bmp") + "'").status);
    EXPECT_EQ(1, runTool("convert '" + photo + "' '" + dir.file("x.png") + "'").status);
    // Nothing written is a failure, with the system's reason: a BMP, a TIFF, a JPEG keeping the
    // metadata and a copy into a missing folder.
    for (const char* target : {"x.bmp'", "x.tif'", "x.jpg' --max 320x320", "x.jpg'"}) {
        const ToolRun r = runTool("convert '" + photo + "' '" + dir.file("missing/") + target);
        EXPECT_EQ(1, r.status) << target;
        EXPECT_NE(std::string::npos, r.errors.find("does not exist")) << r.errors;
    }
}

TEST_F(ImageCommands, RotateTurnsTheFileAndSaysWhenEdgesAreDropped) {
    const std::string aligned = copyOf("jpeg/canon-ixus-640x480.jpg");
    ToolRun r = runTool("rotate '" + aligned + "' 90");
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(aligned + "\t480\t640\n", r.output);
    const std::string ragged = copyOf("jpeg/sony-dsc-hx5v-730x547.jpg");
    r = runTool("rotate '" + ragged + "' 270");
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(ragged + "\t547\t720\tedge blocks dropped\n", r.output)
        << "the partial blocks of the right edge go";
}

TEST_F(ImageCommands, RotateRefusesOtherFormatsAnglesAndDamagedFiles) {
    EXPECT_EQ(2, runTool("rotate '" + dir.file("x.jpg") + "' 45").status);
    writeFileBytes(dir.file("x.bmp"), readFileBytes(testDataPath("bmp/rgb24-photo-119x96-pad3.bmp")));
    EXPECT_EQ(1, runTool("rotate '" + dir.file("x.bmp") + "' 90").status);
    const std::string damaged = copyOf("jpeg-awkward/truncated-baseline-bluesquare.jpg");
    const std::string before = readFileBytes(damaged);
    EXPECT_EQ(1, runTool("rotate '" + damaged + "' 90").status);
    EXPECT_EQ(before, readFileBytes(damaged));
    EXPECT_EQ(1, runTool("rotate '" + dir.file("missing.jpg") + "' 90").status);
}

TEST_F(ImageCommands, RotationsStartedTogetherAddUp) {
    const std::string photo = copyOf("jpeg/canon-ixus-640x480.jpg"), reference = dir.file("reference.jpg");
    writeFileBytes(reference, readFileBytes(photo));
    ASSERT_EQ(0, runTool("rotate '" + reference + "' 270").status);
    // Three quarter turns at once: each must turn what the one before it left.
    const std::string turn = "({tool} rotate '" + photo + "' 90 >/dev/null || echo failed)";
    EXPECT_EQ("", runShell(turn + " & " + turn + " & " + turn + " & wait").output);
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    OwnedPtr<Dib> turned = codec->read(CString::fromUtf8(photo), nullptr, 0, 0),
                  expected = codec->read(CString::fromUtf8(reference), nullptr, 0, 0);
    EXPECT_EQ(packedPixels(*expected), packedPixels(*turned));
}

TEST_F(ImageCommands, OnAFullDiskEveryCommandSaysSoAndLeavesThePhotoWhole) {
    // A small file system of its own, filled up, in a private mount namespace on $3: $1 the photo,
    // $2 the host.
    writeFileBytes(dir.file("full.sh"), R"(
        d="$3" && mount -t tmpfs -o size=320k tmpfs "$d" && echo mounted || exit
        mkdir "$d/in" && cp "$1" "$d/p.jpg" && cp "$1" "$d/in/q.jpg" && cat /dev/zero > "$d/fill"
        "$2" rotate "$d/p.jpg" 90
        "$2" edit "$d/p.jpg" "$d/p.jpg" rotate=90
        "$2" convert "$d/p.jpg" "$d/c.bmp"
        "$2" thumb "$d/p.jpg" "$d/t.bmp"
        "$2" batch-convert "$d/in" "$d/out" --to bmp
        cmp -s "$1" "$d/p.jpg" && echo unchanged)");
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    std::filesystem::create_directory(dir.file("disk"));
    const ToolRun r = runShell("unshare -rm sh '" + dir.file("full.sh") + "' '" + photo + "' {tool} '" +
                               dir.file("disk") + "'");
    if (r.output.find("mounted") == std::string::npos) GTEST_SKIP() << "no private mount here: " << r.errors;
    std::size_t told = 0;
    for (std::size_t at = 0; (at = r.errors.find("no space left on the device", at)) != std::string::npos;
         ++at)
        ++told;
    EXPECT_EQ(5u, told) << r.errors;
    EXPECT_NE(std::string::npos, r.output.find("unchanged"));
}

TEST_F(ImageCommands, ThumbUsesTheEmbeddedPictureUnlessTold) {
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    ToolRun r = runTool("thumb '" + photo + "' '" + dir.file("t.jpg") + "'");
    EXPECT_EQ(0, r.status);
    EXPECT_EQ(dir.file("t.jpg") + "\t160\t120\tembedded\n", r.output);
    r = runTool("thumb '" + photo + "' '" + dir.file("u.jpg") + "' --no-embedded --box 100x100");
    EXPECT_EQ(dir.file("u.jpg") + "\t100\t75\tdecoded\n", r.output);
    r = runTool("thumb '" + photo + "' '" + dir.file("v.bmp") + "' --box 64x64");
    EXPECT_EQ(dir.file("v.bmp") + "\t64\t48\tembedded\n", r.output)
        << "the embedded picture, fitted into the box";
    r = runTool("thumb '" + testDataPath("jpeg/orientation-1-landscape.jpg") + "' '" + dir.file("w.jpg") +
                "'");
    EXPECT_EQ(dir.file("w.jpg") + "\t160\t106\tdecoded\n", r.output) << "no EXIF thumbnail in this file";
    EXPECT_EQ(2, runTool("thumb '" + photo + "'").status);
}

TEST_F(ImageCommands, EditKeepsTheMetadataOfAJpegSource) {
    // This camera file begins with its EXIF segment, right after the start marker.
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    const std::string source = readFileBytes(photo);
    ASSERT_EQ('\xE1', source[3]);
    const std::size_t length =
        (static_cast<unsigned char>(source[4]) << 8) | static_cast<unsigned char>(source[5]);
    const std::string exif = source.substr(2, length + 2);
    ASSERT_EQ(0, runTool("edit '" + photo + "' '" + dir.file("e.jpg") + "' rotate=90").status);
    const std::string edited = readFileBytes(dir.file("e.jpg"));
    EXPECT_EQ(exif, edited.substr(2, exif.size())) << "the EXIF segment comes first, byte for byte";
    EXPECT_EQ(CSize(480, 640), jpegSize(dir.file("e.jpg")));
}
