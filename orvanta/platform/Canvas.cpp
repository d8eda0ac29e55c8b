#include "orvanta/platform/Canvas.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <pango/pangocairo.h>
#include <pixman.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/FontDescription.h"
#include "orvanta/platform/Screen.h"
#include "orvanta/platform/Stretch.h"
#include "orvanta/platform/TextLayout.h"

namespace Orvanta::Platform {

namespace {

cairo_status_t writeToFunction(void* closure, const unsigned char* data, unsigned int length) {
    auto* write = static_cast<Canvas::WriteFunction*>(closure);
    return (*write)(data, length) ? CAIRO_STATUS_SUCCESS : CAIRO_STATUS_WRITE_ERROR;
}

void clipToRects(cairo_t* cr, const std::vector<CRect>& rects) {
    cairo_new_path(cr);
    for (const CRect& r : rects) cairo_rectangle(cr, r.left, r.top, r.width(), r.height());
    cairo_clip(cr);
}

}  // namespace

Canvas::Canvas(cairo_surface_t* surface, Kind kind, CPoint deviceOrigin, const Region* clip)
    : mSurface(cairo_surface_reference(surface)),
      mCairo(cairo_create(surface)),
      mKind(kind),
      mDeviceOrigin(deviceOrigin),
      mHasBaseClip(clip != nullptr) {
    if (kind == Kind::Pdf) mCaps.dpiX = mCaps.dpiY = 72;
    if (clip) {
        mBaseClip = *clip;
        clipToRects(mCairo, clip->getRects());
    }
    cairo_set_antialias(mCairo, CAIRO_ANTIALIAS_NONE);
    applyMatrix();
}

Canvas::~Canvas() {
    cairo_destroy(mCairo);
    cairo_surface_destroy(mSurface);
}

std::unique_ptr<Canvas> Canvas::createPdf(WriteFunction write, double widthPoints, double heightPoints) {
    auto function = std::make_unique<WriteFunction>(std::move(write));
    cairo_surface_t* surface =
        cairo_pdf_surface_create_for_stream(&writeToFunction, function.get(), widthPoints, heightPoints);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return nullptr;
    }
    auto canvas = std::make_unique<Canvas>(surface, Kind::Pdf);
    cairo_surface_destroy(surface);
    canvas->mWrite = std::move(function);
    DeviceCaps& caps = canvas->mCaps;
    caps.paperWidth = caps.printableWidth = static_cast<int>(std::lround(widthPoints));
    caps.paperHeight = caps.printableHeight = static_cast<int>(std::lround(heightPoints));
    return canvas;
}

std::unique_ptr<Canvas> Canvas::createRecording(const CRect& extents) {
    cairo_rectangle_t r{double(extents.left), double(extents.top), double(extents.width()),
                        double(extents.height())};
    cairo_surface_t* surface = cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, &r);
    auto canvas = std::make_unique<Canvas>(surface, Kind::Recording);
    cairo_surface_destroy(surface);
    return canvas;
}

namespace {

// Cairo draws top-down rows of four bytes: a bottom-up DIB section would be upside down to it.
bool isTopDown32(const Bitmap* bitmap) {
    if (!bitmap || !bitmap->isDibSection() || !bitmap->bits()) return false;
    const BITMAPINFOHEADER& header = bitmap->header();
    return header.biBitCount == 32 && header.biCompression == BI_RGB && header.biHeight < 0;
}

}  // namespace

std::unique_ptr<Canvas> Canvas::createForBitmap(Bitmap* bitmap, bool alpha) {
    if (!isTopDown32(bitmap)) return nullptr;
    const BITMAPINFOHEADER& header = bitmap->header();
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(bitmap->bits(), alpha ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_RGB24,
                                            header.biWidth, -header.biHeight, header.biWidth * 4);
    auto canvas = std::make_unique<Canvas>(surface, Kind::Bitmap);
    cairo_surface_destroy(surface);
    return canvas;
}

