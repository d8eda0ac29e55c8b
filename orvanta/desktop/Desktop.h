#pragma once
// Desktop: makes a picture the desktop's wallpaper: scales it to the screen, writes it as a file
// and hands that file to the desktop.
//
// Contract: a class of static functions. getSize is the screen's size in pixels: the first screen
// of the display (opened on the calling thread if need be; (0, 0) without one), or the size a host
// or a test gave setSize. With picture (w, h) and screen (sw, sh):
//  - needsCrop answers true when h * sw equals sh * w: when the picture has the screen's shape. The
//    name says the reverse; hosts read it as "fits the screen exactly". An unreadable picture or no
//    screen gives false.
//  - createWallpaper scales the picture by sw / w and sh / h when those are equal, else by the
//    larger (kFill: it covers the screen) or the smaller (any other style: it lies within the
//    screen), each side truncated to whole pixels, into a new 3-byte picture filled with color first,
//    and writes that with writeAsBmp. The file has the scaled picture's size, not the screen's, and
//    nothing is cropped: the desktop centres it and clips what overflows. False when there is no
//    picture, no screen, or a side would be empty, or the write fails.
//  - writeAsBmp writes through the codec registry at ImageQualityHigh, so the file's format follows
//    path's extension; false without an image codec for it or when the codec writes nothing.
//  - setWallpaper loads the picture through a temporary asset, makes the wallpaper file on black and
//    has the desktop show it centred (Platform::setDesktopBackground). False for an unreadable
//    picture, an unwritable file, and a desktop that does not take its wallpaper from GNOME's
//    settings (canSetWallpaper false); once the file is written, the desktop's own answer is not
//    awaited.

#include "orvanta/platform/CSize.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Dib;

class Desktop {
public:
    enum Style : int {
        kFill = 1,
        kFit = 2,
    };

    static CSize getSize();
    // Fixes the size getSize answers; (0, 0) goes back to asking the display.
    static void setSize(const CSize& size);
    static bool needsCrop(const CString& path);
    static bool createWallpaper(Dib* dib, const CString& bmpPath, Style style, unsigned long color);
    static bool canSetWallpaper();
    static bool setWallpaper(const CString& picturePath, Style style, const CString& bmpPath);
    static bool writeAsBmp(Dib* dib, const char16_t* path);
};

}  // namespace Orvanta
