#pragma once
// Cursor: a pointer shape (the HCURSOR): one of the system's standard shapes, or a picture with a
// hot spot. setCursor shows it over the library's windows.
//
// Contract: system(id) gives the same object for the same id, for the whole process, and null for an
// id that is not a standard shape; a picture's cursor belongs to whoever made it (a resource
// module). The SDL cursor behind one is made when it is first
// shown on an open display; without a display, setting a cursor only records it.

#include <cstdint>
#include <vector>

#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/WinTypes.h"

struct SDL_Cursor;

namespace Orvanta {

constexpr int IDC_ARROW = 32512;
constexpr int IDC_IBEAM = 32513;
constexpr int IDC_WAIT = 32514;
constexpr int IDC_CROSS = 32515;
constexpr int IDC_SIZENWSE = 32642;
constexpr int IDC_SIZENESW = 32643;
constexpr int IDC_SIZEWE = 32644;
constexpr int IDC_SIZENS = 32645;
constexpr int IDC_SIZEALL = 32646;
constexpr int IDC_NO = 32648;
constexpr int IDC_HAND = 32649;
constexpr int IDC_APPSTARTING = 32650;

}  // namespace Orvanta

namespace Orvanta::Platform {

class Cursor {
public:
    static Cursor* system(int id);
    // From top-down 32-bit rows (blue, green, red, alpha), copied.
    static Cursor* fromPixels(int width, int height, const std::uint8_t* bgra, CPoint hotSpot);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    // SetCursor: shows the cursor (null hides the pointer) and returns the one shown before.
    static Cursor* set(Cursor* cursor);
    static Cursor* current();

    // The standard shape's id, 0 for a picture.
    int getId() const { return mId; }
    CPoint getHotSpot() const { return mHotSpot; }

private:
    Cursor(int id, int width, int height, std::vector<std::uint8_t> pixels, CPoint hotSpot);
    SDL_Cursor* sdlCursor();

    int mId;
    int mWidth;
    int mHeight;
    std::vector<std::uint8_t> mPixels;
    CPoint mHotSpot;
    SDL_Cursor* mSdl = nullptr;
};

}  // namespace Orvanta::Platform
