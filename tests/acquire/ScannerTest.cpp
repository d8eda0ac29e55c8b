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
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/SaneHelper.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

const CString kTestKey = u"Noname|frontend-tester|test:0";

// The frames of one picture read straight from libsane in this process, the options set in order.
std::vector<ScanFrames::Frame> readDirectly(const std::vector<std::string>& options) {
    std::vector<ScanFrames::Frame> frames;
    // SANE stays initialised for the process: sane_exit would unload the test backend, and what it
    // keeps allocated would then look leaked.
    static const bool initialised = [] {
        SANE_Int version;
        return sane_init(&version, nullptr) == SANE_STATUS_GOOD;
    }();
    if (!initialised) return frames;
    SANE_Handle handle;
    if (sane_open("test:0", &handle) == SANE_STATUS_GOOD) {
        for (const std::string& assignment : options) {
            const std::string name = assignment.substr(0, assignment.find('='));
            std::string value = assignment.substr(assignment.find('=') + 1);
            for (SANE_Int i = 1; const SANE_Option_Descriptor* o = sane_get_option_descriptor(handle, i);
                 ++i) {
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
            ScanFrames::Frame frame{p.format, p.bytes_per_line, p.pixels_per_line, p.lines, p.depth, {}};
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
    }
    return frames;
}

// The colour of pixel (x, y), red, green, blue, 0..255, from SANE's own frames of a picture.
std::array<int, 3> saneColour(const std::vector<ScanFrames::Frame>& frames, int x, int y) {
    std::array<int, 3> rgb{};
    for (const ScanFrames::Frame& f : frames) {
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

std::array<int, 3> dibColour(Dib* dib, int x, int y) {
    const int stride = (dib->getSize().cx * 3 + 3) & ~3;
    const unsigned char* p = dib->getBits() + static_cast<std::size_t>(y) * stride + x * 3;
    return {p[2], p[1], p[0]};
}

struct Collected : TwainCameraUnloaderListener {
    bool onImage(TwainImageItem* item) override {
        paths.push_back(item->getPath().toUtf8());
        return static_cast<int>(paths.size()) != stopAt;
    }
    ~Collected() override {
        for (const std::string& p : paths) fs::remove(p);
    }
    std::vector<std::string> paths;
    int stopAt = 0;
};

}  // namespace

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

TEST_F(ScannerTest, DevicesAreListedWithTheirSaneNamesInTheirKeys) {
    struct Listed : ImagingDeviceListener {
        bool onDevice(int kind, const CString& name, const CString& port, const CString& id) override {
            EXPECT_EQ(kind, kScanner);
            EXPECT_EQ(port, u"Twain");
            ids.push_back(id.toUtf8() + " " + name.toUtf8());
            return true;
        }
        std::vector<std::string> ids;
    } listed;
    OwnedPtr<TwainEnumerator> enumerator = TwainEnumerator::create();
    enumerator->enumerate(&listed, -1);
    std::sort(listed.ids.begin(), listed.ids.end());
    EXPECT_EQ(listed.ids, (std::vector<std::string>{"Noname|frontend-tester|test:0 frontend-tester",
                                                    "Noname|frontend-tester|test:1 frontend-tester",
                                                    "Orvanta|Crash Tester|orvantacrash:0 Crash Tester"}));
    EXPECT_TRUE(AcquireChooser::isScannerDevice(kSourceImagingDevice, kTestKey));
    EXPECT_FALSE(AcquireChooser::isCameraDevice(kSourceImagingDevice, kTestKey));
    EXPECT_FALSE(AcquireChooser::isScannerDevice(kSourceImagingDevice, u"Noname|frontend-tester|test:9"));
    EXPECT_FALSE(AcquireChooser::supportsDeleteAfterCopy(kSourceImagingDevice, kTestKey));
    TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    EXPECT_FALSE(AcquireChooser::isScannerDevice(kSourceImagingDevice, kTestKey));
    EXPECT_FALSE(TwainSupport::hasTwainCrashed());
}

TEST_F(ScannerTest, PicturesEqualTheFramesReadThroughLibsane) {
    // The test backend keeps its options from one opening to the next in this process: every case
    // sets them all, the mode first (three-pass exists in colour only).
    const auto picture = [](const std::string& mode, std::vector<std::string> specific) {
        std::vector<std::string> options = {
            "mode=" + mode, "depth=8", "three-pass=no", "hand-scanner=no", "test-picture=Color pattern",
            "resolution=75"};
        options.insert(options.end(), specific.begin(), specific.end());
        return options;
    };
    const std::vector<std::vector<std::string>> cases = {
        picture("Color", {}),
        picture("Gray", {}),
        picture("Gray", {"depth=1", "test-picture=Grid"}),
        picture("Color", {"three-pass=yes", "three-pass-order=GBR", "resolution=50"}),
        picture("Color", {"hand-scanner=yes", "resolution=50"}),
    };
    TempDir frames;
    for (const auto& options : cases) {
        const std::vector<ScanFrames::Frame> direct = readDirectly(options);
        ASSERT_FALSE(direct.empty()) << options.back();
        int status = 0;
        OwnedPtr<Dib> scanned;
        const auto outcome = Platform::SaneHelper::scan(
            "test:0", frames.path(), options,
            [&](const std::vector<Platform::SaneHelper::Frame>& sent) {
                std::vector<ScanFrames::Frame> read;
                for (const auto& s : sent) {
                    read.push_back(
                        {s.format, s.bytesPerLine, s.pixelsPerLine, s.lines, s.depth, readFileBytes(s.path)});
                }
                scanned = ScanFrames::toDib(read);
                return true;
            },
            &status);
        ASSERT_EQ(outcome, Platform::SaneHelper::kDone) << options.back();
        ASSERT_TRUE(scanned) << options.back();
        ASSERT_EQ(scanned->getSize().cx, direct[0].pixelsPerLine);
        ASSERT_EQ(scanned->getSize().cy, direct[0].lines);
        int differing = 0;
        for (int y = 0; y < direct[0].lines; ++y)
            for (int x = 0; x < direct[0].pixelsPerLine; ++x)
                differing += saneColour(direct, x, y) != dibColour(scanned, x, y);
        EXPECT_EQ(differing, 0) << options[0] << " " << options.back();
        EXPECT_EQ(frames.count(), 0u) << "frame files are removed once read";
    }
}

TEST_F(ScannerTest, UnloadWritesJpegsSkipsSixteenBitsFeedsSheetsAndReportsAJam) {
    OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(kTestKey, false);
    ASSERT_TRUE(scanner->isScanner());
    {
        Collected got;
        const std::vector<std::string> page = {
            "mode=Color",    "depth=8", "three-pass=no", "hand-scanner=no", "test-picture=Color pattern",
            "resolution=100"};
        scanner->setOptions(page);
        EXPECT_TRUE(scanner->unload(&got));
        ASSERT_EQ(got.paths.size(), 1u);
        EXPECT_TRUE(got.paths[0].find("twainImage") != std::string::npos);
        auto* jpeg = dynamic_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
        CSize size;
        OwnedPtr<Dib> decoded = jpeg->read(CString::fromUtf8(got.paths[0]), &size, 0, 0);
        ASSERT_TRUE(decoded);
        const std::vector<ScanFrames::Frame> direct = readDirectly(page);
        EXPECT_EQ(decoded->getSize(), CSize(direct[0].pixelsPerLine, direct[0].lines));
    }
    {
        Collected got;
        scanner->setOptions({"mode=Color", "depth=16", "resolution=50"});
        EXPECT_TRUE(scanner->unload(&got));
        EXPECT_TRUE(got.paths.empty()) << "16 bits a sample are skipped";
    }
    {
        Collected got;
        got.stopAt = 3;
        scanner->setOptions({"source=Automatic Document Feeder", "resolution=50"});
        EXPECT_TRUE(scanner->unload(&got));
        EXPECT_EQ(got.paths.size(), 3u) << "the listener stops the feeder";
        Collected all;
        EXPECT_TRUE(scanner->unload(&all));
        EXPECT_EQ(all.paths.size(), 10u) << "the test feeder holds ten sheets";
    }
    {
        Collected got;
        scanner->setOptions({"read-return-value=SANE_STATUS_JAMMED", "resolution=50"});
        EXPECT_FALSE(scanner->unload(&got));
        EXPECT_EQ(scanner->getLastStatus(), SANE_STATUS_JAMMED);
        EXPECT_FALSE(TwainSupport::hasTwainCrashed()) << "a jam is no crash";
    }
}

TEST_F(ScannerTest, CrashingOrHangingDriverLatchesTheFlagAndTheHostGoesOn) {
    const CString key = u"Orvanta|Crash Tester|orvantacrash:0";
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // the library has threads of its own here
    EXPECT_EXIT(
        {
            setenv("ORVANTA_CRASH_BACKEND", "read", 1);
            OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(key, false);
            Collected got;
            const bool unloaded = scanner->unload(&got);
            const bool latched = TwainSupport::hasTwainCrashed();
            // Nothing reaches SANE again: not even the test backend's list.
            const bool silent = TwainEnumerator::listDevices().empty();
            _exit(!unloaded && latched && silent && got.paths.empty() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("ORVANTA_CRASH_BACKEND", "list", 1);
            const bool none = TwainEnumerator::listDevices().empty();
            _exit(none && TwainSupport::hasTwainCrashed() ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("ORVANTA_CRASH_BACKEND", "hang", 1);
            OwnedPtr<TwainCameraUnloader> scanner = TwainCameraUnloader::create(key, false);
            TwainSupport::setHangTimeout(1500);
            Collected got;
            const auto start = std::chrono::steady_clock::now();
            const bool unloaded = scanner->unload(&got);
            const double seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            _exit(!unloaded && TwainSupport::hasTwainCrashed() && seconds < 30 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
