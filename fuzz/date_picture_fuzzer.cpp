// Feeds arbitrary UTF-16 text to the date formatter as a picture, and to the identifier parser.

#include <cstdint>
#include <cstring>
#include <string>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/DateFormat.h"

using namespace Orvanta;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4) return 0;
    // The first four bytes choose the date; the rest is the text.
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(1601 + (data[0] | (data[1] << 8)) % 8399);
    date.wMonth = static_cast<WORD>(1 + data[2] % 12);
    date.wDay = static_cast<WORD>(1 + data[3] % 28);
    std::u16string text((size - 4) / 2, u'\0');
    std::memcpy(text.data(), data + 4, text.size() * 2);
    const CString formatted = Platform::formatDatePicture(date, text.c_str());
    if (text.empty() && !formatted.isEmpty()) __builtin_trap();
    try {
        const UniqueID id{CString(text)};
        // Whatever parses must print back to the same identifier.
        if (!(UniqueID(id.asString()) == id)) __builtin_trap();
    } catch (const Exception&) {
    }
    return 0;
}
