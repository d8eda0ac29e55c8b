// A C++ host of the class library, built against the installed library through find_package.
#include <cstdio>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"

int main() {
    using namespace Orvanta;
    init();
    CodecManager::registerCodec(BmpCodec::create());
    OwnedPtr<Dib> dib = DibSection::create(3, 2, 3);
    const bool ok = isInited() && CodecManager::getCodec(u"photo.bmp") && dib && dib->getBitsSize() == 24;
    deinit();
    std::printf("c++ host: %s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
