#pragma once
// PrintTemplatePageRenderer: draws a filled PrintTemplatePage, once for the on-screen editor and
// once for the printer, by the same code. What differs is the maximum resolution it is given and
// whether JPEG bytes may go to the device as they are.
//
// Contract: with a maximum resolution no higher than the screen's, pictures are drawn from the
// page's working copies and the files are never touched. Above it, each picture is decoded from its
// file no larger than the maximum resolution at the slot's size (kNoDpiLimit: the file's own size),
// passed through the page's effect and the slot's rotation, and drawn to fill its slot, offset as
// the page says and cut at the slot's edges. With directJpeg, on a device that takes JPEG blocks
// (a PDF page), an unchanged picture goes into the output as its file's own bytes; a changed one is
// encoded into a temporary JPEG first, which is deleted whatever happens. A picture that cannot be
// decoded becomes a placeholder box when placeholders are shown, and otherwise leaves its slot
// blank. Empty slots are placeholder boxes, or nothing with placeholders hidden (and then the page
// outline isn't drawn either).

#include "orvanta/printing/PrintTemplatePage.h"
#include "orvanta/printing/PrintTemplateRenderer.h"

namespace Orvanta {

class PrintTemplatePageRenderer : public PrintTemplateRenderer {
public:
    static constexpr unsigned kNoDpiLimit = 0xFFFFFFFF;

    static PrintTemplatePageRenderer* create();

    virtual PrintTemplatePage* getPage() { return mPage; }
    virtual void setPage(PrintTemplatePage* page);
    virtual void refreshTemplate();
    virtual void setTextFont(Font* font) { mTextFont = font; }
    // Draws the page (or the current one when page is null). x and y both 0 keep the origin as it was.
    virtual void draw(HDC dc, int x, int y, PrintTemplatePage* page, unsigned maxDpi, bool directJpeg);
    virtual void drawSlot(HDC dc, const CString& slot, unsigned maxDpi, bool directJpeg, bool clearFirst);
    virtual void setShowPlaceholders(bool show) { mShowPlaceholders = show; }
    virtual void hidePlaceholders() { mShowPlaceholders = false; }

private:
    PrintTemplatePageRenderer() = default;

    void drawText(HDC dc, const CString& slot);
    void drawPicture(HDC dc, const CString& slot, unsigned maxDpi, bool directJpeg);

    OwnedPtr<Font> mTextFont;
    bool mShowPlaceholders = true;
    OwnedPtr<PrintTemplatePage> mPage;
};

// Draws a JPEG file's bytes (or, when `picture` differs from the file, the picture encoded anew into
// a temporary JPEG, deleted after) as a block the device embeds as it is, filling x, y, width x
// height. False when the device takes no JPEG blocks or the bytes could not be had; the caller then
// draws the pixels. sourcePath is the file drawn unchanged, and the one whose metadata a re-encoded
// picture keeps.
bool drawJpegFile(HDC dc, int x, int y, int width, int height, const CString& sourcePath, Image* picture,
                  bool modified);

}  // namespace Orvanta
