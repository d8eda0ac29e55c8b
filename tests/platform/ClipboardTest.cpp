// The clipboard as other programs see it. On a private X server, files put on the clipboard are
// pasted by xclip in each form file managers use, with a picture as a BMP file that ImageMagick reads
// (large enough to go in pieces), and the display library's own text reading sees them as text; text
// set afterwards takes the clipboard back; an asset's picture is its BMP file byte for byte. Without a
// server, text stays in the process and files are refused.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/SelectionOwner.h"
#include "tests/support/TempDir.h"
#include "tests/support/UiHarness.h"
#include "tests/support/XvfbServer.h"

using namespace Orvanta;
using namespace Orvanta::Platform;
using namespace OrvantaTest;

namespace {

// The colour of a picture's pixel, top-down, as red, green, blue.
unsigned char channel(int x, int y, int c) {
    return static_cast<unsigned char>(c == 0 ? x * 255 / 400 : c == 1 ? y * 255 / 300 : (x + y) % 256);
}

// A 24-bit bottom-up packed DIB, as the platform's DIB clipboard format holds it: rows padded to 4
// bytes, blue first.
std::vector<std::uint8_t> packedDib(int width, int height) {
    const int stride = (width * 3 + 3) & ~3;
    std::vector<std::uint8_t> dib(40 + std::size_t(stride) * height, 0);
    auto put = [&](std::size_t at, std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) dib[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    put(0, 40, 4);
    put(4, width, 4);
    put(8, height, 4);
    put(12, 1, 2);
    put(14, 24, 2);
    put(20, stride * height, 4);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                dib[40 + std::size_t(height - 1 - y) * stride + x * 3 + 2 - c] = channel(x, y, c);
    return dib;
}

class ClipboardOnXTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!XvfbServer::available() || std::system("command -v xclip >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "Xvfb or xclip is missing";
        server = std::make_unique<XvfbServer>(64, 64);
        ASSERT_TRUE(server->isRunning());
        Display::instance().close();
        setenv("DISPLAY", server->display().c_str(), 1);
        unsetenv("WAYLAND_DISPLAY");
        unsetenv("SDL_VIDEODRIVER");
        ASSERT_TRUE(Display::instance().open());
        ASSERT_EQ(Display::instance().getServerName(), server->display());
    }
    void TearDown() override {
        Display::instance().close();
        unsetenv("DISPLAY");
        UiHarness::useTestEnvironment();
        server.reset();
    }
    // What another program pastes in the given form.
    std::string paste(const std::string& target) {
        const std::string out = folder.file("pasted");
        EXPECT_EQ(server->run("xclip -o -selection clipboard -t '" + target + "' > '" + out + "'"), 0)
            << target;
        return readFileBytes(out);
    }

    std::unique_ptr<XvfbServer> server;
    TempDir folder;
};

TEST_F(ClipboardOnXTest, FilesArePastedInEachFormAndTextTakesTheClipboardBack) {
    const std::vector<CString> paths = {CString::fromUtf8("/tmp/Été 2026/photo 1.jpg"), u"/photos/b.jpg"};
    ASSERT_TRUE(Clipboard::setFiles(paths, packedDib(401, 300)));
    EXPECT_TRUE(SelectionOwner::instance().owns());

    const std::string targets = paste("TARGETS");
    for (const char* name :
         {"TARGETS", "TIMESTAMP", "MULTIPLE", "text/uri-list", "x-special/gnome-copied-files", "UTF8_STRING",
          "text/plain;charset=utf-8", "image/bmp"})
        EXPECT_NE(targets.find(name), std::string::npos) << name;
    EXPECT_EQ(paste("text/uri-list"),
              "file:///tmp/%C3%89t%C3%A9%202026/photo%201.jpg\r\nfile:///photos/b.jpg\r\n");
    EXPECT_EQ(paste("x-special/gnome-copied-files"),
              "copy\nfile:///tmp/%C3%89t%C3%A9%202026/photo%201.jpg\nfile:///photos/b.jpg");
    EXPECT_EQ(paste("UTF8_STRING"), "/tmp/Été 2026/photo 1.jpg\n/photos/b.jpg");

    // The picture is larger than one piece, so it also crosses in pieces.
    ASSERT_GT(packedDib(401, 300).size(), SelectionOwner::kPieceSize);
    writeFileBytes(folder.file("pasted.bmp"), paste("image/bmp"));
    const std::string pixels = folder.file("pixels.rgb");
    ASSERT_EQ(std::system(
                  ("convert 'bmp:" + folder.file("pasted.bmp") + "' -depth 8 'rgb:" + pixels + "'").c_str()),
              0);
    const std::string rgb = readFileBytes(pixels);
    ASSERT_EQ(rgb.size(), 401u * 300 * 3);
    int wrong = 0;
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 401; ++x)
            for (int c = 0; c < 3; ++c)
                wrong +=
                    static_cast<unsigned char>(rgb[(std::size_t(y) * 401 + x) * 3 + c]) != channel(x, y, c);
    EXPECT_EQ(wrong, 0);

