#pragma once
// What the system tells about the user's language and its own version.
//
// Contract: userLanguageId is the language of the user's messages as the platform's language id
// (the primary language in the low 10 bits, the sublanguage in the high 6): from the locale named by
// the first of LC_ALL, LC_MESSAGES and LANG that is set and not empty, read when asked.
// languageIdOfLocale maps a locale name of the form language[_TERRITORY][.codeset][@modifier]
// through ICU's table of language ids: the codeset does not matter, the modifiers latin, cyrillic
// and devanagari name the script, any other is a variant (ca_ES@valencia). "C", "POSIX", an empty
// name and a language ICU has no id for give 0, the unknown language. systemVersion is the
// kernel's release (6.1 for "6.1.0-13-amd64"); false, with both 0, when it cannot be read.

#include <string_view>

#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {

WORD userLanguageId();
WORD languageIdOfLocale(std::string_view locale);
bool systemVersion(int* major, int* minor);

}  // namespace Orvanta::Platform
