#include "orvanta/pixels/Dib.h"

#include <cstring>

namespace Orvanta {

bool Dib::operator==(const Dib& other) const {
    if (getSize() != other.getSize()) return false;
    const int size = getBitsSize();
    if (size != other.getBitsSize()) return false;
    return std::memcmp(getBits(), other.getBits(), static_cast<std::size_t>(size)) == 0;
}

}  // namespace Orvanta