std::unique_ptr<Canvas> Canvas::createScreenContext() {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    auto canvas = std::make_unique<Canvas>(surface, Kind::Bitmap);
    cairo_surface_destroy(surface);
    const CSize screen = screenResolution();
    canvas->mCaps.dpiX = screen.cx;
    canvas->mCaps.dpiY = screen.cy;
    return canvas;
}

int Canvas::save() {
    cairo_save(mCairo);
    mSaved.push_back(mState);
    return static_cast<int>(mSaved.size());
}

bool Canvas::restore(int level) {
    const int depth = static_cast<int>(mSaved.size());
    if (level < 0) level = depth + level + 1;
    if (level < 1 || level > depth) return false;
    while (static_cast<int>(mSaved.size()) >= level) {
        mState = mSaved.back();
        mSaved.pop_back();
        cairo_restore(mCairo);
    }
    applyMatrix();
    return true;
}

double Canvas::unitScaleX() const {
    return mKind == Kind::Pdf ? 72.0 / mCaps.dpiX : 1.0;
}

double Canvas::unitScaleY() const {
    return mKind == Kind::Pdf ? 72.0 / mCaps.dpiY : 1.0;
}

CPoint Canvas::originInDevice() const {
    return CPoint(mDeviceOrigin.x + mCaps.offsetX + mState.viewportOrigin.x,
                  mDeviceOrigin.y + mCaps.offsetY + mState.viewportOrigin.y);
}

void Canvas::applyMatrix() {
    cairo_identity_matrix(mCairo);
    cairo_scale(mCairo, unitScaleX(), unitScaleY());
    const CPoint origin = originInDevice();
    cairo_translate(mCairo, origin.x, origin.y);
    if (mState.mapScale != 1.0) cairo_scale(mCairo, mState.mapScale, mState.mapScale);
}

int Canvas::getDeviceCaps(int index) const {
    switch (index) {
        case LOGPIXELSX:
            return mCaps.dpiX;
        case LOGPIXELSY:
            return mCaps.dpiY;
        case PHYSICALWIDTH:
            return mCaps.paperWidth;
        case PHYSICALHEIGHT:
            return mCaps.paperHeight;
        case PHYSICALOFFSETX:
            return mCaps.offsetX;
        case PHYSICALOFFSETY:
            return mCaps.offsetY;
        case HORZRES:
            return mCaps.printableWidth;
        case VERTRES:
            return mCaps.printableHeight;
        case HORZSIZE:
            return static_cast<int>(std::lround(mCaps.printableWidth * 25.4 / mCaps.dpiX));
        case VERTSIZE:
            return static_cast<int>(std::lround(mCaps.printableHeight * 25.4 / mCaps.dpiY));
        default:
            return 0;
    }
}

void Canvas::setDeviceCaps(const DeviceCaps& caps) {
    mCaps = caps;
    if (mCaps.dpiX <= 0 || mCaps.dpiY <= 0) mCaps.dpiX = mCaps.dpiY = 96;
    if (mKind == Kind::Pdf && caps.paperWidth > 0 && caps.paperHeight > 0)
        cairo_pdf_surface_set_size(mSurface, caps.paperWidth * unitScaleX(), caps.paperHeight * unitScaleY());
    // A printer draws nothing outside its printable area.
    if (caps.paperWidth > 0 && caps.paperHeight > 0) {
        mBaseClip = Region(CRect(caps.offsetX, caps.offsetY, caps.offsetX + caps.printableWidth,
                                 caps.offsetY + caps.printableHeight));
        mHasBaseClip = true;
    }
    selectClipRegion(nullptr);
}

void Canvas::setMapScale(double scale) {
    mState.mapScale = scale > 0 ? scale : 1.0;
    applyMatrix();
}

CPoint Canvas::setViewportOrigin(CPoint origin) {
    const CPoint old = mState.viewportOrigin;
    mState.viewportOrigin = origin;
    applyMatrix();
    return old;
}

