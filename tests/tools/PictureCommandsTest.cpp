// The picture commands of orvanta, run as a user runs them: info, convert, thumb, rotate (alone,
// several at once, on a full disk), edit against the library's own operations and in place,
// batch-convert with a Ctrl-C, and what the host says to --help, --version, bad arguments and files
// it cannot use.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"

namespace fs = std::filesystem;
using namespace Orvanta;
using namespace OrvantaTest;

namespace {

Dib* readPicture(const std::string& path) {
    auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(path)));
    return codec->read(CString::fromUtf8(path), nullptr, 0, 0);
}

class PictureCommands : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
        orvantaIUInit();
        fs::create_directory(in);
    }
    void TearDown() override { orvantaIUDeInit(); }
    // A test file copied into the temporary folder.
    std::string copyOf(const std::string& name, const std::string& as) {
        writeFileBytes(dir.file(as), readFileBytes(testDataPath(name)));
        return dir.file(as);
    }
    // What the command printed on success, or on failure its status and messages.
    std::string run(const std::string& arguments) {
        const ToolRun r = runTool(arguments);
        return r.status == 0 ? r.output : std::to_string(r.status) + ": " + r.errors;
    }
    // The names in a folder, each checked to be a whole picture of the type inside the box (a
    // temporary file left behind would not be).
    std::vector<std::string> picturesIn(const std::string& folder, int expectedType, int box) {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder)) {
            int type = 0, width = 0, height = 0;
            const bool read =
                orvantaIUGetImageFileInformationU8(entry.path().c_str(), &type, &width, &height, nullptr);
            EXPECT_TRUE(read && type == expectedType && width > 0 && width <= box && height <= box)
                << entry.path();
            names.push_back(entry.path().filename());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    void link(const std::string& testFile, const std::string& name) {
        fs::create_symlink(testDataPath(testFile), in + "/" + name);
    }
    TempDir dir;
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg"), in = dir.file("in"),
                      out = dir.file("out"), small = testDataPath("bmp/rgb24-photo-119x96-pad3.bmp"),
                      eyes = testDataPath("redeye/redeye-boldredeye-576x433.bmp");
};

}  // namespace

TEST_F(PictureCommands, EachCommandPrintsWhatItDidOrFailsWithTheReason) {
    ASSERT_EQ(0, mkfifo(dir.file("pipe.jpg").c_str(), 0600));  // waiting for a writer would hang
    const std::string missing = "' '" + dir.file("no/x");      // a folder that is not there
    const std::string aligned = copyOf("jpeg/canon-ixus-640x480.jpg", "photo.jpg"),
                      ragged = copyOf("jpeg/sony-dsc-hx5v-730x547.jpg", "ragged.jpg"),
                      damaged = copyOf("jpeg-awkward/truncated-baseline-bluesquare.jpg", "damaged.jpg"),
                      before = readFileBytes(damaged);
    // How the output (or the status and messages of a failure) begins.
    const std::pair<std::string, std::string> cases[] = {
        {"info '" + small + "'", small + "\tbmp\t119\t96\thigh\n"},
        {"info '" + dir.file("pipe.jpg") + "'",
         "1: orvanta info: '" + dir.file("pipe.jpg") + "': not a regular file"},
        {"convert '" + photo + "' '" + out + ".jpg'", out + ".jpg\t1\tcopied\n"},
        {"convert '" + photo + "' '" + out + ".tif' --max 320x320 --quality high",
         out + ".tif\t12\tformat-changed,made-smaller\n"},
        {"convert '" + photo + "' '" + out + "2.jpg' --max 100x100",
         out + "2.jpg\t24\tmade-smaller,quality-changed\n"},
        {"convert '" + photo + "' '" + out + ".png'", "1: orvanta convert: cannot convert '"},
        {"thumb '" + photo + "' '" + out + "1.jpg'", out + "1.jpg\t160\t120\tembedded\n"},
        {"thumb '" + photo + "' '" + out + "2.jpg' --no-embedded --box 100x100",
         out + "2.jpg\t100\t75\tdecoded\n"},
        {"thumb '" + photo + "' '" + out + ".bmp' --box 64x64", out + ".bmp\t64\t48\tembedded\n"},
        {"thumb '" + testDataPath("jpeg/orientation-1-landscape.jpg") + "' '" + out + "3.jpg'",
         out + "3.jpg\t160\t106\tdecoded\n"},  // no thumbnail in the file
        {"thumb '" + dir.file("clip.mov") + "' '" + out + "4.jpg' --box 80x80",
         out + "4.jpg\t80\t60\tstock\n"},  // a video is never opened: the host's film frame
        {"rotate '" + aligned + "' 90", aligned + "\t480\t640\n"},
        {"rotate '" + ragged + "' 270", ragged + "\t547\t720\tedge blocks dropped\n"},
        {"rotate '" + aligned + "' 45", "2: usage: orvanta rotate FILE 90|180|270"},
        {"rotate '" + small + "' 90", "1: orvanta rotate: '" + small + "': only JPEG files turn"},
        {"rotate '" + damaged + "' 90",
         "1: orvanta rotate: '" + damaged + "' cannot be turned: the picture data is damaged"},
        // Nothing written is a failure, with the system's reason (each writer's reason is the
        // library's, checked there).
        {"convert '" + photo + missing + ".jpg' --max 320x320", "1: orvanta convert: cannot convert '"},
        {"edit '" + small + missing + ".bmp' bw", "1: orvanta edit: cannot write '"},
        {"edit '" + dir.file("missing.bmp") + "' '" + out + ".bmp' bw", "1: orvanta edit: cannot read '"},
        {"edit '" + small + "' '" + out + ".xyz' bw", "1: orvanta edit: no codec for '"},
        {"edit '" + small + "'", "2: usage: orvanta edit"},
        {"batch-convert '" + in + "'", "2: usage: orvanta batch-convert"},
        {"batch-convert '" + in + "' '" + out + "' --jobs 0", "2: usage: orvanta batch-convert"},
        {"batch-convert '" + in + "' '" + in + "'", "1: orvanta batch-convert: the destination must not"},
        {"convert '" + photo + "' x.jpg --quality best", "2: orvanta convert: bad argument"},
        {"info --help", "usage: orvanta info FILE..."},
        {"--version", "orvanta " ORVANTA_PROJECT_VERSION "\n"},
        {"no-such-command", "2: orvanta: unknown command"},
    };
    for (const auto& [arguments, expected] : cases) {
        const std::string said = run(arguments);
        EXPECT_EQ(0u, said.find(expected)) << arguments << "\n" << said;
        const bool nothingThere = arguments.find(missing) != std::string::npos;
        EXPECT_TRUE(!nothingThere || said.find("': the file or folder does not exist") != std::string::npos)
            << said;
    }
    EXPECT_FALSE(fs::exists(out)) << "no folder is made for a batch refused";
    EXPECT_EQ(before, readFileBytes(damaged));
}