    // The display library, a requestor like any other, reads the paths as text.
    EXPECT_EQ(Clipboard::getText().toUtf8(), "/tmp/Été 2026/photo 1.jpg\n/photos/b.jpg");

    ASSERT_TRUE(Clipboard::setText(u"Plain"));
    for (int i = 0; i < 100 && SelectionOwner::instance().owns(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(SelectionOwner::instance().owns());
    EXPECT_EQ(Clipboard::getText(), u"Plain");
}

// An asset gives its file and its picture, turned bottom-up, which becomes the BMP file it came from.
TEST_F(ClipboardOnXTest, AnAssetGivesItsFileAndItsPictureAsABmpFileByteForByte) {
    // A 3 x 2 picture: rows bottom-up, each 9 bytes and 3 of padding.
    std::string bmp("BM\x4E\0\0\0\0\0\0\0\x36\0\0\0", 14);
    bmp += std::string("\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0", 16) + std::string(24, '\0');
    bmp += std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\0\0\0\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12\0\0\0",
                       24);
    writeFileBytes(folder.file("a b#.bmp"), bmp);
    CodecManager::registerCodec(BmpCodec::create());
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), folder.wide("a b#.bmp"), nullptr, nullptr);
    ASSERT_TRUE(asset->copyToClipboard());
    EXPECT_EQ(paste("text/uri-list"), "file://" + folder.path() + "/a%20b%23.bmp\r\n");
    EXPECT_EQ(paste("image/bmp"), bmp);
}

// A server that goes away ends the owner's connection only; the next server is served anew.
TEST_F(ClipboardOnXTest, AServerThatGoesAwayIsLeftAndTheNextOneServed) {
    ASSERT_TRUE(Clipboard::setFiles({u"/photos/a.jpg"}));
    Display::instance().close();
    server = std::make_unique<XvfbServer>(64, 64);
    setenv("DISPLAY", server->display().c_str(), 1);
    ASSERT_TRUE(Display::instance().open());
    ASSERT_TRUE(Clipboard::setFiles({u"/photos/b.jpg"}));
    EXPECT_EQ(paste("text/uri-list"), "file:///photos/b.jpg\r\n");
}

TEST(ClipboardTest, OffscreenTextStaysInTheProcessAndFilesAreRefused) {
    UiHarness::useTestEnvironment();
    Display::instance().close();
    ASSERT_TRUE(Clipboard::setText(u"Ré, 2026 — 日本"));
    EXPECT_TRUE(Clipboard::hasText());
    EXPECT_EQ(Clipboard::getText(), u"Ré, 2026 — 日本");
    EXPECT_FALSE(Clipboard::setFiles({u"/photos/a.jpg"}));
    Display::instance().close();
}

}  // namespace
