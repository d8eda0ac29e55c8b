#include "orvanta/platform/ResourceModule.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <string_view>

#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/StringTableFormat.h"

namespace Orvanta::Platform {

namespace {

// The host's module when it has set one; null means the process's own.
ResourceModule* gCurrent = nullptr;

// Made on first use and never destroyed, so that statics of other files can fill it at any time.
ResourceModule& processModule() {
    static ResourceModule* module = new ResourceModule();
    return *module;
}

// The largest bitmap file the loader reads.
constexpr long long kMaxBitmapFileSize = 256LL * 1024 * 1024;

unsigned readLittle32(const unsigned char* p) {
    return unsigned(p[0]) | (unsigned(p[1]) << 8) | (unsigned(p[2]) << 16) | (unsigned(p[3]) << 24);
}

long long rowBytes(long long width, int bitCount) {
    return (width * bitCount + 31) / 32 * 4;
}

// The pixel of column x of a row of 1, 4 or 8 bits per pixel: leftmost pixel in the high bits.
unsigned paletteIndex(const unsigned char* row, int x, int bitCount) {
    const int bit = x * bitCount;
    const unsigned byte = row[bit / 8];
    return (byte >> (8 - bitCount - bit % 8)) & ((1u << bitCount) - 1);
}

bool parsePicture(const unsigned char* data, std::size_t size, ResourcePicture* out) {
    const unsigned char* dib = data;
    std::size_t dibSize = size;
    long long pixelOffset = -1;
    if (size >= sizeof(BITMAPFILEHEADER) && data[0] == 'B' && data[1] == 'M') {
        dib = data + sizeof(BITMAPFILEHEADER);
        dibSize = size - sizeof(BITMAPFILEHEADER);
        pixelOffset = static_cast<long long>(readLittle32(data + 10)) -
                      static_cast<long long>(sizeof(BITMAPFILEHEADER));
    }
    if (dibSize < sizeof(BITMAPINFOHEADER)) return false;
    const unsigned headerSize = readLittle32(dib);
    if (headerSize < sizeof(BITMAPINFOHEADER) || headerSize > dibSize) return false;
    BITMAPINFOHEADER h;
    std::memcpy(&h, dib, sizeof h);
    const int bitCount = h.biBitCount;
    if (h.biCompression != BI_RGB || h.biWidth <= 0 || h.biHeight == 0 || h.biHeight == INT_MIN) return false;
    if (bitCount != 1 && bitCount != 4 && bitCount != 8 && bitCount != 24 && bitCount != 32) return false;
    const long long paletteCount = h.biClrUsed ? h.biClrUsed : (bitCount <= 8 ? 1LL << bitCount : 0);
    if (paletteCount > 256) return false;
    const long long paletteEnd = headerSize + paletteCount * 4;
    if (pixelOffset < 0) pixelOffset = paletteEnd;
    const long long rows = h.biHeight < 0 ? -static_cast<long long>(h.biHeight) : h.biHeight;
    const long long sourceStride = rowBytes(h.biWidth, bitCount);
    // Row counts are checked by division: a header may claim billions of rows of billions of bytes.
    if (paletteEnd > static_cast<long long>(dibSize) || pixelOffset < paletteEnd ||
        rows > (static_cast<long long>(dibSize) - pixelOffset) / sourceStride)
        return false;
    const int targetBits = bitCount <= 8 ? 24 : bitCount;
    const long long targetStride = rowBytes(h.biWidth, targetBits);
    if (rows > INT_MAX / targetStride) return false;

    ResourcePicture picture;
    picture.header = h;
    picture.header.biSize = sizeof(BITMAPINFOHEADER);
    picture.header.biBitCount = static_cast<WORD>(targetBits);
    picture.header.biSizeImage = static_cast<DWORD>(targetStride * rows);
    picture.header.biClrUsed = picture.header.biClrImportant = 0;
    const unsigned char* pixels = dib + pixelOffset;
    if (bitCount > 8) {
        picture.pixels.assign(pixels, pixels + sourceStride * rows);
    } else {
        const unsigned char* palette = dib + headerSize;
        picture.pixels.assign(static_cast<std::size_t>(targetStride * rows), 0);
        for (long long y = 0; y < rows; ++y) {
            const unsigned char* source = pixels + y * sourceStride;
            unsigned char* target = picture.pixels.data() + y * targetStride;
            for (int x = 0; x < h.biWidth; ++x) {
                const unsigned index = paletteIndex(source, x, bitCount);
                // An index beyond the colour table stays black.
                if (index < paletteCount) std::memcpy(target + x * 3, palette + index * 4, 3);
            }
        }
    }
    *out = std::move(picture);
    return true;
}

bool readWholeFile(const char16_t* path, long long limit, std::string* out) {
    if (!path) return false;
    FileSystem& fs = FileSystem::current();
    const int fd = fs.open(CString(path).toUtf8().c_str(), O_RDONLY, 0);
    if (fd < 0) return false;
    struct stat info;
    bool ok = fs.stat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size <= limit;
    if (ok) {
        out->assign(static_cast<std::size_t>(info.st_size), '\0');
        std::size_t done = 0;
        while (ok && done < out->size()) {
            const ssize_t got = fs.read(fd, out->data() + done, out->size() - done);
            if (got <= 0)
                ok = false;
            else
                done += static_cast<std::size_t>(got);
        }
    }
    fs.close(fd);
    return ok;
}

// One line of a string table: "id<TAB>text", the text with \\, \n and \t escapes.
bool parseStringLine(std::string_view line, int* id, std::string* text) {
    const std::size_t tab = line.find(StringTableFormat::kSeparator);
    if (tab == std::string_view::npos || tab == 0 || tab > 10) return false;
    long long value = 0;
    for (char c : line.substr(0, tab)) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
    }
    if (value < 1 || value > INT_MAX) return false;
    *id = static_cast<int>(value);
    text->clear();
    for (std::size_t i = tab + 1; i < line.size(); ++i) {
        if (line[i] != StringTableFormat::kEscape) {
            *text += line[i];
            continue;
        }
        if (++i == line.size()) return false;
        switch (line[i]) {
            case '\\':
                *text += '\\';
                break;
            case 'n':
                *text += '\n';
                break;
            case 't':
                *text += '\t';
                break;
            default:
                return false;
        }
    }
    return true;
}

}  // namespace