// The host loads a system library on the first call into it: a help text or a JPEG's header load
// none beyond the linked libjpeg; its thumbnail, and its turn (which writes the turned file a new
// thumbnail), libexif; the rest (ICU, GIO, libtiff, pixman, the display's libraries) wait.
TEST_F(PictureCommands, ACommandLoadsOnlyTheSystemLibrariesItUses) {
    const struct {
        std::string arguments;
        std::string loaded;  // the libraries loaded, without their versions, sorted, each followed by a space
    } cases[] = {
        {"--help", ""},
        {"help thumb", ""},
        {"info '" + photo + "'", ""},
        {"thumb '" + photo + "' '" + out + ".jpg'", "libexif "},
        {"rotate '" + copyOf("jpeg/canon-ixus-640x480.jpg", "turn.jpg") + "' 90", "libexif "},
    };
    for (const auto& c : cases) {
        const ToolRun r = runShell("LD_DEBUG=files {tool} " + c.arguments + " 2>&1 >/dev/null");
        // Lines such as "file=libjpeg.so.62 [0];  dynamically loaded by /.../liborvanta.so.1 [0]" (by
        // the sanitizer's runtime, which sees every dlopen, in a sanitized build).
        std::vector<std::string> loaded;
        const std::regex line(R"(file=(\S+) \[0\];\s+dynamically loaded by)");
        for (std::sregex_iterator it(r.output.begin(), r.output.end(), line), end; it != end; ++it)
            loaded.push_back((*it)[1].str().substr(0, (*it)[1].str().find(".so")));
        std::sort(loaded.begin(), loaded.end());
        std::string names;
        for (const std::string& name : loaded) names += name + " ";
        EXPECT_EQ(c.loaded, names) << c.arguments;
    }
}

