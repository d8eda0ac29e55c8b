// Picture files through the registry: the lossless codecs (BMP, TIFF) against ImageMagick and by
// their bytes, what every reader does with a pipe, a folder or a file cut short, conversions and
// their flags, and the flat interface.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/ResourceModule.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr int kCopied = ImageCodec::kConvertCopied, kFormat = ImageCodec::kConvertFormatChanged;
constexpr int kSmaller = ImageCodec::kConvertMadeSmaller, kQuality = ImageCodec::kConvertQualityChanged;

class ImageFiles : public ::testing::Test {
protected:
    void SetUp() override { orvantaIUInit(); }
    ImageCodec* codecFor(const std::string& name) {
        return static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(name)));
    }
    Dib* read(const std::string& path) {
        return codecFor(path)->read(CString::fromUtf8(path), nullptr, 0, 0);
    }
    int convert(const std::string& source, const std::string& destination, int maxWidth,
                ImageQuality quality) {
        // Into a square box: a free side would make the decoder reduce by eight.
        return ImageCodec::downsizeAndConvertFile(CString::fromUtf8(source), dir.wide(destination), maxWidth,
                                                  maxWidth, quality);
    }
    TempDir dir;
};

// The ways a codec reads a file by name: 0 its header, 1 whole, 2 its EXIF thumbnail, 3 its segments.
// True when it gave something.
bool readAs(int way, const std::string& path) {
    auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(path)));
    const CString wide = CString::fromUtf8(path);
    CSize size;
    try {
        if (way == 0) return codec->getInfo(wide, &size, nullptr);
        if (way == 1) return OwnedPtr<Dib>(codec->read(wide, nullptr, 0, 0)) != nullptr;
        return way == 2 ? OwnedPtr<Dib>(codec->readEmbeddedThumbnail(wide)) != nullptr
                        : !JpegMarkerMap(wide).isEmpty();
    } catch (...) {
        return false;
    }
}
const std::pair<std::string, int> kReaders[] = {{"jpg", 0}, {"jpg", 1}, {"jpg", 2}, {"jpg", 3},
                                                {"tif", 0}, {"tif", 1}, {"bmp", 0}, {"bmp", 1}};

// Another program cuts the file to 100 bytes just after the codec has begun to read it, or mapped it.
class Truncator : public Platform::FileSystem {
public:
    explicit Truncator(std::string path) : mPath(std::move(path)) { install(this); }
    ~Truncator() override { install(nullptr); }
    ssize_t read(int fd, void* buffer, std::size_t size) override {
        const ssize_t n = FileSystem::read(fd, buffer, std::min<std::size_t>(size, 4096));
        return ::truncate(mPath.c_str(), 100) == 0 ? n : -1;
    }
    void* map(std::size_t size, int protection, int flags, int fd, off_t offset) override {
        void* view = FileSystem::map(size, protection, flags, fd, offset);
        return ::truncate(mPath.c_str(), 100) == 0 ? view : nullptr;
    }

private:
    std::string mPath;
};

}  // namespace

TEST_F(ImageFiles, TrueColourBmpFilesAndEveryTiffReadAsTheReferencesReadThem) {
    ORVANTA_REQUIRE_TESTDATA();
    // rgb32-bitfields keeps red in the top byte and green in twelve bits; the V5 file has an alpha mask.
    for (const char* name :
         {"rgb24-bottomup-127x64-pad3.bmp", "rgb24-topdown-6x6.bmp", "rgb24-bottomup-6x6.bmp",
          "rgb24-photo-119x96-pad3.bmp", "rgb32-127x64.bmp", "rgb32-bitfields.bmp", "rgba32-v5-alpha.bmp"}) {
        OwnedPtr<Dib> dib = read(testDataPath(std::string("bmp/") + name));
        EXPECT_LT(dib->getBitmapInfoHeader()->biHeight, 0) << "top-down";
        const auto reference = referenceDecode(testDataPath(std::string("bmp/") + name), 3);
        EXPECT_TRUE(!reference || pictureOf(*dib).bgr == *reference) << name;
    }
    for (const char* name : {"pal8-127x64.bmp", "rgb16-565.bmp", "rle8.bmp", "embedded-jpeg-bi-jpeg.bmp",
                             "bad-reallybig-3000000x2000000.bmp"})
        EXPECT_FALSE(OwnedPtr<Dib>(read(testDataPath(std::string("bmp/") + name)))) << name;
    EXPECT_THROW(read(testDataPath("bmp/bad-bitcount.bmp")), Exception);  // 30000 bits per pixel
    for (const std::string& path : testDataFiles("tiff", {".tif", ".tiff"})) {
        CSize size;
        OwnedPtr<Dib> dib = codecFor(path)->read(CString::fromUtf8(path), &size, 10, 10);
        const std::vector<Picture> references = referenceDecodes(path);
        ASSERT_EQ(!references.empty(), dib != nullptr) << path;
        if (!dib) continue;
        EXPECT_EQ(size, dib->getSize()) << "the limits are ignored";
        double db = 0;
        for (const Picture& reference : references) db = std::max(db, psnr(pictureOf(*dib), reference));
        EXPECT_GE(db, 40.0) << path;
    }
}