CRect Canvas::getClipBox() const {
    double x1, y1, x2, y2;
    cairo_clip_extents(mCairo, &x1, &y1, &x2, &y2);
    CRect box(static_cast<int>(std::floor(x1)), static_cast<int>(std::floor(y1)),
              static_cast<int>(std::ceil(x2)), static_cast<int>(std::ceil(y2)));
    return box.isEmpty() ? CRect() : box;
}

void Canvas::intersectClipRect(const CRect& rect) {
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, rect.left, rect.top, std::max(rect.width(), 0), std::max(rect.height(), 0));
    cairo_clip(mCairo);
}

void Canvas::selectClipRegion(const Region* region) {
    cairo_reset_clip(mCairo);
    cairo_identity_matrix(mCairo);
    cairo_scale(mCairo, unitScaleX(), unitScaleY());
    if (mHasBaseClip) clipToRects(mCairo, mBaseClip.getRects());
    if (region) {
        Region device(*region);
        device.offset(mDeviceOrigin.x, mDeviceOrigin.y);
        clipToRects(mCairo, device.getRects());
    }
    applyMatrix();
}

void Canvas::setPen(COLORREF color, int width, PenStyle style) {
    mState.penColor = color;
    mState.penWidth = std::max(width, 1);
    mState.penStyle = style;
}

void Canvas::setBrush(COLORREF color) {
    mState.hasBrush = true;
    mState.brushColor = color;
}

void Canvas::setNullBrush() {
    mState.hasBrush = false;
}

COLORREF Canvas::setTextColor(COLORREF color) {
    return std::exchange(mState.textColor, color);
}

COLORREF Canvas::setBkColor(COLORREF color) {
    return std::exchange(mState.bkColor, color);
}

void Canvas::setBkOpaque(bool opaque) {
    mState.bkOpaque = opaque;
}

void Canvas::setXorMode(bool on) {
    mState.xorMode = on;
}

int Canvas::setStretchMode(int mode) {
    return std::exchange(mState.stretchMode, mode);
}

void Canvas::selectFont(const FontDescription* font) {
    mState.font = font;
}

const FontDescription& Canvas::getFont() const {
    return mState.font ? *mState.font : FontDescription::defaultFont();
}

void Canvas::useColor(COLORREF color) {
    if (mState.xorMode) {
        cairo_set_operator(mCairo, CAIRO_OPERATOR_DIFFERENCE);
        cairo_set_source_rgb(mCairo, 1, 1, 1);
    } else {
        cairo_set_operator(mCairo, CAIRO_OPERATOR_OVER);
        cairo_set_source_rgb(mCairo, GetRValue(color) / 255.0, GetGValue(color) / 255.0,
                             GetBValue(color) / 255.0);
    }
}

void Canvas::fillRect(const CRect& rect, COLORREF color) {
    if (rect.isEmpty()) return;
    useColor(color);
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, rect.left, rect.top, rect.width(), rect.height());
    cairo_fill(mCairo);
}

void Canvas::frameRect(const CRect& rect, COLORREF color, int width) {
    if (rect.isEmpty() || width <= 0) return;
    const int w = std::min({width, (rect.width() + 1) / 2, (rect.height() + 1) / 2});
    useColor(color);
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, rect.left, rect.top, rect.width(), w);
    cairo_rectangle(mCairo, rect.left, rect.bottom - w, rect.width(), w);
    cairo_rectangle(mCairo, rect.left, rect.top + w, w, rect.height() - 2 * w);
    cairo_rectangle(mCairo, rect.right - w, rect.top + w, w, rect.height() - 2 * w);
    cairo_fill(mCairo);
}

void Canvas::applyPen() {
    useColor(mState.penColor);
    cairo_set_line_width(mCairo, mState.penWidth);
    cairo_set_line_cap(mCairo, CAIRO_LINE_CAP_BUTT);
    if (mState.penStyle == PenStyle::Dot) {
        const double dash = 1.0;
        cairo_set_dash(mCairo, &dash, 1, 0);
    } else {
        cairo_set_dash(mCairo, nullptr, 0, 0);
    }
}

