#include "orvanta/assets/Filter.h"

#include "orvanta/assets/Asset.h"

namespace Orvanta {

bool Filter::matches(Asset* asset) {
    return asset && matches(asset->getProperties());
}

}  // namespace Orvanta