TEST_F(ImageFiles, AWrittenBmpIsBottomUpWithTheClassicHeaderAndATiffIsRgbPackBits) {
    OwnedPtr<Dib> small = makePatternDib(3, 2, 3);
    ASSERT_EQ(1, codecFor("x.bmp")->write(small, dir.wide("small.bmp"), ImageQualityDraft));
    const std::string bytes = readFileBytes(dir.file("small.bmp"));
    // "BM", the file size, the pixels' offset; a 40-byte header of 3 x 2; rows of 12 bytes, bottom first.
    EXPECT_EQ(std::string("BM\x4E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x03\0\0\0\x02\0\0\0", 26),
              bytes.substr(0, 26));
    EXPECT_EQ(bytes.substr(54), std::string(reinterpret_cast<char*>(small->getBits()) + 12, 12) +
                                    std::string(reinterpret_cast<char*>(small->getBits()), 12));
    // Three and four bytes a pixel, and grey, which a TIFF spreads to the three colours.
    OwnedPtr<Dib> greyAsColour = makeDib(37, 23, [](int x, int y) {
        return Rgb{x * 7 - y, x * 7 - y, x * 7 - y};
    });
    OwnedPtr<Dib> grey = ByteDib::create(37, 23);
    for (int y = 0; y < 23; ++y)
        for (int x = 0; x < 37; ++x)
            grey->getBits()[y * grey->getStride() + x] = static_cast<unsigned char>(x * 7 - y);
    OwnedPtr<Dib> three = makePatternDib(127, 23, 3), four = makePatternDib(128, 23, 4);
    for (const auto& [name, picture, expected] :
         {std::tuple{"a.bmp", three.get(), three.get()}, std::tuple{"b.bmp", four.get(), four.get()},
          std::tuple{"a.tif", three.get(), three.get()}, std::tuple{"b.tif", four.get(), four.get()},
          std::tuple{"c.tif", grey.get(), greyAsColour.get()}}) {
        ASSERT_GT(codecFor(name)->write(picture, dir.wide(name), ImageQualityDraft), 0);
        OwnedPtr<Dib> back = read(dir.file(name));
        EXPECT_TRUE(pictureOf(*back).bgr == pictureOf(*expected).bgr) << name;
        // ImageMagick takes the fourth byte of a 32-bit BMP for alpha: that one is only read back.
        const auto reference = std::string(name) == "b.bmp" ? std::nullopt : magickDecode(dir.file(name));
        EXPECT_TRUE(!reference || reference->bgr == pictureOf(*expected).bgr) << name;
    }
    const auto info = capture("tiffinfo '" + dir.file("c.tif") +
                              "' | grep -c 'PackBits\\|Samples/Pixel: 3\\|Bits/Sample: 8'");
    EXPECT_EQ("3\n", info.value_or("3\n"));
}

TEST_F(ImageFiles, APipeOrAFolderIsRefusedAtOnceByEveryReader) {
    alarm(60);  // a reader that waited for the pipe's writer would hang here for ever
    for (const auto& [extension, way] : kReaders) {
        const std::string pipe = dir.file("pipe." + extension), folder = dir.file("folder." + extension);
        mkfifo(pipe.c_str(), 0644);
        mkdir(folder.c_str(), 0755);
        for (const auto& [path, error] :
             {std::pair{pipe, Platform::kErrorNotAFile}, std::pair{folder, EISDIR}}) {
            Platform::setLastError(0);
            EXPECT_FALSE(readAs(way, path)) << path;
            EXPECT_EQ(error, Platform::getLastError()) << path;
        }
    }
    alarm(0);
}