void Canvas::moveTo(CPoint point) {
    mState.position = point;
}

// A line covers the pixels from its start up to, not including, its end; strokes run through pixel
// centres so that one-pixel lines fill whole pixels.
void Canvas::lineTo(CPoint point) {
    const CPoint from = mState.position;
    mState.position = point;
    if (mState.penStyle == PenStyle::Null || from == point) return;
    applyPen();
    const double half = (mState.penWidth % 2) ? 0.5 : 0.0;
    cairo_new_path(mCairo);
    if (from.y == point.y) {
        cairo_move_to(mCairo, from.x, from.y + half);
        cairo_line_to(mCairo, point.x, point.y + half);
    } else if (from.x == point.x) {
        cairo_move_to(mCairo, from.x + half, from.y);
        cairo_line_to(mCairo, point.x + half, point.y);
    } else {
        cairo_move_to(mCairo, from.x + half, from.y + half);
        cairo_line_to(mCairo, point.x + half, point.y + half);
    }
    cairo_stroke(mCairo);
}

void Canvas::rectangle(const CRect& rect) {
    if (rect.isEmpty()) return;
    if (mState.hasBrush) fillRect(rect, mState.brushColor);
    if (mState.penStyle == PenStyle::Null) return;
    if (mState.penStyle == PenStyle::Solid) {
        frameRect(rect, mState.penColor, mState.penWidth);
        return;
    }
    applyPen();
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, rect.left + 0.5, rect.top + 0.5, rect.width() - 1, rect.height() - 1);
    cairo_stroke(mCairo);
}

void Canvas::ellipse(const CRect& rect) {
    if (rect.isEmpty()) return;
    cairo_save(mCairo);
    cairo_set_antialias(mCairo, CAIRO_ANTIALIAS_DEFAULT);
    cairo_new_path(mCairo);
    cairo_translate(mCairo, rect.left + rect.width() / 2.0, rect.top + rect.height() / 2.0);
    cairo_scale(mCairo, rect.width() / 2.0, rect.height() / 2.0);
    cairo_arc(mCairo, 0, 0, 1, 0, 2 * M_PI);
    cairo_restore(mCairo);
    if (mState.hasBrush) {
        useColor(mState.brushColor);
        cairo_fill_preserve(mCairo);
    }
    if (mState.penStyle != PenStyle::Null) {
        applyPen();
        cairo_stroke(mCairo);
    }
    cairo_new_path(mCairo);
}

void Canvas::drawLayout(const TextLayout& layout, CPoint topLeft) {
    if (mState.bkOpaque) fillRect(CRect(topLeft, layout.getSize()), mState.bkColor);
    useColor(mState.textColor);
    cairo_move_to(mCairo, topLeft.x, topLeft.y);
    pango_cairo_show_layout(mCairo, layout.pangoLayout());
}

CSize Canvas::getTextExtent(const CString& text) const {
    return TextLayout(text, getFont()).getSize();
}

int Canvas::drawText(const CString& text, CRect* rect, UINT format) {
    if (!rect) return 0;
    TextLayout layout(text, getFont());
    if (format & DT_WORDBREAK && !(format & DT_SINGLELINE))
        layout.setWidth(std::max(rect->width(), 0), TextLayout::Overflow::Wrap);
    else if (format & DT_END_ELLIPSIS)
        layout.setWidth(std::max(rect->width(), 0), TextLayout::Overflow::Ellipsis);
    if (format & DT_CENTER)
        layout.setAlignment(TextLayout::Align::Center);
    else if (format & DT_RIGHT)
        layout.setAlignment(TextLayout::Align::Right);
    CSize size = layout.getSize();
    if (format & DT_CALCRECT) {
        rect->right = rect->left + size.cx;
        rect->bottom = rect->top + size.cy;
        return size.cy;
    }
    // A layout without a width limit is as wide as its text: place it by hand.
    const bool limited = pango_layout_get_width(layout.pangoLayout()) >= 0;
    int x = rect->left;
    if (!limited && (format & DT_CENTER)) x = rect->left + (rect->width() - size.cx) / 2;
    if (!limited && (format & DT_RIGHT)) x = rect->right - size.cx;
    if (limited) size.cx = rect->width();
    int y = rect->top;
    if (format & DT_SINGLELINE) {
        if (format & DT_VCENTER) y = rect->top + (rect->height() - size.cy) / 2;
        if (format & DT_BOTTOM) y = rect->bottom - size.cy;
    }
    const bool clip = !(format & DT_NOCLIP);
    if (clip) {
        cairo_save(mCairo);
        intersectClipRect(*rect);
    }
    drawLayout(layout, CPoint(x, y));
    if (clip) cairo_restore(mCairo);
    return size.cy;
}

