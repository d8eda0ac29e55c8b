#pragma once
// Exception: a violated precondition in the pixel and codec layers, or a file that a codec or a store
// had begun to read and found unusable.

#include "orvanta/foundation/Throwable.h"

namespace Orvanta {

class Exception : public Throwable {
public:
    explicit Exception(const char16_t* message) : Throwable(message) {}
};

}  // namespace Orvanta