TEST_F(ImageFiles, AFileHeldOpenByAnotherReaderStillReadsAndOneCutShortWhileReadFailsCleanly) {
    OwnedPtr<Dib> pattern = makePatternDib(480, 320, 3);
    for (const auto& [extension, way] : kReaders) {
        const std::string path = dir.file("picture." + extension);
        ASSERT_GT(codecFor(path)->write(pattern, CString::fromUtf8(path), ImageQualityHigh), 0);
        // The reader holds the file open without sharing; the codecs take no lock to read.
        const bool alone = readAs(way, path);
        OwnedPtr<File> other = File::create(CString::fromUtf8(path));
        ASSERT_TRUE(other->open(true));
        EXPECT_EQ(alone, readAs(way, path)) << path;
        Truncator truncator(path);
        readAs(way, path);  // whatever it gives, the process lives on
    }
}

TEST_F(ImageFiles, ConversionFlagsSayWhatWasDone) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    const std::string allSegments = testDataPath("jpeg/canon-eos7d-photoshop-allsegs.jpg");
    const std::string casio = testDataPath("jpeg/casio-ex-z3-2048x1536.jpg");
    const struct {
        std::string source, destination;
        int maxWidth;
        ImageQuality quality;
        int flags;
        CSize size;
    } cases[] = {
        {photo, "copy.jpg", -1, ImageQualityDraft, kCopied, {640, 480}},  // byte for byte
        {photo, "copy2.jpeg", 640, ImageQualityNormal, kCopied, {640, 480}},
        {photo, "out.bmp", 1000, ImageQualityHigh, kFormat, {640, 480}},
        {photo, "out.tif", -1, ImageQualityDraft, kFormat | kQuality, {640, 480}},
        {allSegments, "small.jpg", 160, ImageQualityNormal, kSmaller | kQuality, {106, 160}},
        {testDataPath("tiff/rgba-8bit-le-162x20.tif"), "tiff.jpg", -1, ImageQualityHigh, kFormat, {162, 20}},
        {casio, "casio.bmp", 256, ImageQualityHigh, kSmaller | kFormat, {256, 192}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.flags, convert(c.source, c.destination, c.maxWidth, c.quality)) << c.destination;
        EXPECT_EQ(c.size, OwnedPtr<Dib>(read(dir.file(c.destination)))->getSize()) << c.destination;
    }
    EXPECT_EQ(readFileBytes(photo), readFileBytes(dir.file("copy.jpg")));
    EXPECT_TRUE(pictureOf(*OwnedPtr<Dib>(read(dir.file("out.bmp")))).bgr ==
                pictureOf(*OwnedPtr<Dib>(read(dir.file("out.tif")))).bgr);
    // A JPEG shrunk from a JPEG keeps its metadata; one from a TIFF is an ordinary colour JPEG.
    const std::string before = readFileBytes(allSegments), after = readFileBytes(dir.file("small.jpg"));
    for (int marker : {0xE1, 0xED, 0xFE})
        EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
    EXPECT_EQ((std::vector<std::string>{"2x2", "1x1", "1x1"}), jpegSampling(after)) << "normal quality";
    EXPECT_EQ(3u, jpegSampling(readFileBytes(dir.file("tiff.jpg"))).size()) << "three components, not four";
    // The shrunk picture looks like ImageMagick's box-filtered one.
    const std::string reference = dir.file("reference.ppm");
    if (!capture("/usr/bin/convert '" + casio + "' -filter box -resize 256x192! '" + reference + "'")) return;
    EXPECT_GE(psnr(pictureOf(*OwnedPtr<Dib>(read(dir.file("casio.bmp")))), magickDecode(reference).value()),
              30.0);
}

