#pragma once
// DibWalker: a cursor over a rectangle of pixel memory, the one way the library reaches pixels by
// coordinates.
//
// Contract: a view is a base address (pixel (0, 0)), a size, and two byte strides (deltaX to the
// right-hand neighbour, deltaY to the pixel below) that may be negative or exchanged, so rotating or
// mirroring a view moves no pixel. Pixels are 1, 3 or 4 bytes; only the first three bytes of a pixel
// are ever read or written. The cursor is always inside the view: a move that would leave it fails
// and changes nothing. A walker does not keep its Dib alive. Broken preconditions throw Exception
// with a fixed text. Whole-view operations give back the cursors they found.
//
// Colour values follow COLORREF: a pixel's memory byte 0 (blue) is bits 16-23, byte 2 (red) bits 0-7;
// a 1-byte pixel reads as its grey in all three and is written from the low byte.

#include <cstddef>

#include "orvanta/foundation/Owned.h"
#include "orvanta/pixels/CGrNav.h"

namespace Orvanta {

class Dib;
class DibRect;
class RotateOp;

class DibWalker : public Owned<DibWalker> {
public:
    explicit DibWalker(Dib* dib);
    DibWalker(Dib* dib, int x, int y, int w, int h);
    // The part rect of the picture, from its fractions.
    DibWalker(Dib* dib, const DibRect& rect);
    // The same view as parent, cursor at (0, 0).
    explicit DibWalker(DibWalker* parent);
    // A part of parent's logical view; it inherits the parent's rotation.
    DibWalker(DibWalker* parent, int x, int y, int w, int h);
    DibWalker(unsigned char* buffer, int width, int height, int deltaX, int deltaY, int bytesPerPixel);
    DibWalker(const DibWalker&) = default;
    DibWalker& operator=(const DibWalker&) = default;
    ~DibWalker() override = default;

    unsigned char* getBuffer() const { return mBuffer; }
    int width() const { return mWidth; }
    int height() const { return mHeight; }
    int getDeltaX() const { return mDeltaX; }
    int getDeltaY() const { return mDeltaY; }
    int getPixelSize() const { return mPixelSize; }
    int currentX() const { return mCurrentX; }
    int currentY() const { return mCurrentY; }
    int totalPixels() const { return mWidth * mHeight; }

    bool goTo(int x, int y) {
        if (x < 0 || x >= mWidth || y < 0 || y >= mHeight) return false;
        mCurrentX = x;
        mCurrentY = y;
        mCurrent = address(x, y);
        return true;
    }
    // These reset the other coordinate to 0.
    bool goToX(int x) { return goTo(x, 0); }
    bool goToY(int y) { return goTo(0, y); }
    void start() { goTo(0, 0); }
    void end() { goTo(mWidth - 1, mHeight - 1); }
    bool nextX() {
        if (mCurrentX + 1 >= mWidth) return false;
        ++mCurrentX;
        mCurrent += mDeltaX;
        return true;
    }
    bool prevX() {
        if (mCurrentX <= 0) return false;
        --mCurrentX;
        mCurrent -= mDeltaX;
        return true;
    }
    bool nextY() {
        if (mCurrentY + 1 >= mHeight) return false;
        ++mCurrentY;
        mCurrent += mDeltaY;
        return true;
    }
    bool prevY() {
        if (mCurrentY <= 0) return false;
        --mCurrentY;
        mCurrent -= mDeltaY;
        return true;
    }
    // Row-major scan: false at the last pixel.
    bool next() { return nextX() || goTo(0, mCurrentY + 1); }
    bool prev() { return prevX() || goTo(mWidth - 1, mCurrentY - 1); }