TEST_F(PictureCommands, EditsEqualTheLibrarysOperationsAndReportTheHistory) {
    using Make = std::function<EditingOp*()>;
    const Make turn = [] { return RotateOp::create(90); }, fix = [] { return PicFixOp::create(); };
    // A pupil, as fractions of the picture.
    const auto pupil = [](double x) -> Make {
        return [x] { return RedeyeOp::create(DibPoint(x, 0.4469), 36); };
    };
    const struct {
        std::string source, operations;
        std::optional<std::vector<Make>> expected;  // none: the pixels are not compared
        std::string history;                        // size, then the undo, redo and retired counts
    } cases[] = {
        {eyes, "rotate=90 mirror=v undo", {{turn}}, "433\t576\tundo 1\tredo 1\tretired 0"},
        {eyes, "picfix", {{fix}}, "576\t433\tundo 1\tredo 0\tretired 0"},
        {eyes, "picfix undo", {{}}, "576\t433\tundo 0\tredo 1\tretired 0"},
        {eyes,
         "redeye=0.2786,0.4469,36 redeye=0.7509,0.4469,36",
         {{pupil(0.2786), pupil(0.7509)}},
         "576\t433\tundo 2\tredo 0\tretired 0"},
        {eyes, "redeye=0.5,0.2,20", {{}}, "576\t433\tundo 0\tredo 0\tretired 0"},  // skin: nothing changes
        {small, "--undo-limit=1 mirror=h sepia crop=0,0,0.5,0.5", {}, "59\t48\tundo 1\tredo 0\tretired 2"},
        {small, "bw downsize=30x30:1 colorize=0.6,0.5,0.4", {}, "30\t24\tundo 1\tredo 0\tretired 0"},
    };
    for (const auto& c : cases) {
        const ToolRun r = runTool("edit '" + c.source + "' '" + out + ".bmp' " + c.operations);
        ASSERT_EQ(0, r.status) << r.errors;
        EXPECT_EQ(out + ".bmp\t" + c.history + "\n", r.output);
        if (!c.expected) continue;
        OwnedPtr<EditableDib> expected(new EditableDib(OwnedPtr<Dib>(readPicture(c.source))));
        for (const Make& make : *c.expected) expected->doOp(OwnedPtr<EditingOp>(make()));
        // Not EXPECT_EQ: its report of two differing pictures would take gigabytes.
        EXPECT_TRUE(packedPixels(*expected) == packedPixels(*OwnedPtr<Dib>(readPicture(out + ".bmp"))))
            << c.operations;
    }
    const std::string edit = "edit '" + small + "' '" + out + ".bmp' ";
    for (const char* operations :
         {"rotate=45", "crop=0.5,0,0.2,1", "colorize=0,0.5,0.5", "downsize=10", "redeye", "redeye=0.5",
          "redeye=1.5,0.5", "redeye=0.5,-0.1", "redeye=0.5,0.5,-3", "redeye=0.5,0.5,2.5", "redeye=a,b",
          "redeye=0.5,0.5,10,4", "picfix=1"})
        EXPECT_EQ(0u, run(edit + operations).find("2: orvanta edit: bad operation")) << operations;
}

TEST_F(PictureCommands, AnEditedJpegKeepsTheMetadataOfItsSource) {
    // This camera file begins with its EXIF segment, right after the start marker.
    const std::string source = readFileBytes(photo);
    ASSERT_EQ('\xE1', source[3]);
    const std::string exif = source.substr(
        2, ((static_cast<unsigned char>(source[4]) << 8) | static_cast<unsigned char>(source[5])) + 2);
    ASSERT_EQ(0, runTool("edit '" + photo + "' '" + out + ".jpg' rotate=90").status);
    EXPECT_EQ(exif, readFileBytes(out + ".jpg").substr(2, exif.size())) << "first, byte for byte";
    EXPECT_EQ(CSize(480, 640), OwnedPtr<Dib>(readPicture(out + ".jpg"))->getSize());
}

TEST_F(PictureCommands, AnEditInPlaceTurnsTheFileLosslesslyOrEncodesItAnewKeepingTheMetadata) {
    const std::string twice = copyOf("jpeg/canon-ixus-640x480.jpg", "twice.jpg"),
                      half = copyOf("jpeg/canon-ixus-640x480.jpg", "half.jpg"),
                      edited = copyOf("jpeg/canon-eos7d-photoshop-allsegs.jpg", "edited.jpg");
    EXPECT_EQ(twice + "\t640\t480\tundo 2\tredo 0\tretired 0\n",
              run("edit '" + twice + "' '" + twice + "' rotate=90 mirror=h undo rotate=90"));
    EXPECT_EQ(half + "\t640\t480\n", run("rotate '" + half + "' 180"));
    EXPECT_EQ(readFileBytes(half), readFileBytes(twice)) << "turned in the file, as rotate turns it";
    EXPECT_EQ(edited + "\t300\t200\tundo 1\tredo 0\tretired 0\n",
              run("edit '" + edited + "' '" + edited + "' downsize=300x300 rotate=90"));
    EXPECT_EQ(out + ".bmp\t160\t106\tembedded\n", run("thumb '" + edited + "' '" + out + ".bmp'"))
        << "encoded anew through the file's history, which makes a new EXIF thumbnail";
    const std::string bmp = copyOf("bmp/rgb24-photo-119x96-pad3.bmp", "small.bmp");
    EXPECT_EQ(bmp + "\t96\t119\tundo 1\tredo 0\tretired 0\n",
              run("edit '" + bmp + "' '" + bmp + "' rotate=90"));
}