TEST_F(ImageFiles, ANothingWrittenConversionGivesZeroWithTheReasonAndASourceMayBeItsDestination) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(0, convert(photo, "out.png", -1, ImageQualityHigh));
    EXPECT_EQ(0, convert(testDataPath("jpeg-awkward/missing-sos.jpg"), "out.bmp", -1, ImageQualityHigh));
    // Each writer (a copy, BMP, TIFF, a JPEG keeping metadata) into a missing folder, onto a full disk.
    for (const auto& [name, maxWidth] :
         {std::pair{"copy.jpg", -1}, {"x.bmp", -1}, {"x.tif", -1}, {"x.jpg", 320}}) {
        Platform::setLastError(0);
        EXPECT_EQ(0, convert(photo, std::string("no/such/") + name, maxWidth, ImageQualityHigh)) << name;
        EXPECT_EQ(ENOENT, Platform::getLastError()) << name;
        FaultyFileSystem disk;
        disk.failWritesAfter(2000);
        EXPECT_EQ(0, convert(photo, name, maxWidth, ImageQualityHigh)) << name;
        EXPECT_EQ(ENOSPC, Platform::getLastError()) << name;
    }
    EXPECT_EQ(0u, dir.count());
    writeFileBytes(dir.file("photo.jpg"), readFileBytes(photo));
    EXPECT_EQ(kSmaller, convert(dir.file("photo.jpg"), "photo.jpg", 320, ImageQualityHigh));
    EXPECT_EQ(CSize(320, 240), OwnedPtr<Dib>(read(dir.file("photo.jpg")))->getSize());
}

TEST_F(ImageFiles, TheFlatInterfaceForwardsNeverThrowsAndSaysWhy) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    char text[64];
    EXPECT_EQ(kSmaller | kFormat | kQuality,
              orvantaIUDownsizeAndConvertFileU8(photo.c_str(), dir.file("b.bmp").c_str(), 320, 320, 0));
    EXPECT_EQ(0, orvantaIUGetLastError(text, sizeof text));
    EXPECT_STREQ("", text);
    EXPECT_EQ(0, orvantaIUDownsizeAndConvertFileU8(photo.c_str(), dir.file("no/c.bmp").c_str(), -1, -1, 2));
    EXPECT_EQ(ENOENT, orvantaIUGetLastError(text, sizeof text));
    EXPECT_STREQ("the file or folder does not exist", text);
    EXPECT_EQ(ENOENT, orvantaIUGetLastError(text, 9));
    EXPECT_STREQ("the file", text) << "cut to the room given";
    // A garbled file throws inside: a failure for a reason of the data.
    writeFileBytes(dir.file("garbled.jpg"), readFileBytes(photo).substr(0, 700) + std::string(5000, '\xFF'));
    EXPECT_EQ(0, orvantaIUDownsizeAndConvertFileU8(dir.file("garbled.jpg").c_str(), dir.file("c.bmp").c_str(),
                                                   -1, -1, 2));
    EXPECT_EQ(Platform::kErrorDamagedData, orvantaIUGetLastError(nullptr, 0));
    int type = 0, width = 7, height = 7, quality = -1;
    EXPECT_FALSE(orvantaIUGetImageFileInformationU8("/tmp/notes.txt", &type, &width, &height, &quality));
    // A known type whose size cannot be read answers true with a zero size.
    EXPECT_TRUE(
        orvantaIUGetImageFileInformationU8("/nonexistent/picture.bmp", &type, &width, &height, nullptr));
    EXPECT_EQ(3, type);
    EXPECT_TRUE(orvantaIUGetImageFileInformation(CString::fromUtf8(photo), &type, &width, &height, &quality));
    EXPECT_EQ((std::vector<int>{1, 640, 480, 2}), (std::vector<int>{type, width, height, quality}));
}

TEST(CodecRegistry, LooksUpByExtensionPathOrStringResource) {
    OwnedPtr<Codec> first = BmpCodec::create();
    CodecManager::registerCodec(first, {u"tstj", u"TSTJPEG"});
    for (const char16_t* name : {u"tstj", u".TSTJ", u"/photos.2004/HOLIDAY.TstJ", u"tstjpeg"})
        EXPECT_EQ(CodecManager::getCodec(name), first.get()) << CString(name).toUtf8();
    for (const char16_t* name : {u"photo", u"/a.tstj/file", u"/a/file.", u""})
        EXPECT_EQ(CodecManager::getCodec(name), nullptr);
    // Pointer values below 0x10000 name a string resource.
    Platform::ResourceModule module, *saved = Platform::ResourceModule::current();
    Platform::ResourceModule::setCurrent(&module);
    module.addString(1, u"/scans/page one.TSTJ");
    module.addString(0xffff, u".tstj");
    const auto resource = [](std::uintptr_t id) {
        return CodecManager::getCodec(reinterpret_cast<const char16_t*>(id));
    };
    EXPECT_EQ((std::vector<Codec*>{first.get(), first.get(), nullptr}),
              (std::vector<Codec*>{resource(1), resource(0xffff), resource(4)}));
    Platform::ResourceModule::setCurrent(saved);
}
