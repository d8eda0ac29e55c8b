#include "orvanta/platform/Clipboard.h"

#include <glib.h>

#include <memory>

#include "orvanta/platform/Display.h"
#include "orvanta/platform/SdlLibrary.h"
#include "orvanta/platform/SelectionOwner.h"

namespace Orvanta::Platform {

namespace {

std::uint32_t readLE(const std::vector<std::uint8_t>& bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = size - 1; i >= 0; --i) value = (value << 8) | bytes[at + i];
    return value;
}

void appendLE(std::string& out, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

// A BMP file is the packed DIB behind a 14-byte file header that says where the pixels start: after
// the info header, the colour table and, for a 40-byte header with BI_BITFIELDS, the three masks.
std::string bmpFile(const std::vector<std::uint8_t>& dib) {
    constexpr std::size_t kInfoHeaderSize = 40;
    constexpr std::uint32_t kBitFields = 3;
    if (dib.size() < kInfoHeaderSize) return {};
    const std::uint32_t headerSize = readLE(dib, 0, 4);
    const std::uint32_t bitCount = readLE(dib, 14, 2);
    const std::uint32_t compression = readLE(dib, 16, 4);
    const std::uint32_t coloursUsed = readLE(dib, 32, 4);
    const std::uint32_t colours = coloursUsed ? coloursUsed : (bitCount <= 8 ? 1u << bitCount : 0);
    const std::uint32_t masks = headerSize == kInfoHeaderSize && compression == kBitFields ? 12 : 0;
    const std::uint64_t pixels = 14 + std::uint64_t(headerSize) + 4 * std::uint64_t(colours) + masks;
    if (headerSize < kInfoHeaderSize || pixels > 14 + dib.size()) return {};
    std::string file = "BM";
    appendLE(file, static_cast<std::uint32_t>(14 + dib.size()), 4);
    appendLE(file, 0, 4);
    appendLE(file, static_cast<std::uint32_t>(pixels), 4);
    file.append(reinterpret_cast<const char*>(dib.data()), dib.size());
    return file;
}

struct GFreeDeleter {
    void operator()(char* p) const { g_free(p); }
};

}  // namespace

bool Clipboard::setText(const CString& text) {
    if (!Display::instance().open() || sdl().SetClipboardText(text.toUtf8().c_str()) != 0) return false;
    // SDL sends its claim on the selection with its next look for events: look now, so that a paste
    // in another program right away finds the new text.
    sdl().PumpEvents();
    return true;
}

bool Clipboard::hasText() {
    return Display::instance().open() && sdl().HasClipboardText();
}

CString Clipboard::getText() {
    if (!Display::instance().open()) return CString();
    char* text = sdl().GetClipboardText();
    if (!text) return CString();
    CString result = CString::fromUtf8(text);
    sdl().free(text);
    return result;
}

bool Clipboard::setFiles(const std::vector<CString>& paths, const std::vector<std::uint8_t>& packedDib,
                         bool cut) {
    if (paths.empty() || !Display::instance().open() || Display::instance().getServerName().empty())
        return false;
    // The URI list ends each line with CR LF; the file managers' own list starts with the operation.
    std::string uris, copied = cut ? "cut" : "copy", text;
    for (const CString& path : paths) {
        std::unique_ptr<char, GFreeDeleter> uri(g_filename_to_uri(path.toUtf8().c_str(), nullptr, nullptr));
        if (!uri) return false;
        uris += uri.get() + std::string("\r\n");
        copied.append("\n").append(uri.get());
        if (!text.empty()) text += '\n';
        text += path.toUtf8();
    }
    SelectionOwner::Formats formats = {{"text/uri-list", uris},
                                       {"x-special/gnome-copied-files", copied},
                                       {"UTF8_STRING", text},
                                       {"text/plain;charset=utf-8", text}};
    if (std::string bmp = bmpFile(packedDib); !bmp.empty()) formats.emplace_back("image/bmp", std::move(bmp));
    return SelectionOwner::instance().own(Display::instance().getServerName(), std::move(formats));
}

}  // namespace Orvanta::Platform
