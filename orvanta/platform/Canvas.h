#pragma once
// Canvas: where the library draws (the HDC). It draws on a Cairo surface: a top-level window's
// backing store, a 32-bit bitmap, a PDF document (printers) or a recording surface (previews).
//
// Contract: coordinates are logical pixels; the device origin (where a child window's client area
// starts in its top-level's backing store) plus the viewport origin give where logical (0, 0) lands.
// Clips are kept in device space, as the platform's are: a clip set before the viewport origin
// moves stays where it was. save() pushes the whole state (clip, origin, pen, brush, colours, font,
// modes) and returns its level; restore(-1) pops the latest, restore(n) returns to level n.
//
// Resolution: a canvas counts in pixels of its device. Screens and bitmaps have 96 to the inch; a
// PDF canvas has 72 (its unit is the point) until it is given a printer's page by setDeviceCaps, after
// which its pixels are the printer's dots and logical (0, 0) is the top left corner of the printable
// area, outside which nothing is drawn, as on a printer. setMapScale scales everything drawn after it
// uniformly (an isotropic mapping), which clips do not undo.
//
// Text is drawn with Pango in the selected font (the default font when none is). In XOR mode every
// stroke and fill inverts what is under it (Cairo's DIFFERENCE with white), so drawing the same
// thing twice leaves the surface as it was. stretchDIBits reads pixel rows in place: on an image
// surface pixman composites straight from them through the clip; on other surfaces Cairo is given
// an image of them. A JPEG block (biCompression BI_JPEG) is drawn only on a PDF canvas, where its
// bytes go into the file untouched.
//
// A canvas belongs to the thread that made it.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"
#include "orvanta/platform/Region.h"
#include "orvanta/platform/WinTypes.h"

typedef struct _cairo cairo_t;
typedef struct _cairo_surface cairo_surface_t;

namespace Orvanta {

constexpr DWORD BI_JPEG = 4;
constexpr int GDI_ERROR = -1;

// stretch modes
constexpr int COLORONCOLOR = 3;
constexpr int HALFTONE = 4;

// drawText formats
constexpr UINT DT_LEFT = 0x0000;
constexpr UINT DT_CENTER = 0x0001;
constexpr UINT DT_RIGHT = 0x0002;
constexpr UINT DT_VCENTER = 0x0004;
constexpr UINT DT_BOTTOM = 0x0008;
constexpr UINT DT_WORDBREAK = 0x0010;
constexpr UINT DT_SINGLELINE = 0x0020;
constexpr UINT DT_NOCLIP = 0x0100;
constexpr UINT DT_CALCRECT = 0x0400;
// '&' in the text is shown as it is, not taken as the mark of a mnemonic (the toolkit's captions).
constexpr UINT DT_NOPREFIX = 0x0800;
constexpr UINT DT_END_ELLIPSIS = 0x8000;

// What getDeviceCaps answers, by the platform's index numbers.
constexpr int HORZSIZE = 4;
constexpr int VERTSIZE = 6;
constexpr int HORZRES = 8;
constexpr int VERTRES = 10;
constexpr int LOGPIXELSX = 88;
constexpr int LOGPIXELSY = 90;
constexpr int PHYSICALWIDTH = 110;
constexpr int PHYSICALHEIGHT = 111;
constexpr int PHYSICALOFFSETX = 112;
constexpr int PHYSICALOFFSETY = 113;

// A device's resolution and, for a printer's page, the paper and its printable area, all in the
// device's pixels. A canvas that is no printer's page has no paper: its printable area is its own.
struct DeviceCaps {
    int dpiX = 96;
    int dpiY = 96;
    int paperWidth = 0;
    int paperHeight = 0;
    int offsetX = 0;
    int offsetY = 0;
    int printableWidth = 0;
    int printableHeight = 0;
};

}  // namespace Orvanta

namespace Orvanta::Platform {

class FontDescription;
class TextLayout;
class Bitmap;

class Canvas {
public:
    enum class Kind { Window, Bitmap, Pdf, Recording };
    enum class PenStyle { Solid, Dot, Null };

    // Over an existing surface, which the canvas references while it lives. `clip`, if given, is in
    // the surface's pixels.
    Canvas(cairo_surface_t* surface, Kind kind, CPoint deviceOrigin = CPoint(), const Region* clip = nullptr);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // A PDF document whose bytes go to `write` (false from it stops the document), first page of the
    // given size in points; null if Cairo cannot make it.
    using WriteFunction = std::function<bool(const unsigned char* data, unsigned int length)>;
    static std::unique_ptr<Canvas> createPdf(WriteFunction write, double widthPoints, double heightPoints);
    // A recording of drawing commands, to be replayed onto another canvas by replayOnto.
    static std::unique_ptr<Canvas> createRecording(const CRect& extents);
    // Over a 32-bit top-down DIB section's rows; null for any other bitmap. With alpha, the fourth
    // byte of each pixel is its coverage and the colours are premultiplied by it (what alphaBlend
    // draws); a new DIB section is then wholly transparent.
    static std::unique_ptr<Canvas> createForBitmap(Bitmap* bitmap, bool alpha = false);
    // A context of the screen to measure against (the screen's resolution); what it draws goes nowhere.
    static std::unique_ptr<Canvas> createScreenContext();

