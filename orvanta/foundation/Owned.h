#pragma once
// Owned<T>: the IOwned mix-in, so that T derives from Owned<T>. It adds nothing.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

template <typename T>
class Owned : public IOwned {
public:
    ~Owned() override = default;
};

}  // namespace Orvanta