ResourceModule::ResourceModule() = default;

ResourceModule::~ResourceModule() = default;

void ResourceModule::addString(int id, const CString& text) {
    mStrings[id] = text;
}

bool ResourceModule::addBitmap(int id, const void* data, std::size_t size) {
    ResourcePicture picture;
    if (!data || !parsePicture(static_cast<const unsigned char*>(data), size, &picture)) return false;
    mBitmaps[id] = std::move(picture);
    return true;
}

// The pointer shape takes top-down rows of four bytes, opaque where the picture has no alpha.
bool ResourceModule::addCursor(int id, const void* data, std::size_t size, CPoint hotSpot) {
    ResourcePicture picture;
    if (!data || !parsePicture(static_cast<const unsigned char*>(data), size, &picture)) return false;
    const BITMAPINFOHEADER& h = picture.header;
    const int width = h.biWidth;
    const int height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
    const int bytes = h.biBitCount / 8;
    const long long stride = rowBytes(width, h.biBitCount);
    std::vector<std::uint8_t> bgra(static_cast<std::size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        const unsigned char* row = picture.pixels.data() + (h.biHeight < 0 ? y : height - 1 - y) * stride;
        for (int x = 0; x < width; ++x) {
            std::uint8_t* out = &bgra[(static_cast<std::size_t>(y) * width + x) * 4];
            std::memcpy(out, row + x * bytes, 3);
            out[3] = bytes == 4 ? row[x * 4 + 3] : 0xFF;
        }
    }
    Cursor* cursor = Cursor::fromPixels(width, height, bgra.data(), hotSpot);
    if (!cursor) return false;
    mCursors[id].reset(cursor);
    return true;
}

bool ResourceModule::loadStringTable(const char16_t* path) {
    std::string bytes;
    if (!readWholeFile(path, StringTableFormat::kMaxFileSize, &bytes)) return false;
    std::string_view rest(bytes);
    if (rest.substr(0, 3) == "\xEF\xBB\xBF") rest.remove_prefix(3);
    std::map<int, CString> found;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.empty() || line[0] == StringTableFormat::kComment) continue;
        int id;
        std::string text;
        if (!parseStringLine(line, &id, &text)) return false;
        found[id] = CString::fromUtf8(text);
    }
    for (auto& [id, text] : found) mStrings[id] = std::move(text);
    return true;
}

bool ResourceModule::loadBitmapFile(int id, const char16_t* path) {
    std::string bytes;
    return readWholeFile(path, kMaxBitmapFileSize, &bytes) && addBitmap(id, bytes.data(), bytes.size());
}

int ResourceModule::loadString(int id, char16_t* buffer, int size) const {
    if (!buffer || size <= 0) return 0;
    auto it = mStrings.find(id);
    const std::size_t length = it == mStrings.end() ? 0 : it->second.length();
    const std::size_t copied = std::min(length, static_cast<std::size_t>(size - 1));
    if (copied) std::memcpy(buffer, it->second.c_str(), copied * sizeof(char16_t));
    buffer[copied] = u'\0';
    return static_cast<int>(copied);
}

HBITMAP ResourceModule::loadBitmap(int id) const {
    auto it = mBitmaps.find(id);
    if (it == mBitmaps.end()) return nullptr;
    BITMAPINFO info{};
    info.bmiHeader = it->second.header;
    Bitmap* bitmap = Bitmap::createDibSection(info);
    if (bitmap) std::memcpy(bitmap->bits(), it->second.pixels.data(), it->second.pixels.size());
    return bitmap;
}

Cursor* ResourceModule::loadCursor(int id) const {
    auto it = mCursors.find(id);
    return it == mCursors.end() ? nullptr : it->second.get();
}

ResourceModule* ResourceModule::current() {
    return gCurrent ? gCurrent : &processModule();
}

void ResourceModule::setCurrent(ResourceModule* module) {
    gCurrent = module;
}

}  // namespace Orvanta::Platform