    Kind getKind() const { return mKind; }
    cairo_surface_t* getSurface() const { return mSurface; }
    // GetDeviceCaps: LOGPIXELSX/Y, the paper (PHYSICALWIDTH/HEIGHT), where the printable area starts
    // (PHYSICALOFFSETX/Y), its size in pixels (HORZRES/VERTRES) and in millimetres (HORZSIZE/VERTSIZE);
    // 0 for any other index.
    int getDeviceCaps(int index) const;
    const DeviceCaps& getCaps() const { return mCaps; }
    // Sets the device's resolution and page. On a PDF canvas this also sets the size of the current
    // page to the paper's and maps pixels to points; call it before drawing on a page.
    void setDeviceCaps(const DeviceCaps& caps);
    // The isotropic mapping (1.0: none), part of the state save() keeps.
    void setMapScale(double scale);

    int save();
    bool restore(int level);

    CPoint setViewportOrigin(CPoint origin);
    CPoint getViewportOrigin() const { return mState.viewportOrigin; }
    CRect getClipBox() const;
    void intersectClipRect(const CRect& rect);
    // Replaces the clip by a region given relative to the device origin (null: no clip beyond the
    // one the canvas was made with).
    void selectClipRegion(const Region* region);

    void setPen(COLORREF color, int width = 1, PenStyle style = PenStyle::Solid);
    void setBrush(COLORREF color);
    void setNullBrush();
    COLORREF setTextColor(COLORREF color);
    COLORREF setBkColor(COLORREF color);
    // Opaque text fills its extent with the background colour first.
    void setBkOpaque(bool opaque);
    void setXorMode(bool on);
    int setStretchMode(int mode);
    // The font text is drawn in; null goes back to the default. The canvas does not own it.
    void selectFont(const FontDescription* font);
    const FontDescription& getFont() const;

    void fillRect(const CRect& rect, COLORREF color);
    // A border of `width` pixels inside the rectangle.
    void frameRect(const CRect& rect, COLORREF color, int width = 1);
    void moveTo(CPoint point);
    void lineTo(CPoint point);
    // Outlined with the pen, filled with the brush.
    void rectangle(const CRect& rect);
    void ellipse(const CRect& rect);

    // As DrawText: the height of the text drawn; with DT_CALCRECT nothing is drawn and the rectangle
    // is set to the text's extent.
    int drawText(const CString& text, CRect* rect, UINT format);
    void drawLayout(const TextLayout& layout, CPoint topLeft);
    CSize getTextExtent(const CString& text) const;

    // As StretchDIBits with DIB_RGB_COLORS and SRCCOPY: the number of source rows drawn, 0 when
    // nothing could be, GDI_ERROR for a JPEG block anywhere but on a PDF canvas.
    int stretchDIBits(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc, int srcWidth,
                      int srcHeight, const void* bits, const BITMAPINFO& info);

    // A JPEG file drawn as its own bytes, as a JPEG block is (PDF canvases only): the page keeps the
    // bytes until it is written out, so the file may be deleted meanwhile. False when the canvas
    // takes no JPEG blocks or the file is no JPEG.
    bool drawJpegFile(int xDest, int yDest, int destWidth, int destHeight, const std::string& path);

    // AlphaBlend with the source's own alpha: the `from` part of a 32-bit top-down DIB section of
    // premultiplied pixels, scaled into `to` (the nearest pixel in COLORONCOLOR, filtered in
    // HALFTONE, never reaching outside `from`), over what is there. False for any other bitmap or
    // an empty rectangle.
    bool alphaBlend(const CRect& to, const Bitmap* source, const CRect& from);

    // Draws this recording onto another canvas with its top left at `at`, its units scaled by
    // `scale` (filtered where pictures are reduced).
    void replayOnto(Canvas& target, CPoint at, double scale = 1.0) const;
    // Ends the page of a PDF canvas and starts the next one.
    void showPage();
    // Writes out everything drawn; a PDF document is complete after this.
    void finish();

    cairo_t* cairo() const { return mCairo; }

private:
    struct State {
        CPoint viewportOrigin;
        COLORREF penColor = 0;
        int penWidth = 1;
        PenStyle penStyle = PenStyle::Solid;
        bool hasBrush = true;
        COLORREF brushColor = 0xFFFFFF;
        COLORREF textColor = 0;
        COLORREF bkColor = 0xFFFFFF;
        bool bkOpaque = false;
        bool xorMode = false;
        int stretchMode = COLORONCOLOR;
        const FontDescription* font = nullptr;
        CPoint position;
        double mapScale = 1.0;
    };

    double unitScaleX() const;
    double unitScaleY() const;
    // Where logical (0, 0) lies on the surface, before the unit scale.
    CPoint originInDevice() const;
    void applyMatrix();
    void useColor(COLORREF color);
    void applyPen();
    int stretchOntoImage(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                         int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info);
    int stretchThroughCairo(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                            int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info);
    int drawJpeg(int xDest, int yDest, int destWidth, int destHeight, const void* bits,
                 const BITMAPINFO& info);
    // Paints a surface of width x height carrying the JPEG block as its MIME data (Cairo then calls
    // release(closure) once it no longer needs the bytes).
    int paintJpegBlock(int xDest, int yDest, int destWidth, int destHeight, const unsigned char* data,
                       unsigned long size, void (*release)(void*), void* closure);

    cairo_surface_t* mSurface;
    cairo_t* mCairo;
    Kind mKind;
    CPoint mDeviceOrigin;
    Region mBaseClip;
    bool mHasBaseClip;
    DeviceCaps mCaps;
    State mState;
    std::vector<State> mSaved;
    std::unique_ptr<WriteFunction> mWrite;
};

}  // namespace Orvanta::Platform
