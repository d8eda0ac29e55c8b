#include "VideoStock.h"

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"

using namespace Orvanta;

namespace OrvantaTool {

namespace {

constexpr int kWidth = 160;
constexpr int kHeight = 120;
// The film's perforated edges, and the sprocket holes in them.
constexpr int kEdge = 16;
constexpr int kHolePitch = 20;
constexpr int kHoleWidth = 10;
constexpr int kHoleHeight = 8;

// A strip of film with a play sign on its frame: dark edges with light holes, a grey frame, and a
// white triangle pointing right in its middle.
Dib* drawFilmFrame() {
    OwnedPtr<DibSection> dib = DibSection::create(kWidth, kHeight, 3);
    if (!dib) return nullptr;
    for (int y = 0; y < kHeight; ++y) {
        unsigned char* row = dib->getBits() + static_cast<std::ptrdiff_t>(y) * dib->getStride();
        const bool edge = y < kEdge || y >= kHeight - kEdge;
        const int yInEdge = y < kEdge ? y : y - (kHeight - kEdge);
        for (int x = 0; x < kWidth; ++x) {
            int shade = 0x50;
            if (edge) {
                const bool hole = x % kHolePitch >= (kHolePitch - kHoleWidth) / 2 &&
                                  x % kHolePitch < (kHolePitch + kHoleWidth) / 2 &&
                                  yInEdge >= (kEdge - kHoleHeight) / 2 && yInEdge < (kEdge + kHoleHeight) / 2;
                shade = hole ? 0xE0 : 0x18;
            } else {
                // The triangle: 40 pixels wide, as high as it is wide, centred on the frame.
                const int dx = x - (kWidth / 2 - 16), dy = y - kHeight / 2;
                if (dx >= 0 && dx < 40 && 2 * (dy < 0 ? -dy : dy) <= 40 - dx) shade = 0xFF;
            }
            row[3 * x] = row[3 * x + 1] = row[3 * x + 2] = static_cast<unsigned char>(shade);
        }
    }
    return dib.detach();
}

}  // namespace

void registerVideoCodec() {
    static bool registered = false;
    if (registered) return;
    registered = true;
    OwnedPtr<Dib> frame = drawFilmFrame();
    OwnedPtr<Image> stock = frame ? Image::create(frame, false) : nullptr;
    OwnedPtr<GenericVideoCodec> codec = GenericVideoCodec::create(stock);
    // Beyond the library's own video types, those of today's cameras and telephones.
    std::vector<CString> extensions = codec->getExtensions();
    for (const char16_t* more : {u"mp4", u"m4v", u"mts", u"m2ts", u"3gp", u"mkv", u"webm", u"wmv"})
        extensions.push_back(more);
    CodecManager::registerCodec(codec, extensions);
}

}  // namespace OrvantaTool
