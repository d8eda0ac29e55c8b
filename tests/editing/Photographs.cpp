#include "tests/editing/Photographs.h"

#include <cstring>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/pixels/DibSection.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

namespace OrvantaTest {

std::vector<std::string> editingPhotographs() {
    return {
        "bmp/rgb24-photo-119x96-pad3.bmp",    // odd width: rows carry padding
        "bmp/rle8-photo-hopper-128x128.bmp",  // read through the palette path
        "jpeg/fujifilm-finepix40i-600x450.jpg",
        "jpeg/sony-dsc-hx5v-730x547.jpg",          // odd height
        "jpeg/canon-eos7d-photoshop-allsegs.jpg",  // portrait
    };
}

Orvanta::Dib* loadPhotograph(const std::string& relative) {
    orvantaIUInit();
    const std::string path = testDataPath(relative);
    const Orvanta::CString widePath = Orvanta::CString::fromUtf8(path);
    Orvanta::Codec* codec = Orvanta::CodecManager::getCodec(widePath);
    if (codec && codec->getCodecType() == Orvanta::CodecTypeImage) {
        Orvanta::CSize size;
        return static_cast<Orvanta::ImageCodec*>(codec)->read(widePath, &size, 0, 0);
    }
    // No codec of the library for this format yet: the reference decoder's pixels.
    const auto packed = referenceDecode(path, 3);
    if (!packed) return nullptr;
    int width = 0, height = 0;
    const std::string command = "/usr/bin/identify -format '%w %h' '" + path + "[0]' 2>/dev/null";
    if (FILE* pipe = popen(command.c_str(), "r")) {
        if (std::fscanf(pipe, "%d %d", &width, &height) != 2) width = height = 0;
        pclose(pipe);
    }
    if (width <= 0 || height <= 0 || packed->size() != static_cast<std::size_t>(width) * height * 3)
        return nullptr;
    Orvanta::DibSection* dib = Orvanta::DibSection::create(width, height, 3);
    for (int y = 0; y < height; ++y)
        std::memcpy(dib->getBits() + static_cast<std::ptrdiff_t>(y) * dib->getStride(),
                    packed->data() + static_cast<std::size_t>(y) * width * 3,
                    static_cast<std::size_t>(width) * 3);
    return dib;
}

}  // namespace OrvantaTest
