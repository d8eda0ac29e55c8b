// Scanners through SANE in the helper process, on SANE's own test backend through a private
// configuration folder: listing and keys, pictures that equal the frames read directly through
// libsane in this process (colour pattern, grey, 1-bit, three-pass, hand scanner), 16 bits skipped,
// a sheet feeder, a jam; and a backend of our own that crashes or hangs, after which the host goes
// on with the crash flag set (in a child process each, since the flag lasts for the process; the
// child ends by _exit, so that it removes none of the parent's temporary folders on its way out).

#include <gtest/gtest.h>
#include <sane/sane.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/ImagingDeviceListener.h"
#include "orvanta/acquire/ScanFrames.h"
#include "orvanta/acquire/TwainCameraUnloader.h"
#include "orvanta/acquire/TwainCameraUnloaderListener.h"
#include "orvanta/acquire/TwainEnumerator.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/SaneHelper.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/FaultyFileSystem.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

const CString kTestKey = u"Noname|frontend-tester|test:0";

struct DirectFrame {
    int format, bytesPerLine, pixelsPerLine, lines, depth;
    std::string bytes;
};

// The frames of one picture read straight from libsane in this process, the options set in order.
std::vector<DirectFrame> readDirectly(const std::vector<std::string>& options) {
    std::vector<DirectFrame> frames;
    // SANE stays initialised for the process: sane_exit would unload the test backend, and what it
    // keeps allocated would then look leaked.
    static const bool initialised = [] {
        SANE_Int version;
        return sane_init(&version, nullptr) == SANE_STATUS_GOOD;
    }();
    SANE_Handle handle;
    if (!initialised || sane_open("test:0", &handle) != SANE_STATUS_GOOD) return frames;
    for (const std::string& assignment : options) {
        const std::string name = assignment.substr(0, assignment.find('='));
        std::string value = assignment.substr(assignment.find('=') + 1);
        for (SANE_Int i = 1; const SANE_Option_Descriptor* o = sane_get_option_descriptor(handle, i); ++i) {
            if (!o->name || name != o->name) continue;
            SANE_Word word = o->type == SANE_TYPE_BOOL    ? value == "yes"
                             : o->type == SANE_TYPE_FIXED ? SANE_FIX(std::atof(value.c_str()))
                                                          : std::atoi(value.c_str());
            value.resize(std::max<std::size_t>(value.size() + 1, o->size));
            sane_control_option(handle, i, SANE_ACTION_SET_VALUE,
                                o->type == SANE_TYPE_STRING ? static_cast<void*>(value.data()) : &word,
                                nullptr);
        }
    }
    for (bool last = false; !last;) {
        SANE_Parameters p;
        if (sane_start(handle) != SANE_STATUS_GOOD || sane_get_parameters(handle, &p) != SANE_STATUS_GOOD)
            break;
        DirectFrame frame{p.format, p.bytes_per_line, p.pixels_per_line, p.lines, p.depth, {}};
        SANE_Byte buffer[32768];
        SANE_Int got;
        while (sane_read(handle, buffer, sizeof buffer, &got) == SANE_STATUS_GOOD)
            frame.bytes.append(reinterpret_cast<char*>(buffer), static_cast<std::size_t>(got));
        if (frame.lines < 0) frame.lines = static_cast<int>(frame.bytes.size()) / frame.bytesPerLine;
        frames.push_back(std::move(frame));
        last = p.last_frame;
    }
    sane_cancel(handle);
    sane_close(handle);
    return frames;
}

// The colour of pixel (x, y), red, green, blue, 0..255, from SANE's own frames of a picture.
std::array<int, 3> saneColour(const std::vector<DirectFrame>& frames, int x, int y) {
    std::array<int, 3> rgb{};
    for (const DirectFrame& f : frames) {
        const auto* row = reinterpret_cast<const unsigned char*>(f.bytes.data()) +
                          static_cast<std::size_t>(y) * f.bytesPerLine;
        const int sample =
            f.depth == 1 ? ((row[x / 8] >> (7 - x % 8)) & 1 ? 0 : 255) : row[f.format == 1 ? x * 3 : x];
        if (f.format == 0)
            rgb = {sample, sample, sample};
        else if (f.format == 1)
            rgb = {row[x * 3], row[x * 3 + 1], row[x * 3 + 2]};
        else
            rgb[f.format - 2] = sample;
    }
    return rgb;
}

struct Collected : TwainCameraUnloaderListener {
    explicit Collected(int stopAt = 0) : stopAt(stopAt) {}
    bool onImage(TwainImageItem* item) override {
        paths.push_back(item->getPath().toUtf8());
        return static_cast<int>(paths.size()) != stopAt;
    }
    ~Collected() override {
        for (const std::string& p : paths) fs::remove(p);
    }
    int stopAt;
    std::vector<std::string> paths;
};

class ScannerTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (Platform::SaneHelper::helperPath().empty()) GTEST_SKIP() << "orvanta-sane-helper is not built";
        registerAcquireCodecs();
        TwainSupport::setTwainMode(TwainSupport::kTwainAlways);
    }
    void TearDown() override { TwainSupport::setTwainMode(TwainSupport::kTwainAutomatic); }
    PrivateSane mSane;
};

// A scan's frames gathered whole, as the helper sends them.
struct Gathered : Platform::SaneHelper::Sink {
    void beginFrame(const Platform::SaneHelper::Frame& f) override {
        frames.push_back({f.format, f.bytesPerLine, f.pixelsPerLine, f.lines, f.depth, {}});
        bytes.emplace_back();
    }
    void addRows(const unsigned char* rows, int count) override {
        bytes.back().append(reinterpret_cast<const char*>(rows),
                            static_cast<std::size_t>(count) * frames.back().bytesPerLine);
    }
    void endFrame(int lines) override { frames.back().lines = lines; }
    bool endImage() override { return true; }
    Dib* toDib() {
        for (std::size_t i = 0; i < frames.size(); ++i) frames[i].bytes = bytes[i];
        return ScanFrames::toDib(frames);
    }
    std::vector<ScanFrames::Frame> frames;
    std::vector<std::string> bytes;
};

}  // namespace

// Each kind of picture crosses the helper unchanged, and the unloader's JPEG (written row by row as
// the scan comes for single frames, from the whole picture otherwise) is byte for byte the codec's
// write of the frames libsane gives; a full disk stops the scan and leaves nothing.
TEST_F(ScannerTest, PicturesEqualTheFramesReadThroughLibsane) {
    auto* codec = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    const TempDir folder;
    // The test backend keeps its options from one opening to the next in this process: every case
    // sets them all, the mode first (three-pass exists in colour only).
    for (const std::vector<std::string>& specific : std::vector<std::vector<std::string>>{
             {"mode=Color"},
             {"mode=Gray"},
             {"mode=Gray", "depth=1", "test-picture=Grid"},
             {"mode=Color", "three-pass=yes", "three-pass-order=GBR", "resolution=50"},
             {"mode=Color", "hand-scanner=yes", "resolution=50"}}) {
        std::vector<std::string> options = {
            specific[0],    "depth=8", "three-pass=no", "hand-scanner=no", "test-picture=Color pattern",
            "resolution=75"};
        options.insert(options.end(), specific.begin() + 1, specific.end());
        const std::vector<DirectFrame> direct = readDirectly(options);
        ASSERT_FALSE(direct.empty()) << options.back();
        int status = 0;
        Gathered sent;
        ASSERT_EQ(Platform::SaneHelper::scan("test:0", options, &sent, &status), Platform::SaneHelper::kDone)
            << options.back();
        OwnedPtr<Dib> scanned = sent.toDib();
        ASSERT_TRUE(scanned) << options.back();
        ASSERT_EQ(scanned->getSize(), CSize(direct[0].pixelsPerLine, direct[0].lines));
        int differing = 0;
        const int stride = scanned->getStride();
        for (int y = 0; y < direct[0].lines; ++y)
            for (int x = 0; x < direct[0].pixelsPerLine; ++x) {
                const unsigned char* p = scanned->getBits() + static_cast<std::size_t>(y) * stride + x * 3;
                differing += saneColour(direct, x, y) != std::array<int, 3>{p[2], p[1], p[0]};
            }
        EXPECT_EQ(differing, 0) << options[0] << " " << options.back();

        const std::string expected = folder.file("expected.jpg");
        ASSERT_GT(codec->write(scanned, CString::fromUtf8(expected), ImageQualityHigh), 0);
        OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(kTestKey, false);
        scanner->setOptions(options);
        Collected got;
        ASSERT_TRUE(scanner->unload(&got));
        ASSERT_EQ(got.paths.size(), 1u);
        EXPECT_TRUE(readFileBytes(got.paths[0]) == readFileBytes(expected)) << options[0] << " " << options.back();
    }
    // A disk that fills up during the scan: the unload fails, and no file is left.
    {
        const PrivateTemp temp;
        FaultyFileSystem full;
        full.failWritesAfter(20000);
        OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(kTestKey, false);
        scanner->setOptions({"mode=Color", "test-picture=Color pattern", "resolution=75"});
        Collected got;
        EXPECT_FALSE(scanner->unload(&got));
        EXPECT_TRUE(got.paths.empty());
        EXPECT_EQ(temp.count(), 0u);
    }
}

