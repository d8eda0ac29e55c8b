#pragma once
// Mnemonic: the letter of a control's text marked with '&' ("&Print" is pressed with Alt+P), and the
// search that gives a pressed mnemonic to the control that takes it.
//
// Contract: in a text, '&' marks the character after it and is not shown; "&&" shows one '&'; a '&'
// at the very end is dropped. Letters match whatever their case. dispatch walks the window tree of
// `from` (from its outermost container, depth first in add order) starting after `from` and wrapping
// round, so that pressing the same mnemonic again reaches the next control that has it; only shown,
// enabled controls are asked.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class Control;

class Mnemonic {
public:
    // The text as shown; *marked is the index there of the marked character, or -1.
    static CString strip(const CString& text, int* marked = nullptr);
    // Whether the text marks `key` (an upper-case letter or a digit).
    static bool matches(const CString& text, char16_t key);
    // True when a control took the key.
    static bool dispatch(Control* from, char16_t key);
};

}  // namespace Orvanta
