#include "orvanta/desktop/AbstractPrefs.h"

#include <cstdint>

namespace Orvanta {

bool AbstractPrefs::getBool(const char16_t* name) {
    const unsigned long value = getInt(name);
    return value != 0 && value != 0xFFFFFFFFUL;
}

void AbstractPrefs::setBool(const char16_t* name, bool value) {
    setInt(name, value ? 1 : 0);
}

long AbstractPrefs::getDate(const char16_t* name) {
    // A long is wider here than the stored number: the sign comes from its 32 bits.
    const long date = static_cast<std::int32_t>(getInt(name));
    return date == -1 ? 0 : date;
}

void AbstractPrefs::setDate(const char16_t* name, long value) {
    setInt(name, static_cast<unsigned long>(value));
}

}  // namespace Orvanta
