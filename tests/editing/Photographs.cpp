#include "tests/editing/Photographs.h"

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "tests/support/TestData.h"

namespace OrvantaTest {

Orvanta::Dib* loadPhotograph(const std::string& relative) {
    orvantaIUInit();
    const Orvanta::CString path = Orvanta::CString::fromUtf8(testDataPath(relative));
    Orvanta::Codec* codec = Orvanta::CodecManager::getCodec(path);
    if (!codec || codec->getCodecType() != Orvanta::CodecTypeImage) return nullptr;
    Orvanta::CSize size;
    return static_cast<Orvanta::ImageCodec*>(codec)->read(path, &size, 0, 0);
}

const std::vector<std::pair<std::string, Orvanta::OwnedPtr<Orvanta::Dib>>>& decodedPhotographs() {
    static const auto photos = [] {
        std::vector<std::pair<std::string, Orvanta::OwnedPtr<Orvanta::Dib>>> loaded;
        for (const char* name : {"bmp/rgb24-photo-119x96-pad3.bmp", "bmp/rle8-photo-hopper-128x128.bmp",
                                 "jpeg/fujifilm-finepix40i-600x450.jpg", "jpeg/sony-dsc-hx5v-730x547.jpg",
                                 "jpeg/canon-eos7d-photoshop-allsegs.jpg"})
            if (Orvanta::Dib* dib = loadPhotograph(name))
                loaded.emplace_back(name, Orvanta::OwnedPtr<Orvanta::Dib>(dib));
        return loaded;
    }();
    return photos;
}

}  // namespace OrvantaTest
