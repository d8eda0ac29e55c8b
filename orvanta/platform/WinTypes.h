#pragma once
// Plain data structures that keep the field names and byte layout of their Windows counterparts, so
// that the bitmap headers, file times and colours the library stores and compares read the same as
// on Windows. No Windows header is involved.

#include <cstdint>

namespace Orvanta {

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;

// A colour in one 32-bit value: red in the low byte, then green, then blue.
using COLORREF = DWORD;
constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b) {
    return DWORD(r) | (DWORD(g) << 8) | (DWORD(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) {
    return BYTE(c);
}
constexpr BYTE GetGValue(COLORREF c) {
    return BYTE(c >> 8);
}
constexpr BYTE GetBValue(COLORREF c) {
    return BYTE(c >> 16);
}

constexpr DWORD BI_RGB = 0;
constexpr DWORD BI_BITFIELDS = 3;

struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;  // negative: rows run top-down
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40);

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
static_assert(sizeof(BITMAPINFO) == 44);

#pragma pack(push, 2)
struct BITMAPFILEHEADER {
    WORD bfType;
    DWORD bfSize;
    WORD bfReserved1;
    WORD bfReserved2;
    DWORD bfOffBits;
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14);

// 100-nanosecond ticks since 1601-01-01 UTC, split in two halves.
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

// A calendar date and time of day in separate fields; wDayOfWeek counts from Sunday = 0.
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
static_assert(sizeof(SYSTEMTIME) == 16);

// A 128-bit identifier. Data1..Data3 are integers in the machine's byte order; stored on disk they
// are little-endian, so the 16 bytes of a GUID on disk are its memory image on a little-endian host.
struct GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};
static_assert(sizeof(GUID) == 16);

// File attribute bits, as a folder listing reports them (WIN32_FIND_DATA).
constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr DWORD FILE_ATTRIBUTE_DEVICE = 0x40;  // not a regular file: a pipe, a socket, a device
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;  // a symbolic link
constexpr int MAX_PATH = 260;

// One entry of a folder listing: cFileName holds the entry's name, or, where the library hands an
// entry on, its full path; a name that does not fit is never stored cut short.
struct WIN32_FIND_DATA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    char16_t cFileName[MAX_PATH];
};

// Error numbers the library compares, with their Windows values.
constexpr int ERROR_FILE_NOT_FOUND = 2;
constexpr int ERROR_PATH_NOT_FOUND = 3;
constexpr int ERROR_NOT_SAME_DEVICE = 17;
constexpr int ERROR_NOT_READY = 21;
constexpr int ERROR_ALREADY_EXISTS = 183;
constexpr int ERROR_NETWORK_UNREACHABLE = 1231;

}  // namespace Orvanta

namespace Orvanta {

// What the platform reports about a bitmap it holds.
struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits;
};

// What the platform reports about a bitmap whose pixels live in memory the library can address.
struct DIBSECTION {
    BITMAP dsBm;
    BITMAPINFOHEADER dsBmih;
    DWORD dsBitfields[3];
    void* dshSection;
    DWORD dsOffset;
};

}  // namespace Orvanta
