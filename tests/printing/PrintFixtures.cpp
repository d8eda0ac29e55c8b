#include "tests/printing/PrintFixtures.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "tests/support/TempDir.h"
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

MemAssetList* listOf(const std::vector<std::string>& paths) {
    MemAssetList* list = MemAssetList::create();
    for (const std::string& path : paths) list->addAsset(assetOf(path), false);
    return list;
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

namespace OrvantaTest {

std::string commandOutput(const std::string& command) {
    std::string output;
    if (FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) output.append(buffer, n);
        pclose(pipe);
    }
    return output;
}

bool haveCommand(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::vector<std::string> pdfJpegs(const std::string& pdf, const std::string& folder) {
    std::vector<std::string> blocks;
    if (!haveCommand("pdfimages")) return blocks;
    commandOutput("mkdir -p '" + folder + "' && pdfimages -j '" + pdf + "' '" + folder + "/img'");
    for (int i = 0;; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "/img-%03d.jpg", i);
        if (!std::filesystem::exists(folder + name)) break;
        blocks.push_back(readFileBytes(folder + name));
    }
    return blocks;
}

}  // namespace OrvantaTest

namespace OrvantaTest {

std::vector<PdfImage> pdfImages(const std::string& pdf) {
    std::vector<PdfImage> images;
    std::istringstream lines(commandOutput("pdfimages -list '" + pdf + "' 2>/dev/null | tail -n +3"));
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        PdfImage image;
        std::string num, type, color, comp, bpc;
        if (fields >> image.page >> num >> type >> image.width >> image.height >> color >> comp >> bpc >>
            image.encoding)
            images.push_back(image);
    }
    return images;
}

}  // namespace OrvantaTest