int Canvas::stretchDIBits(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                          int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info) {
    if (info.bmiHeader.biCompression == BI_JPEG)
        return mKind == Kind::Pdf && bits ? drawJpeg(xDest, yDest, destWidth, destHeight, bits, info)
                                          : GDI_ERROR;
    if (!bits) return 0;
    if (!isDrawableRowFormat(info.bmiHeader) || destWidth <= 0 || destHeight <= 0) return 0;
    if (cairo_surface_get_type(mSurface) == CAIRO_SURFACE_TYPE_IMAGE && mState.mapScale == 1.0)
        return stretchOntoImage(xDest, yDest, destWidth, destHeight, xSrc, ySrc, srcWidth, srcHeight, bits,
                                info);
    return stretchThroughCairo(xDest, yDest, destWidth, destHeight, xSrc, ySrc, srcWidth, srcHeight, bits,
                               info);
}

int Canvas::stretchOntoImage(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                             int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info) {
    cairo_surface_flush(mSurface);
    const cairo_format_t format = cairo_image_surface_get_format(mSurface);
    if (format != CAIRO_FORMAT_RGB24 && format != CAIRO_FORMAT_ARGB32) return 0;
    const int width = cairo_image_surface_get_width(mSurface);
    const int height = cairo_image_surface_get_height(mSurface);
    pixman_image_t* target = pixman_image_create_bits_no_clear(
        format == CAIRO_FORMAT_RGB24 ? PIXMAN_x8r8g8b8 : PIXMAN_a8r8g8b8, width, height,
        reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(mSurface)),
        cairo_image_surface_get_stride(mSurface));
    if (!target) return 0;

    // The clip as device rectangles: Cairo gives them in user space, which differs by a translation.
    const int dx = originInDevice().x;
    const int dy = originInDevice().y;
    Region clip;
    cairo_rectangle_list_t* list = cairo_copy_clip_rectangle_list(mCairo);
    if (list->status == CAIRO_STATUS_SUCCESS) {
        for (int i = 0; i < list->num_rectangles; ++i) {
            const cairo_rectangle_t& r = list->rectangles[i];
            clip.unite(CRect(static_cast<int>(std::lround(r.x)) + dx, static_cast<int>(std::lround(r.y)) + dy,
                             static_cast<int>(std::lround(r.x + r.width)) + dx,
                             static_cast<int>(std::lround(r.y + r.height)) + dy));
        }
    } else {
        clip.unite(CRect(0, 0, width, height));
    }
    cairo_rectangle_list_destroy(list);

    const int rows =
        stretchRowsOnto(target, clip.pixmanRegion(), xDest + dx, yDest + dy, destWidth, destHeight, xSrc,
                        ySrc, srcWidth, srcHeight, bits, info, mState.stretchMode == HALFTONE);
    pixman_image_unref(target);
    cairo_surface_mark_dirty(mSurface);
    return rows;
}