    unsigned long getPixel() const { return colourAt(mCurrent); }
    unsigned long getPixel(int x, int y) const {
        if (x < 0 || x >= mWidth || y < 0 || y >= mHeight) throwOutside();
        return colourAt(address(x, y));
    }
    void getPixel(unsigned char& v) const {
        if (mPixelSize != 1) throwNotGrey();
        v = mCurrent[0];
    }
    void getPixel(unsigned char& r, unsigned char& g, unsigned char& b) const {
        if (mPixelSize == 1) throwReadNotRgb();
        r = mCurrent[2];
        g = mCurrent[1];
        b = mCurrent[0];
    }
    void setPixel(unsigned long c) { storeColour(mCurrent, c); }
    void setPixel(unsigned long c, int x, int y) {
        if (x < 0 || x >= mWidth || y < 0 || y >= mHeight) throwOutside();
        storeColour(address(x, y), c);
    }
    void setPixel(unsigned char r, unsigned char g, unsigned char b) {
        if (mPixelSize == 1) throwWriteNotRgb();
        mCurrent[2] = r;
        mCurrent[1] = g;
        mCurrent[0] = b;
    }

    void fillSolid(unsigned long c);
    // Squares of a and b; n takes effect only when it exceeds both sides.
    void fillCheckerboard(unsigned long a, unsigned long b, int n);
    void invertColors();
    void swapRandB();
    // Copies src's view into this one, pixel by pixel in step; with swap, exchanges the two. The
    // views may differ in rotation and pixel size but not in size.
    void copyFrom(DibWalker* src, bool swap);
    void copyTo(DibWalker* dest) { dest->copyFrom(this, false); }
    void swapWith(DibWalker* other) { copyFrom(other, true); }
    // Area-weighted resampling of src into this view, in integer arithmetic.
    void resizeFrom(DibWalker* src);
    void resizeTo(DibWalker* dest) { dest->resizeFrom(this); }
    // Exchanges pixels in memory: columns (false) or rows (true).
    void flipInPlace(bool vertical);

    // Turns the view clockwise by 90, 180 or 270 degrees; the cursor stays on its pixel.
    void rotate(int degrees);
    void rotate(RotateOp* op);
    // Reverses the rows' order (true) or each row (false); the cursor goes to (0, 0).
    void mirror(bool vertical);
    CGrNav getGrNav() const { return CGrNav(mBuffer, mDeltaY, mDeltaX, mWidth, mHeight); }

protected:
    // The plain pixel-by-pixel copy through the cursors; copyFrom takes faster roads to the same bytes.
    void copyEachPixel(DibWalker* src, bool swap);

private:
    void initFromDib(Dib* dib, int x, int y, int w, int h);
    unsigned char* address(int x, int y) const {
        return mBuffer + static_cast<std::ptrdiff_t>(mDeltaX) * x + static_cast<std::ptrdiff_t>(mDeltaY) * y;
    }
    unsigned long colourAt(const unsigned char* p) const {
        if (mPixelSize == 1) return static_cast<unsigned long>(p[0]) * 0x010101ul;
        return (static_cast<unsigned long>(p[0]) << 16) | (static_cast<unsigned long>(p[1]) << 8) | p[2];
    }
    void storeColour(unsigned char* p, unsigned long c) const {
        if (mPixelSize == 1) {
            p[0] = static_cast<unsigned char>(c);
            return;
        }
        p[2] = static_cast<unsigned char>(c);
        p[1] = static_cast<unsigned char>(c >> 8);
        p[0] = static_cast<unsigned char>(c >> 16);
    }
    // Applies f(pixel address) to every pixel of the view.
    template <typename F>
    void forEachPixel(F f);
    bool overlaps(const DibWalker& other) const;

    [[noreturn]] static void throwOutside();
    [[noreturn]] static void throwNotGrey();
    [[noreturn]] static void throwReadNotRgb();
    [[noreturn]] static void throwWriteNotRgb();

    unsigned char* mBuffer = nullptr;
    int mWidth = 0;
    int mHeight = 0;
    int mDeltaX = 0;
    int mDeltaY = 0;
    int mPixelSize = 0;
    int mCurrentX = 0;
    int mCurrentY = 0;
    unsigned char* mCurrent = nullptr;
};

}  // namespace Orvanta
