#include "orvanta/codecs/GenericVideoCodec.h"

#include <new>

namespace Orvanta {

GenericVideoCodec* GenericVideoCodec::create(Image* thumbnail) {
    return new (std::nothrow) GenericVideoCodec(thumbnail);
}

GenericVideoCodec::GenericVideoCodec(Image* thumbnail) : mThumbnail(thumbnail) {
    for (const char16_t* extension : {u"mpg", u"mov", u"qt", u"mpeg", u"avi"})
        mExtensions.push_back(extension);
}

}  // namespace Orvanta