int Canvas::stretchThroughCairo(int xDest, int yDest, int destWidth, int destHeight, int xSrc, int ySrc,
                                int srcWidth, int srcHeight, const void* bits, const BITMAPINFO& info) {
    const BITMAPINFOHEADER& header = info.bmiHeader;
    const int height = std::abs(header.biHeight);
    if (xSrc < 0 || ySrc < 0 || srcWidth <= 0 || srcHeight <= 0 || xSrc + srcWidth > header.biWidth ||
        ySrc + srcHeight > height)
        return 0;
    // Surfaces that are not pixels in memory need an image of their own; only the rows used are copied.
    const int bytesPerPixel = header.biBitCount / 8;
    const int stride = (header.biWidth * header.biBitCount + 31) / 32 * 4;
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, srcWidth, srcHeight);
    auto* out = cairo_image_surface_get_data(image);
    const int outStride = cairo_image_surface_get_stride(image);
    const auto* in = static_cast<const unsigned char*>(bits);
    const int topSrc = height - ySrc - srcHeight;
    for (int y = 0; y < srcHeight; ++y) {
        const int row = header.biHeight > 0 ? height - 1 - (topSrc + y) : topSrc + y;
        const unsigned char* from = in + static_cast<std::ptrdiff_t>(row) * stride + xSrc * bytesPerPixel;
        auto* to = reinterpret_cast<uint32_t*>(out + static_cast<std::ptrdiff_t>(y) * outStride);
        for (int x = 0; x < srcWidth; ++x, from += bytesPerPixel)
            to[x] = uint32_t(from[0]) | (uint32_t(from[1]) << 8) | (uint32_t(from[2]) << 16);
    }
    cairo_surface_mark_dirty(image);
    cairo_save(mCairo);
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, xDest, yDest, destWidth, destHeight);
    cairo_clip(mCairo);
    cairo_translate(mCairo, xDest, yDest);
    cairo_scale(mCairo, static_cast<double>(destWidth) / srcWidth,
                static_cast<double>(destHeight) / srcHeight);
    cairo_set_source_surface(mCairo, image, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(mCairo),
                             mState.stretchMode == HALFTONE ? CAIRO_FILTER_GOOD : CAIRO_FILTER_NEAREST);
    cairo_pattern_set_extend(cairo_get_source(mCairo), CAIRO_EXTEND_PAD);
    cairo_set_operator(mCairo, CAIRO_OPERATOR_SOURCE);
    cairo_paint(mCairo);
    cairo_restore(mCairo);
    cairo_surface_destroy(image);
    return srcHeight;
}

// The JPEG's bytes ride as MIME data on a source surface of one pixel, which the PDF surface writes
// into the file as they are, at the JPEG's own size, across the square that pixel covers. A surface
// of the picture's size would serve as well, but the page takes a snapshot of every source it
// paints: its blank pixels would be copied for nothing.
int Canvas::paintJpegBlock(int xDest, int yDest, int destWidth, int destHeight, const unsigned char* data,
                           unsigned long size, void (*release)(void*), void* closure) {
    cairo_surface_t* image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    if (cairo_surface_status(image) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_set_mime_data(image, CAIRO_MIME_TYPE_JPEG, data, size, release, closure) !=
            CAIRO_STATUS_SUCCESS) {
        release(closure);
        cairo_surface_destroy(image);
        return GDI_ERROR;
    }
    cairo_save(mCairo);
    cairo_translate(mCairo, xDest, yDest);
    cairo_scale(mCairo, destWidth, destHeight);
    cairo_set_source_surface(mCairo, image, 0, 0);
    cairo_paint(mCairo);
    cairo_restore(mCairo);
    cairo_surface_destroy(image);
    return cairo_status(mCairo) == CAIRO_STATUS_SUCCESS ? 1 : GDI_ERROR;
}

