#include "orvanta/printing/PrintTemplatePageRenderer.h"

#include <algorithm>

#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/Shell.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/printing/PrintPicture.h"

namespace Orvanta {

PrintTemplatePageRenderer* PrintTemplatePageRenderer::create() {
    return new PrintTemplatePageRenderer();
}

void PrintTemplatePageRenderer::setPage(PrintTemplatePage* page) {
    mPage = page;
    refreshTemplate();
}

void PrintTemplatePageRenderer::refreshTemplate() {
    if (mPage) setTemplate(mPage->getTemplate());
}

void PrintTemplatePageRenderer::draw(HDC dc, int x, int y, PrintTemplatePage* page, unsigned maxDpi,
                                     bool directJpeg) {
    if (page) setPage(page);
    if (!mPage || !mTemplate) return;
    if (x != 0 || y != 0) setOrigin(x, y);
    if (mShowPlaceholders) drawPageOutline(dc);
    for (const auto& [name, slot] : mTemplate->slots()) {
        if (!slot) break;
        drawSlot(dc, name, maxDpi, directJpeg, false);
    }
}

void PrintTemplatePageRenderer::drawSlot(HDC dc, const CString& slot, unsigned maxDpi, bool directJpeg,
                                         bool clearFirst) {
    if (!mPage) return;
    if (clearFirst) clearSlot(dc, slot);
    if (mPage->isSlotEmpty(slot)) {
        if (mShowPlaceholders) drawSlotBox(dc, slot, true, true);
        return;
    }
    switch (mPage->getSlotType(slot)) {
        case PrintTemplateSlot::Image:
            drawPicture(dc, slot, maxDpi, directJpeg);
            break;
        case PrintTemplateSlot::Text:
            drawText(dc, slot);
            break;
        default:
            break;
    }
}

void PrintTemplatePageRenderer::drawText(HDC dc, const CString& slot) {
    CRect rect;
    if (!getSlotDeviceRect(dc, slot, rect)) return;
    const int level = dc->save();
    if (mTextFont) dc->selectFont(&mTextFont->getDescription());
    dc->setBkColor(mBackground);
    dc->setBkOpaque(true);
    dc->drawText(mPage->getText(slot), &rect,
                 DT_CENTER | DT_VCENTER | DT_WORDBREAK | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc->restore(level);
}

void PrintTemplatePageRenderer::drawPicture(HDC dc, const CString& slot, unsigned maxDpi, bool directJpeg) {
    const CRect slotRect = mPage->getSlotRect(slot);
    CRect deviceRect;
    if (!getSlotDeviceRect(dc, slot, deviceRect)) return;
    bool modified = false;
    OwnedPtr<Image> image;
    const Size screen = getScreenResolution();
    const unsigned screenDpi = static_cast<unsigned>(std::min(screen.cx, screen.cy));
    Asset* asset = mPage->getAsset(slot);
    if (maxDpi <= screenDpi) {
        // The screen's preview never touches the file.
        image = mPage->getImage(slot);
    } else {
        Size request(0, 0);
        ImageFile* file = asset ? asset->getImageFile() : nullptr;
        if (file && maxDpi != kNoDpiLimit) {
            const CSize pixels = file->getPictureSize();
            const int dpiX = printResolution(pixels.cx, slotRect.width());
            const int dpiY = printResolution(pixels.cy, slotRect.height());
            if (static_cast<unsigned>(dpiX) > maxDpi || static_cast<unsigned>(dpiY) > maxDpi) {
                const double scale = static_cast<double>(maxDpi) / std::max(dpiX, dpiY);
                request = Size(static_cast<int>(pixels.cx * scale), static_cast<int>(pixels.cy * scale));
            }
        }
        image = loadPrintPicture(asset, request, &modified);
        if (!image) {
            if (mShowPlaceholders) drawSlotBox(dc, slot, true, true);
            return;
        }
        if (EditingOp* effect = mPage->getEffect()) {
            OwnedPtr<Image> changed = applyToPicture(image, effect);
            if (changed) {
                image = changed;
                modified = true;
            }
        }
        if (const int rotation = mPage->getRotation(slot); rotation > 0) {
            OwnedPtr<RotateOp> rotate = RotateOp::create(clockwiseQuarterTurn(rotation));
            OwnedPtr<Image> turned = applyToPicture(image, rotate);
            if (turned) {
                image = turned;
                modified = true;
            }
        }
    }
    if (!image) return;
    const CPoint offset = mPage->getOffset(dc, slot);
    const double zoom = image->calcScale(deviceRect.size(), true, true);
    const int level = dc->save();
    dc->intersectClipRect(deviceRect);
    const int x = deviceRect.left + offset.x, y = deviceRect.top + offset.y;
    const CSize size = image->getSize();
    const int width = static_cast<int>(size.cx * zoom), height = static_cast<int>(size.cy * zoom);
    ImageFile* file = asset ? asset->getImageFile() : nullptr;
    const bool drawn =
        directJpeg && file && drawJpegFile(dc, x, y, width, height, file->getPath(), image, modified);
    if (!drawn) image->draw(dc, x, y, zoom);
    dc->restore(level);
}

bool drawJpegFile(HDC dc, int x, int y, int width, int height, const CString& sourcePath, Image* picture,
                  bool modified) {
    if (!dc || dc->getKind() != Platform::Canvas::Kind::Pdf) return false;
    CString path = sourcePath;
    if (modified) {
        path = FilePath::getTempFilePath(u"orvanta-print");
        if (!picture || !ImageCodec::writeAsJpeg(picture->getDib(), path, ImageQualityHigh, sourcePath)) {
            File::remove(path);
            return false;
        }
    }
    // The block keeps its file's own pixels (a reduced decode of an unchanged file is smaller); only
    // its placement is the picture's. The page has read the file, so a temporary one may go at once.
    const bool drawn = dc->drawJpegFile(x, y, width, height, path.toUtf8());
    if (path != sourcePath) File::remove(path);
    return drawn;
}

}  // namespace Orvanta
