#include "orvanta/platform/Cursor.h"

#include <map>

#include "orvanta/platform/Display.h"
#include "orvanta/platform/SdlLibrary.h"

namespace Orvanta::Platform {

namespace {

const std::map<int, SDL_SystemCursor>& systemShapes() {
    static const std::map<int, SDL_SystemCursor> shapes = {
        {IDC_ARROW, SDL_SYSTEM_CURSOR_ARROW},       {IDC_IBEAM, SDL_SYSTEM_CURSOR_IBEAM},
        {IDC_WAIT, SDL_SYSTEM_CURSOR_WAIT},         {IDC_CROSS, SDL_SYSTEM_CURSOR_CROSSHAIR},
        {IDC_SIZENWSE, SDL_SYSTEM_CURSOR_SIZENWSE}, {IDC_SIZENESW, SDL_SYSTEM_CURSOR_SIZENESW},
        {IDC_SIZEWE, SDL_SYSTEM_CURSOR_SIZEWE},     {IDC_SIZENS, SDL_SYSTEM_CURSOR_SIZENS},
        {IDC_SIZEALL, SDL_SYSTEM_CURSOR_SIZEALL},   {IDC_NO, SDL_SYSTEM_CURSOR_NO},
        {IDC_HAND, SDL_SYSTEM_CURSOR_HAND},         {IDC_APPSTARTING, SDL_SYSTEM_CURSOR_WAITARROW},
    };
    return shapes;
}

Cursor* gCurrent = nullptr;

}  // namespace

Cursor::Cursor(int id, int width, int height, std::vector<std::uint8_t> pixels, CPoint hotSpot)
    : mId(id), mWidth(width), mHeight(height), mPixels(std::move(pixels)), mHotSpot(hotSpot) {}

// A cursor shown and then destroyed leaves the pointer to the arrow.
Cursor::~Cursor() {
    if (gCurrent == this) set(system(IDC_ARROW));
    if (mSdl && Display::instance().isOpen()) sdl().FreeCursor(mSdl);
}

Cursor* Cursor::system(int id) {
    static std::map<int, Cursor*>* cursors = new std::map<int, Cursor*>();
    if (!systemShapes().count(id)) return nullptr;
    auto [it, added] = cursors->try_emplace(id, nullptr);
    if (added) it->second = new Cursor(id, 0, 0, {}, CPoint());
    return it->second;
}

Cursor* Cursor::fromPixels(int width, int height, const std::uint8_t* bgra, CPoint hotSpot) {
    if (width <= 0 || height <= 0 || !bgra) return nullptr;
    return new Cursor(0, width, height,
                      std::vector<std::uint8_t>(bgra, bgra + std::size_t(width) * height * 4), hotSpot);
}

SDL_Cursor* Cursor::sdlCursor() {
    if (mSdl || !Display::instance().isOpen()) return mSdl;
    if (mId) {
        mSdl = sdl().CreateSystemCursor(systemShapes().at(mId));
    } else {
        SDL_Surface* surface = sdl().CreateRGBSurfaceWithFormatFrom(mPixels.data(), mWidth, mHeight, 32,
                                                                    mWidth * 4, SDL_PIXELFORMAT_BGRA32);
        if (surface) {
            mSdl = sdl().CreateColorCursor(surface, mHotSpot.x, mHotSpot.y);
            sdl().FreeSurface(surface);
        }
    }
    return mSdl;
}

Cursor* Cursor::set(Cursor* cursor) {
    Cursor* previous = gCurrent;
    gCurrent = cursor;
    if (Display::instance().isOpen()) {
        if (!cursor) {
            sdl().ShowCursor(SDL_DISABLE);
        } else if (SDL_Cursor* shape = cursor->sdlCursor()) {
            sdl().SetCursor(shape);
            sdl().ShowCursor(SDL_ENABLE);
        }
    }
    return previous;
}

Cursor* Cursor::current() {
    return gCurrent;
}

}  // namespace Orvanta::Platform
