#include "orvanta/foundation/DateText.h"

#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/DateFormat.h"

namespace Orvanta {

CString dateToText(const SYSTEMTIME& date, int formatResource) {
    constexpr std::size_t kBufferCharacters = 128;
    const CString picture = formatResource ? Resource(formatResource).getString() : CString();
    if (picture.isEmpty()) return CString();
    CString text = Platform::formatDatePicture(date, picture);
    return text.length() < kBufferCharacters ? text : CString();
}

}  // namespace Orvanta
