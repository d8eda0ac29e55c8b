#pragma once
// SimpleLayoutPrintJob: a list of assets put into a grid of equal cells, as a Layout chooses: row by
// row, left to right, the copies of one picture next to one another.
//
// Contract: the grid is computed per device (hdc and settings; missing ones are the printer's), in
// its pixels. Each picture is decoded no larger than the maximum resolution at its cell's size, put
// through the job's effect, optionally turned to match the cell's shape and cropped to fill it,
// then drawn fitted (or filling) and centred in its cell; on a page that takes JPEG blocks an
// unchanged picture goes in as its file's bytes. A picture that cannot be read leaves its cell
// empty. Contact sheets carry each file's name under its picture. cancel() takes effect at the next
// cell; the page is still completed.

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/printing/Layout.h"
#include "orvanta/printing/PrintJob.h"

namespace Orvanta {

class SimpleLayoutPrintJob : public PrintJob {
public:
    // The job holds the list and reads it as it draws: a change in the list shows from the next page
    // drawn on. The list may be shared with other threads (the job draws on the spooler's).
    static SimpleLayoutPrintJob* create(AssetList* assets, const CString& title);

    bool drawPage(int page, HDC dc, bool isPreview) override;
    int getPageCount() override;
    int getFirstAssetOfPage(int page) override;
    int getPageOfAsset(int assetIndex) override;
    bool isPageBlank(int page) override;
    const DEVMODEW* getDevModeForPage(int page) override;
    bool prepare() override;
    CSize getCellSize() override { return CSize(mCellWidth, mCellHeight); }

    virtual void setLayout(Layout* layout) { mLayout = layout; }
    virtual int getCopies();
    virtual void setCopies(int copies) { mCopies = copies < 1 ? 1 : copies; }
    virtual bool getFillPage();
    virtual void setFillPage(bool fill) { mFillPage = fill; }
    virtual bool getRotateToFit();
    virtual void setRotateToFit(bool rotate) { mRotateToFit = rotate; }
    virtual bool getCropToFill();
    virtual void setCropToFill(bool crop) { mCropToFill = crop; }
    virtual void setBorder(int border) { mBorder = border; }
    virtual int getBorder() { return mBorder; }
    virtual bool isAutoOrient() { return mAutoOrient; }
    virtual bool isContactSheet();

    // Computes the grid for a device (null: the printer's) under devMode (null: the current settings).
    void computeGrid(HDC dc, const DEVMODEW* devMode);
    int getRows() const { return mRows; }
    int getColumns() const { return mColumns; }
    int getAssetCount() const { return mAssets->getCount(); }

private:
    SimpleLayoutPrintJob(AssetList* assets, const CString& title);
    // A copy of the asset at index of the job's own, made from its properties while the list cannot
    // change (the list's assets belong to the thread that holds the list); null when out of range.
    OwnedPtr<Asset> assetAt(int index) const;
    void countCells(int cellWidth, int cellHeight, int printableW, int printableH, int& rows, int& columns);
    int cells() const { return mRows * mColumns; }
    static Size requestFor(CSize pixels, int maxDpi, int boxHundredthsW, int boxHundredthsH);
    bool mayPassThrough(ImageFile* file, bool isPreview, int maxDpi, int boxHundredthsW, int boxHundredthsH,
                        double cellAspect);
    Image* loadCell(Asset* asset, int maxDpi, int boxHundredthsW, int boxHundredthsH, double cellAspect,
                    bool& modified);

    OwnedPtr<AssetList> mAssets;
    OwnedPtr<Layout> mLayout;
    int mCellWidth = 0, mCellHeight = 0, mRows = 0, mColumns = 0, mHGap = 0, mVGap = 0, mCaptionHeight = 0;
    int mCopies = 1;
    bool mFillPage = false, mRotateToFit = false, mCropToFill = false;
    int mCaptionGap = 0, mTextHeight = 0;
    bool mAutoOrient = false;
    int mBorder = 0;
};

}  // namespace Orvanta
