#pragma once
// Error: a fault of the environment rather than of the data (a codec library that cannot start, an
// angle the rotation code does not know).

#include "orvanta/foundation/Throwable.h"

namespace Orvanta {

class Error : public Throwable {
public:
    explicit Error(const char16_t* message) : Throwable(message) {}
};

}  // namespace Orvanta
