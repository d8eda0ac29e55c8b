#include "orvanta/printing/SimpleLayoutPrintJob.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "orvanta/codecs/Codec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/printing/PrintPicture.h"
#include "orvanta/printing/PrintTemplatePageRenderer.h"

namespace Orvanta {

SimpleLayoutPrintJob* SimpleLayoutPrintJob::create(AssetList* assets, const CString& title) {
    return new SimpleLayoutPrintJob(assets, title);
}

SimpleLayoutPrintJob::SimpleLayoutPrintJob(AssetList* assets, const CString& title)
    : PrintJob(title), mAssets(assets) {}

OwnedPtr<Asset> SimpleLayoutPrintJob::assetAt(int index) const {
    AssetList::Lock lock(mAssets);
    const UniqueID id = mAssets->getID(index);
    if (id.isNull()) return nullptr;
    // A list in memory answers its asset's own properties: they are copied, never shared.
    OwnedPtr<PropertyList> properties = mAssets->readProperties(id);
    if (!properties) return nullptr;
    OwnedPtr<PropertyList> copy = properties->clone();
    return OwnedPtr<Asset>(Asset::create(copy));
}

namespace {

Layout::Category categoryOf(Layout* layout) {
    return layout ? layout->getCategory() : Layout::None;
}

}  // namespace

int SimpleLayoutPrintJob::getCopies() {
    const Layout::Category category = categoryOf(mLayout);
    return category == Layout::ContactSheet || category == Layout::AllOnOnePage ? 1 : mCopies;
}

bool SimpleLayoutPrintJob::getFillPage() {
    const Layout::Category category = categoryOf(mLayout);
    return category == Layout::ContactSheet || category == Layout::AllOnOnePage ? false : mFillPage;
}

bool SimpleLayoutPrintJob::getRotateToFit() {
    return categoryOf(mLayout) == Layout::ContactSheet ? false : mRotateToFit;
}

bool SimpleLayoutPrintJob::getCropToFill() {
    return categoryOf(mLayout) == Layout::ContactSheet ? false : mCropToFill;
}

bool SimpleLayoutPrintJob::isContactSheet() {
    return categoryOf(mLayout) == Layout::ContactSheet;
}

int SimpleLayoutPrintJob::getPageCount() {
    if (mRows == 0 || mColumns == 0) return 0;
    if (getFillPage()) return getAssetCount();
    return (getAssetCount() * getCopies() - 1) / cells() + 1;
}

int SimpleLayoutPrintJob::getFirstAssetOfPage(int page) {
    if (page < 0) return -1;
    if (getFillPage()) return page;
    return cells() * page / getCopies();
}

int SimpleLayoutPrintJob::getPageOfAsset(int assetIndex) {
    if (mRows == 0 || mColumns == 0) return -1;
    if (getFillPage()) return assetIndex;
    return getCopies() * assetIndex / cells();
}

bool SimpleLayoutPrintJob::isPageBlank(int page) {
    return cells() == 0;
}

bool SimpleLayoutPrintJob::prepare() {
    computeGrid(nullptr, getDevMode(DMORIENT_LANDSCAPE));
    const bool landscapeSingle = cells() == 1;
    computeGrid(nullptr, getDevMode(DMORIENT_PORTRAIT));
    const bool portraitSingle = cells() == 1;
    mAutoOrient = landscapeSingle && portraitSingle;
    computeGrid(nullptr, getCurrentDevMode());
    return true;
}

// One picture per page prints on whichever way round suits it.
const DEVMODEW* SimpleLayoutPrintJob::getDevModeForPage(int page) {
    if (!mAutoOrient) return nullptr;
    const int index = page / getCopies();
    if (index < 0 || index >= getAssetCount()) return nullptr;
    OwnedPtr<Asset> asset = assetAt(index);
    ImageFile* file = asset ? asset->getImageFile() : nullptr;
    const CSize size = file ? file->getPictureSize() : CSize(0, 0);
    return getDevMode(size.cx > size.cy ? DMORIENT_LANDSCAPE : DMORIENT_PORTRAIT);
}

// A last row or column needs no gap, but only where that alone decides between 0 and 1.
void SimpleLayoutPrintJob::countCells(int cellWidth, int cellHeight, int printableW, int printableH,
                                      int& rows, int& columns) {
    const int rowStep = mVGap + mCaptionHeight + cellHeight, columnStep = mHGap + cellWidth;
    rows = rowStep > 0 ? printableH / rowStep : 0;
    columns = columnStep > 0 ? printableW / columnStep : 0;
    if (rows == 0 && mCaptionHeight + cellHeight > 0) rows = printableH / (mCaptionHeight + cellHeight);
    if (columns == 0 && cellWidth > 0) columns = printableW / cellWidth;
}

void SimpleLayoutPrintJob::computeGrid(HDC dc, const DEVMODEW* devMode) {
    mRows = mColumns = mCellWidth = mCellHeight = 0;
    mHGap = mVGap = mCaptionHeight = mCaptionGap = mTextHeight = 0;
    OwnedPtr<PageGeometry> geometry = getPageGeometry(devMode, dc);
    if (!geometry || !mLayout) return;
    const int dpiX = geometry->dpiX, dpiY = geometry->dpiY;
    const int printableW = geometry->getPrintableWidth(), printableH = geometry->getPrintableHeight();
    const Size paper(geometry->paperWidth, geometry->paperHeight);
    const bool landscape = printableW > printableH;
    const Size size = mLayout->getSize();
    int w = size.cx * dpiX / 100, h = size.cy * dpiY / 100;
    const bool paperSized = Size(w, h).hasSameDimensions(paper);
    if (!paperSized) {
        mHGap = mLayout->getGap() * dpiX / 100;
        mVGap = mLayout->getGap() * dpiY / 100;
    }
    if (isContactSheet()) {
        std::unique_ptr<Platform::Canvas> measure = dc ? nullptr : mPrinter->createDC(devMode);
        HDC target = dc ? dc : measure.get();
        if (target) {
            const int level = target->save();
            if (mDeviceFont) target->selectFont(&mDeviceFont->getDescription());
            mTextHeight = target->getTextExtent(u"Ag").cy;
            target->restore(level);
        }
        mCaptionGap = 3 * dpiY / 100;
        mCaptionHeight = mTextHeight + mCaptionGap;
    }
    switch (mLayout->getCategory()) {
        case Layout::PrintSize: {
            if (paperSized) {
                mRows = mColumns = 1;
                mCellWidth = printableW;
                mCellHeight = printableH - mCaptionHeight;
                return;
            }
            int rows1, columns1, rows2, columns2;
            countCells(w, h, printableW, printableH, rows1, columns1);
            countCells(h, w, printableW, printableH, rows2, columns2);
            if (rows1 * columns1 == 0 && rows2 * columns2 == 0) {
                // Larger than the paper both ways: shrunk by the printable share of the paper.
                const double ratio = (static_cast<double>(printableH) * printableW) /
                                     (static_cast<double>(paper.cy) * paper.cx);
                w = static_cast<int>(w * ratio);
                h = static_cast<int>(h * ratio);
                countCells(w, h, printableW, printableH, rows1, columns1);
                countCells(h, w, printableW, printableH, rows2, columns2);
            }
            if (rows1 * columns1 > rows2 * columns2) {
                mRows = rows1, mColumns = columns1, mCellWidth = w, mCellHeight = h;
            } else {
                mRows = rows2, mColumns = columns2, mCellWidth = h, mCellHeight = w;
            }
            return;
        }
        case Layout::PerPage: {
            static const struct {
                int count, portraitRows, portraitColumns;
            } grids[] = {{1, 1, 1}, {2, 2, 1}, {4, 2, 2}, {6, 3, 2}, {8, 4, 2}, {16, 4, 4}};
            for (const auto& grid : grids)
                if (grid.count == mLayout->getCount()) {
                    mRows = landscape ? grid.portraitColumns : grid.portraitRows;
                    mColumns = landscape ? grid.portraitRows : grid.portraitColumns;
                }
            if (mRows == 0) return;
            mCellHeight = (printableH - (mRows - 1) * mVGap - mCaptionHeight * mRows) / mRows;
            mCellWidth = (printableW - (mColumns - 1) * mHGap) / mColumns;
            return;
        }
        case Layout::ContactSheet:
            mCellWidth = w;
            mCellHeight = h;
            countCells(mCellWidth, mCellHeight, printableW, printableH, mRows, mColumns);
            return;
        case Layout::AllOnOnePage: {
            const Size aspect = mLayout->getAspect();
            if (aspect.cx <= 0 || aspect.cy <= 0) return;
            const int n = getAssetCount() - 1;
            for (int columns = 1; columns <= std::max(printableW, 1); ++columns) {
                const int span = (printableW - (columns - 1) * mHGap) / columns;
                if (!landscape) {
                    mCellHeight = span;
                    mCellWidth = aspect.cy * span / aspect.cx;
                } else {
                    mCellWidth = span;
                    mCellHeight = aspect.cx * span / aspect.cy;
                }
                mColumns = columns;
                mRows = n / columns + 1;
                if (mCellHeight * mRows < printableH - (mRows - 1) * mVGap - mRows * mCaptionHeight) break;
            }
            return;
        }
        default:
            return;
    }
}

namespace {

// The middle window of a picture, as a new picture: a crop that keeps whole pixels.
Image* cropWindow(Image* image, int x, int y, int width, int height) {
    Dib* dib = image->getDib();
    const int bytesPerPixel = dib->getBitmapInfoHeader()->biBitCount / 8;
    if (bytesPerPixel != 3 && bytesPerPixel != 4) return nullptr;
    OwnedPtr<DibSection> window = DibSection::create(width, height, bytesPerPixel);
    const CSize size = dib->getSize();
    const int fromStride = Dib::strideFor(size.cx, bytesPerPixel),
              toStride = Dib::strideFor(width, bytesPerPixel);
    const bool bottomUp = dib->getBitmapInfoHeader()->biHeight > 0;
    for (int row = 0; row < height; ++row) {
        const int source = bottomUp ? size.cy - 1 - (y + row) : y + row;
        std::memcpy(window->getBits() + static_cast<size_t>(row) * toStride,
                    dib->getBits() + static_cast<size_t>(source) * fromStride +
                        static_cast<size_t>(x) * bytesPerPixel,
                    static_cast<size_t>(width) * bytesPerPixel);
    }
    return Image::create(window, false);
}

}  // namespace

Size SimpleLayoutPrintJob::requestFor(CSize pixels, int maxDpi, int boxHundredthsW, int boxHundredthsH) {
    if (maxDpi == -1 || boxHundredthsW <= 0 || boxHundredthsH <= 0) return Size(0, 0);
    const int dpiX = pixels.cx * 100 / boxHundredthsW, dpiY = pixels.cy * 100 / boxHundredthsH;
    if (dpiX <= maxDpi && dpiY <= maxDpi) return Size(0, 0);
    const double scale = static_cast<double>(maxDpi) / std::max(dpiX, dpiY);
    return Size(static_cast<int>(pixels.cx * scale), static_cast<int>(pixels.cy * scale));
}

// A JPEG that would come out of decoding, effect, turn and crop unchanged needs no decoding at all
// where its bytes go to the page as they are: what is drawn is the same.
bool SimpleLayoutPrintJob::mayPassThrough(ImageFile* file, bool isPreview, int maxDpi, int boxHundredthsW,
                                          int boxHundredthsH, double cellAspect) {
    const CSize pixels = file->getPictureSize();
    if (isPreview || !mPrinter || !mPrinter->canDrawJpegs() || mEffect || pixels.cx <= 0 || pixels.cy <= 0)
        return false;
    Codec* codec = file->getCodec();
    if (!codec || codec->getImageType() != ImageTypeJpeg) return false;
    if (requestFor(pixels, maxDpi, boxHundredthsW, boxHundredthsH).cx != 0) return false;
    const double imageAspect = static_cast<double>(pixels.cx) / pixels.cy;
    if (getRotateToFit() && (imageAspect > 1) != (cellAspect > 1)) return false;
    return !(getCropToFill() && imageAspect != cellAspect);
}

// The cell's picture: decoded no larger than the maximum resolution allows at the box's size, then
// the job's effect, the turn to the cell's shape and the crop to fill it; modified tells whether
// any of that changed the file's pixels.
Image* SimpleLayoutPrintJob::loadCell(Asset* asset, int maxDpi, int boxHundredthsW, int boxHundredthsH,
                                      double cellAspect, bool& modified) {
    modified = false;
    ImageFile* file = asset->getImageFile();
    if (!file) return nullptr;
    OwnedPtr<Image> image = loadPrintPicture(
        asset, requestFor(file->getPictureSize(), maxDpi, boxHundredthsW, boxHundredthsH), &modified);
    if (!image) return nullptr;
    if (mEffect) {
        OwnedPtr<Image> changed = applyToPicture(image, mEffect);
        if (changed) image = changed, modified = true;
    }
    CSize size = image->getSize();
    double imageAspect = static_cast<double>(size.cx) / size.cy;
    if (getRotateToFit() && (imageAspect > 1) != (cellAspect > 1)) {
        OwnedPtr<RotateOp> rotate = RotateOp::create(90);
        OwnedPtr<Image> turned = applyToPicture(image, rotate);
        if (turned) image = turned, modified = true;
        size = image->getSize();
        imageAspect = static_cast<double>(size.cx) / size.cy;
    }
    if (getCropToFill() && imageAspect != cellAspect) {
        OwnedPtr<Image> cropped;
        if (imageAspect > cellAspect) {
            const int newW = static_cast<int>(std::floor(size.cy * cellAspect));
            cropped = cropWindow(image, (size.cx - newW) / 2, 0, newW, size.cy);
        } else {
            const int newH = static_cast<int>(std::floor(size.cx / cellAspect));
            cropped = cropWindow(image, 0, (size.cy - newH) / 2, size.cx, newH);
        }
        if (cropped) image = cropped, modified = true;
    }
    return image.detach();
}

bool SimpleLayoutPrintJob::drawPage(int page, HDC dc, bool isPreview) {
    if (getAssetCount() == 0) return true;
    computeGrid(dc, getCurrentDevMode());
    const int level = dc->save();
    OwnedPtr<PageGeometry> geometry = getPageGeometry(nullptr, dc);
    if (!geometry || mRows == 0 || mColumns == 0) {
        dc->restore(level);
        return true;
    }
    const int areaW = geometry->getPrintableWidth(), areaH = geometry->getPrintableHeight();
    const int gridW = (mCellWidth + mHGap) * mColumns - mHGap;
    const int gridH = (mCellHeight + mVGap + mCaptionHeight) * mRows - mVGap;
    int startX = 0, startY = 0;
    if (getSymmetricMargins()) {
        startX = (areaW - gridW) / 2 + geometry->offsetX;
        startY = (areaH - gridH) / 2 + geometry->offsetY;
    }
    const bool fillPage = getFillPage();
    const int copies = getCopies();
    int assetIndex = fillPage ? page : cells() * page / copies;
    int copyIndex = fillPage ? 0 : cells() * page % copies;
    const int boxW = mCellWidth - 2 * mBorder, boxH = mCellHeight - 2 * mBorder;
    const double cellAspect = static_cast<double>(mCellWidth) / mCellHeight;
    const int boxHundredthsW = boxW * 100 / geometry->dpiX, boxHundredthsH = boxH * 100 / geometry->dpiY;
    const int maxDpi = getMaxDpi();
    if (mDeviceFont) dc->selectFont(&mDeviceFont->getDescription());

    int loadedIndex = -1;
    OwnedPtr<Asset> asset;
    OwnedPtr<Image> image;
    bool modified = false, passThrough = false;
    CString path, name;
    CSize filePixels, size;
    for (int row = 0, column = 0; !isCancelled() && assetIndex < getAssetCount() && row < mRows;) {
        if (assetIndex != loadedIndex) {
            loadedIndex = assetIndex;
            image = nullptr;
            modified = passThrough = false;
            size = CSize(0, 0);
            asset = assetAt(assetIndex);
            ImageFile* file = asset ? asset->getImageFile() : nullptr;
            if (file) {
                path = file->getPath();
                name = file->getFilename();
                filePixels = file->getPictureSize();
                passThrough =
                    mayPassThrough(file, isPreview, maxDpi, boxHundredthsW, boxHundredthsH, cellAspect);
                if (passThrough)
                    size = filePixels;
                else
                    image = loadCell(asset, maxDpi, boxHundredthsW, boxHundredthsH, cellAspect, modified);
                if (image) size = image->getSize();
            }
        }
        if (image || passThrough) {
            CSize draw =
                Image::scaledSize(size, Image::calcScale(size, CSize(boxW, boxH), true, getCropToFill()));
            int x = column * (mCellWidth + mHGap) + startX;
            int y = row * (mCellHeight + mVGap + mCaptionHeight) + startY;
            int innerX = 0, innerY = 0;
            if (getCropToFill()) {
                draw = CSize(std::min(draw.cx, boxW), std::min(draw.cy, boxH));
            } else {
                innerX = (boxW - draw.cx) / 2;
                innerY = (boxH - draw.cy) / 2;
            }
            if (mBorder != 0) {
                dc->setPen(0xFFFFFF);
                dc->setNullBrush();
                dc->rectangle(CRect(x + innerX, y + innerY, x + innerX + draw.cx + 2 * mBorder,
                                    y + innerY + draw.cy + 2 * mBorder));
                x += mBorder;
                y += mBorder;
            }
            bool drawn = false;
            if (!isPreview && mPrinter && mPrinter->canDrawJpegs())
                drawn = drawJpegFile(dc, x + innerX, y + innerY, draw.cx, draw.cy, path, image, modified);
            if (!drawn && passThrough) {
                // The device refused the file's bytes after all: its pixels are drawn instead.
                passThrough = false;
                image = loadCell(asset, maxDpi, boxHundredthsW, boxHundredthsH, cellAspect, modified);
            }
            if (!drawn && image) image->draw(dc, x + innerX, y + innerY, draw.cx, draw.cy);
            if (isContactSheet()) {
                CRect caption(x - mBorder, y - mBorder + mCellHeight + mCaptionGap, x - mBorder + mCellWidth,
                              y - mBorder + mCellHeight + mCaptionGap + mTextHeight);
                dc->drawText(name, &caption, DT_CENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
            }
        }
        if (!fillPage && ++copyIndex == copies) {
            copyIndex = 0;
            ++assetIndex;
        }
        if (++column == mColumns) {
            column = 0;
            ++row;
        }
    }
    dc->restore(level);
    return true;
}

}  // namespace Orvanta