// Devices listed with their SANE names in their keys; a source's pictures written as JPEGs, 16 bits
// skipped, a feeder's sheets, a jam.
TEST_F(ScannerTest, DevicesAreListedAndUnloadWritesJpegsSkipsSixteenBitsFeedsSheetsAndReportsAJam) {
    // Each device as its kind (1, a scanner), port, id and name.
    struct Listed : ImagingDeviceListener {
        bool onDevice(int kind, const CString& name, const CString& port, const CString& id) override {
            ids.push_back(std::to_string(kind) + " " + (port + u" " + id + u" " + name).toUtf8());
            return true;
        }
        std::vector<std::string> ids;
    } listed;
    OwnedPtr<TwainEnumerator>(TwainEnumerator::create())->enumerate(&listed, -1);
    std::sort(listed.ids.begin(), listed.ids.end());
    EXPECT_EQ(listed.ids,
              (std::vector<std::string>{"1 Twain Noname|frontend-tester|test:0 frontend-tester",
                                        "1 Twain Noname|frontend-tester|test:1 frontend-tester",
                                        "1 Twain Orvanta|Crash Tester|orvantacrash:0 Crash Tester"}));
    EXPECT_TRUE(AcquireChooser::isScannerDevice(kSourceImagingDevice, kTestKey));
    EXPECT_FALSE(AcquireChooser::isCameraDevice(kSourceImagingDevice, kTestKey));
    EXPECT_FALSE(AcquireChooser::isScannerDevice(kSourceImagingDevice, u"Noname|frontend-tester|test:9"));
    OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(kTestKey, false);
    ASSERT_TRUE(scanner->isScanner());

    const std::vector<std::string> page = {
        "mode=Color",    "depth=8", "three-pass=no", "hand-scanner=no", "test-picture=Color pattern",
        "resolution=100"};
    {
        Collected got;
        scanner->setOptions(page);
        EXPECT_TRUE(scanner->unload(&got));
        ASSERT_EQ(got.paths.size(), 1u);
        EXPECT_NE(got.paths[0].find("twainImage"), std::string::npos);
        CSize size;
        OwnedPtr<Dib> decoded = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"))
                                    ->read(CString::fromUtf8(got.paths[0]), &size, 0, 0);
        ASSERT_TRUE(decoded);
        const std::vector<DirectFrame> direct = readDirectly(page);
        EXPECT_EQ(decoded->getSize(), CSize(direct[0].pixelsPerLine, direct[0].lines));
    }
    const struct {
        std::vector<std::string> options;
        int stopAt;
        std::size_t pictures;
        bool jammed;
    } cases[] = {
        {{"mode=Color", "depth=16", "resolution=50"}, 0, 0, false},            // 16 bits: skipped
        {{"source=Automatic Document Feeder", "resolution=50"}, 3, 3, false},  // the listener stops
        {{"source=Automatic Document Feeder", "resolution=50"}, 0, 10, false},
        {{"read-return-value=SANE_STATUS_JAMMED", "resolution=50"}, 0, 0, true},
    };
    for (const auto& c : cases) {
        Collected got(c.stopAt);
        scanner->setOptions(c.options);
        EXPECT_EQ(scanner->unload(&got), !c.jammed) << c.options[0];
        EXPECT_EQ(got.paths.size(), c.pictures) << c.options[0];
        EXPECT_EQ(scanner->getLastStatus() == SANE_STATUS_JAMMED, c.jammed) << c.options[0];
    }
    EXPECT_FALSE(TwainSupport::hasTwainCrashed()) << "a jam is no crash";
    TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    EXPECT_FALSE(AcquireChooser::isScannerDevice(kSourceImagingDevice, kTestKey));
}

TEST_F(ScannerTest, CrashingOrHangingDriverLatchesTheFlagAndTheHostGoesOn) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the library has threads of its own here
    for (const char* mode : {"read", "list", "hang"}) {
        EXPECT_EXIT(
            {
                setenv("ORVANTA_CRASH_BACKEND", mode, 1);
                TwainSupport::setHangTimeout(1500);
                OwnedPtr<TwainCameraUnloader> scanner =
                    TwainCameraUnloader::create(u"Orvanta|Crash Tester|orvantacrash:0", false);
                Collected got;
                const auto start = std::chrono::steady_clock::now();
                // A driver that dies while listing is met by the listing; the others by the scan.
                const bool failed = std::string(mode) == "list" ? TwainEnumerator::listDevices().empty()
                                                                : !scanner->unload(&got);
                const bool quick = std::chrono::steady_clock::now() - start < std::chrono::seconds(30);
                // Nothing reaches SANE again: not even the test backend's list.
                const bool silent = TwainEnumerator::listDevices().empty();
                _exit(failed && quick && silent && TwainSupport::hasTwainCrashed() && got.paths.empty() ? 0
                                                                                                        : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << mode;
    }
}
