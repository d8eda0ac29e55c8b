#pragma once
// ResourceModule: the texts, bitmaps and cursors of an application, keyed by integer id, filled by
// the host from files or from data compiled into it (the Linux form of a module's resources).
//
// Contract: one module is the process's current resource module; it starts as an empty module
// of the process and the host may put its own in its place (setCurrent). Lookups of an id the
// module lacks find nothing: loadString answers 0, loadBitmap and loadCursor null. Bitmaps are
// given as BMP files or as packed DIBs (a BITMAPINFOHEADER, any colour table, the pixel rows), of
// 1, 4, 8, 24 or 32 bits per pixel without compression; palette pictures are kept as 24-bit ones.
// loadBitmap makes a new platform bitmap, which the caller deletes; a cursor (the pointer shape the
// window layer shows, made from its picture when it is added) belongs to its module and lives as
// long as the module. Filling happens at start-up; lookups may then come from any thread.

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

// A picture of a resource: its header (24 or 32 bits per pixel, BI_RGB, biHeight's sign as given)
// and its rows, each padded to 4 bytes.
struct ResourcePicture {
    BITMAPINFOHEADER header{};
    std::vector<unsigned char> pixels;
};

class Cursor;

class ResourceModule {
public:
    ResourceModule();
    ~ResourceModule();
    ResourceModule(const ResourceModule&) = delete;
    ResourceModule& operator=(const ResourceModule&) = delete;

    void addString(int id, const CString& text);
    // False, and nothing added, for bytes that are no bitmap of the kinds above.
    bool addBitmap(int id, const void* data, std::size_t size);
    bool addCursor(int id, const void* data, std::size_t size, CPoint hotSpot);
    // Adds the strings of a string table file (docs/formats/string-table.md). False, and nothing
    // added, for a file that cannot be read or has a malformed line.
    bool loadStringTable(const char16_t* path);
    // Adds a bitmap from a BMP file.
    bool loadBitmapFile(int id, const char16_t* path);

    // Copies up to size − 1 code units of the string into buffer and terminates it; answers the
    // number copied, 0 for an id without a string (buffer then holds the empty string).
    int loadString(int id, char16_t* buffer, int size) const;
    // A DIB section: this platform keeps no bitmaps in device memory, so every bitmap is one.
    HBITMAP loadBitmap(int id) const;
    Cursor* loadCursor(int id) const;

    // The current module, never null.
    static ResourceModule* current();
    // Puts a module in place as the current one; null puts the process's own empty module back.
    static void setCurrent(ResourceModule* module);

private:
    std::map<int, CString> mStrings;
    std::map<int, ResourcePicture> mBitmaps;
    std::map<int, std::unique_ptr<Cursor>> mCursors;
};

}  // namespace Orvanta::Platform

namespace Orvanta {

// A module's handle, as the interfaces that name a module take it; null stands for the current one.
using HINSTANCE = Platform::ResourceModule*;
using HCURSOR = Platform::Cursor*;

}  // namespace Orvanta