int Canvas::drawJpeg(int xDest, int yDest, int destWidth, int destHeight, const void* bits,
                     const BITMAPINFO& info) {
    const BITMAPINFOHEADER& header = info.bmiHeader;
    const int width = header.biWidth;
    const int height = std::abs(header.biHeight);
    if (width <= 0 || height <= 0 || header.biSizeImage == 0 || destWidth <= 0 || destHeight <= 0)
        return GDI_ERROR;
    auto* copy = static_cast<unsigned char*>(std::malloc(header.biSizeImage));
    if (!copy) return GDI_ERROR;
    std::memcpy(copy, bits, header.biSizeImage);
    return paintJpegBlock(xDest, yDest, destWidth, destHeight, copy, header.biSizeImage, std::free, copy) ==
                   GDI_ERROR
               ? GDI_ERROR
               : height;
}

namespace {

void releaseContents(void* closure) {
    delete static_cast<FileContents*>(closure);
}

}  // namespace

// Read rather than mapped: a file that another program cuts short meanwhile gives fewer bytes, never
// a fault while the page is written out.
bool Canvas::drawJpegFile(int xDest, int yDest, int destWidth, int destHeight, const std::string& path) {
    if (mKind != Kind::Pdf || destWidth <= 0 || destHeight <= 0) return false;
    auto contents = std::make_unique<FileContents>();
    if (!contents->open(path) || contents->size() < 3 || contents->data()[0] != 0xFF ||
        contents->data()[1] != 0xD8)
        return false;
    const unsigned char* data = contents->data();
    const unsigned long size = static_cast<unsigned long>(contents->size());
    return paintJpegBlock(xDest, yDest, destWidth, destHeight, data, size, releaseContents,
                          contents.release()) != GDI_ERROR;
}

bool Canvas::alphaBlend(const CRect& to, const Bitmap* source, const CRect& from) {
    if (!isTopDown32(source) || to.isEmpty() || from.isEmpty()) return false;
    const BITMAPINFOHEADER& header = source->header();
    if (from.left < 0 || from.top < 0 || from.right > header.biWidth || from.bottom > -header.biHeight)
        return false;
    cairo_surface_t* whole = cairo_image_surface_create_for_data(
        source->bits(), CAIRO_FORMAT_ARGB32, header.biWidth, -header.biHeight, header.biWidth * 4);
    // A part of its own, so that filtering at the edges repeats the part's border pixels rather than
    // mixing in the neighbouring frame of a strip.
    cairo_surface_t* part =
        cairo_surface_create_for_rectangle(whole, from.left, from.top, from.width(), from.height());
    cairo_save(mCairo);
    cairo_new_path(mCairo);
    cairo_rectangle(mCairo, to.left, to.top, to.width(), to.height());
    cairo_clip(mCairo);
    cairo_translate(mCairo, to.left, to.top);
    cairo_scale(mCairo, double(to.width()) / from.width(), double(to.height()) / from.height());
    cairo_set_operator(mCairo, CAIRO_OPERATOR_OVER);
    cairo_set_source_surface(mCairo, part, 0, 0);
    cairo_pattern_t* pattern = cairo_get_source(mCairo);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_pattern_set_filter(pattern,
                             mState.stretchMode == HALFTONE ? CAIRO_FILTER_BILINEAR : CAIRO_FILTER_NEAREST);
    cairo_paint(mCairo);
    cairo_restore(mCairo);
    cairo_surface_destroy(part);
    cairo_surface_destroy(whole);
    return true;
}

void Canvas::replayOnto(Canvas& target, CPoint at, double scale) const {
    cairo_surface_flush(mSurface);
    cairo_save(target.mCairo);
    cairo_translate(target.mCairo, at.x, at.y);
    if (scale != 1.0) cairo_scale(target.mCairo, scale, scale);
    cairo_set_source_surface(target.mCairo, mSurface, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(target.mCairo), CAIRO_FILTER_GOOD);
    cairo_paint(target.mCairo);
    cairo_restore(target.mCairo);
}

void Canvas::showPage() {
    cairo_show_page(mCairo);
}

void Canvas::finish() {
    cairo_surface_flush(mSurface);
    if (mKind == Kind::Pdf) cairo_surface_finish(mSurface);
}

}  // namespace Orvanta::Platform
