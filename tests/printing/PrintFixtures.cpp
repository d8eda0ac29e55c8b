#include "tests/printing/PrintFixtures.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;

namespace OrvantaTest {

namespace {

// The screen's resolution comes from the desktop's settings: the tests want the plain 96.
const bool gPlainSettings = [] { return setenv("GSETTINGS_BACKEND", "memory", 1) == 0; }();

}  // namespace

void registerPrintCodecs() {
    static const bool registered = [] {
        CodecManager::registerCodec(IntelJpegCodec::create());
        return true;
    }();
    (void)registered;
}

void writeQuadrantJpeg(const std::string& path, int width, int height) {
    registerPrintCodecs();
    OwnedPtr<Dib> dib = makeDib(width, height, [&](int x, int y) {
        const bool right = x >= width / 2, bottom = y >= height / 2;
        if (!bottom) return right ? Rgb{0, 200, 0} : Rgb{200, 0, 0};
        return right ? Rgb{0, 0, 200} : Rgb{128, 128, 128};
    });
    auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(u".jpg"));
    ASSERT_GT(codec->write(dib, CString::fromUtf8(path), ImageQualityNormal), 0) << path;
}

Asset* assetOf(const std::string& path) {
    registerPrintCodecs();
    return Asset::create(UniqueID::create(), CString::fromUtf8(path), nullptr, nullptr);
}

std::unique_ptr<Platform::Canvas> deviceAt(int dpiX, int dpiY) {
    std::unique_ptr<Platform::Canvas> canvas = Platform::Canvas::createRecording(CRect(0, 0, 1, 1));
    DeviceCaps caps;
    caps.dpiX = dpiX;
    caps.dpiY = dpiY ? dpiY : dpiX;
    canvas->setDeviceCaps(caps);
    return canvas;
}

}  // namespace OrvantaTest