TEST_F(PictureCommands, RotationsStartedTogetherAddUp) {
    // Three megapixels, so that the turns overlap.
    const std::string turned = copyOf("jpeg/casio-ex-z3-2048x1536.jpg", "photo.jpg"),
                      reference = copyOf("jpeg/casio-ex-z3-2048x1536.jpg", "reference.jpg");
    ASSERT_EQ(0, runTool("rotate '" + reference + "' 270").status);
    // Three quarter turns at once: each must turn what the one before it left.
    const std::string turn = "({tool} rotate '" + turned + "' 90 >/dev/null || echo failed)";
    EXPECT_EQ("", runShell(turn + " & " + turn + " & " + turn + " & wait").output);
    EXPECT_TRUE(packedPixels(*OwnedPtr<Dib>(readPicture(reference))) ==
                packedPixels(*OwnedPtr<Dib>(readPicture(turned))));
}

TEST_F(PictureCommands, OnAFullDiskEveryCommandSaysSoAndLeavesThePhotoWhole) {
    // A small file system of its own on $3, filled up, in a private mount namespace: $1 the photo,
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
    fs::create_directory(dir.file("disk"));
    const ToolRun r = runShell("unshare -rm sh '" + dir.file("full.sh") + "' '" + photo + "' {tool} '" +
                               dir.file("disk") + "'");
    if (r.output.find("mounted") == std::string::npos) GTEST_SKIP() << "no private mount here: " << r.errors;
    const std::regex noSpace("no space left on the device");
    EXPECT_EQ(5, std::distance(std::sregex_iterator(r.errors.begin(), r.errors.end(), noSpace), {}))
        << r.errors;
    EXPECT_NE(std::string::npos, r.output.find("unchanged"));
}

TEST_F(PictureCommands, BatchConvertsEveryReadablePictureIntoTheBoxAndReportsTheRest) {
    link("jpeg/canon-powershot-s40-2272x1704.jpg", "a.jpg");
    link("jpeg/canon-powershot-a85-orient8.jpg", "b.jpg");
    link("jpeg/sony-dsc-hx5v-730x547.jpg", "c.jpg");
    writeFileBytes(in + "/broken.jpg", std::string("\xFF\xD8\xFF\xE0 not really a picture", 26));
    const ToolRun r = runTool("batch-convert '" + in + "' '" + out + "' --max 160x160 --jobs 2");
    EXPECT_EQ(1, r.status);
    EXPECT_NE(std::string::npos, r.output.find("3 of 4 files converted")) << r.output;
    EXPECT_NE(std::string::npos, r.errors.find("cannot convert " + in + "/broken.jpg")) << r.errors;
    EXPECT_EQ((std::vector<std::string>{"a.jpg", "b.jpg", "c.jpg"}), picturesIn(out, 1, 160));
    EXPECT_EQ(1,
              runTool("batch-convert '" + in + "' '" + dir.file("bmp") + "' --max 200x200 --to bmp").status);
    EXPECT_EQ((std::vector<std::string>{"a.bmp", "b.bmp", "c.bmp"}), picturesIn(dir.file("bmp"), 3, 200));
}

TEST_F(PictureCommands, AnInterruptedBatchKeepsTheFinishedFilesWholeAndSaysHowMany) {
    for (int i = 0; i < 200; ++i)
        link("large/canon-22mp-5760x3840-iptc-xmp.jpg", std::to_string(1000 + i) + ".jpg");
    // Ctrl-C once two pictures are there, as a user who changed their mind. Job control keeps the
    // shell from ignoring the interrupt for the batch it starts.
    writeFileBytes(dir.file("interrupt.sh"), R"sh(set -m
        "$1" batch-convert "$2" "$3" --max 160x160 --jobs 2 & batch=$!
        until [ "$(ls "$3" 2>/dev/null | wc -l)" -ge 2 ] || ! kill -0 $batch; do sleep 0.01; done
        kill -INT $batch; wait $batch; echo "status $?")sh");
    const ToolRun r = runShell("bash '" + dir.file("interrupt.sh") + "' {tool} '" + in + "' '" + out + "'");
    std::smatch match;
    ASSERT_TRUE(std::regex_search(r.output, match, std::regex("interrupted; (\\d+) of 200 files converted")))
        << r.output;
    EXPECT_NE(std::string::npos, r.output.find("status 130"));
    const std::size_t converted = picturesIn(out, 1, 160).size();
    EXPECT_EQ(std::stoul(match[1]), converted) << "the count is that of the files left";
    EXPECT_LT(converted, 200u);
}
