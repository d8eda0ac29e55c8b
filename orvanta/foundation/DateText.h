#pragma once
// dateToText: a date as text by a picture that a string resource holds ("dddd, d MMMM yyyy"), in
// the user's locale. The picture language is described in platform/DateFormat.h.
//
// Contract: resource id 0 is the empty picture, which gives the empty text. The text is empty too
// for fields that are not a date, and for a text of 128 characters or more (the size of the
// platform's buffer).

#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

CString dateToText(const SYSTEMTIME& date, int formatResource);

}  // namespace Orvanta
