#include "orvanta/desktop/Desktop.h"

#include <algorithm>

#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "orvanta/platform/DesktopBackground.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/ReplacementFile.h"

namespace Orvanta {

namespace {

CSize gFixedSize(0, 0);

bool isEmpty(const CSize& size) {
    return size.cx <= 0 || size.cy <= 0;
}

}  // namespace

CSize Desktop::getSize() {
    return isEmpty(gFixedSize) ? Platform::Display::instance().getScreenSize() : gFixedSize;
}

void Desktop::setSize(const CSize& size) {
    gFixedSize = size;
}

bool Desktop::needsCrop(const CString& path) {
    ImageType type;
    CSize picture(0, 0);
    // A file the codec cannot read leaves the size empty.
    if (!ImageCodec::getImageFileInformation(path, &type, &picture, nullptr) || isEmpty(picture))
        return false;
    const CSize screen = getSize();
    if (isEmpty(screen)) return false;
    return static_cast<long long>(picture.cy) * screen.cx == static_cast<long long>(screen.cy) * picture.cx;
}

bool Desktop::createWallpaper(Dib* dib, const CString& bmpPath, Style style, unsigned long color) {
    const CSize screen = getSize();
    if (!dib || isEmpty(dib->getSize()) || isEmpty(screen)) return false;
    const CSize picture = dib->getSize();
    const double sx = static_cast<double>(screen.cx) / picture.cx;
    const double sy = static_cast<double>(screen.cy) / picture.cy;
    double scale = sx;
    if (sx != sy) scale = style == kFill ? std::max(sx, sy) : std::min(sx, sy);
    const auto width = static_cast<int>(picture.cx * scale);
    const auto height = static_cast<int>(picture.cy * scale);
    if (width <= 0 || height <= 0) return false;
    OwnedPtr<DibSection> wallpaper = DibSection::create(width, height, 3);
    DibWalker target(wallpaper);
    DibWalker source(dib);
    target.fillSolid(color);
    target.resizeFrom(&source);
    return writeAsBmp(wallpaper, bmpPath);
}

bool Desktop::canSetWallpaper() {
    return Platform::canSetDesktopBackground();
}

bool Desktop::setWallpaper(const CString& picturePath, Style style, const CString& bmpPath) {
    if (!canSetWallpaper()) return false;
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), picturePath, nullptr, nullptr);
    ImageFile* file = asset ? asset->getImageFile() : nullptr;
    OwnedPtr<Image> image = file ? file->loadImage(0, 0, true) : nullptr;
    if (!image || !createWallpaper(image->getDib(), bmpPath, style, 0)) return false;
    Platform::setDesktopBackground(Platform::ReplacementFile::resolve(bmpPath.toUtf8()));
    return true;
}

bool Desktop::writeAsBmp(Dib* dib, const char16_t* path) {
    Codec* codec = CodecManager::getCodec(path);
    if (!codec || codec->getCodecType() != CodecTypeImage) return false;
    return static_cast<ImageCodec*>(codec)->write(dib, path, ImageQualityHigh) > 0;
}

}  // namespace Orvanta
