#include "orvanta/acquire/AcquireWizardHelper.h"

#include "orvanta/acquire/AcquireWizard.h"

namespace Orvanta {

void AcquireWizardHelper::onEvent(Event* event) {
    mOwner->parseHelperEvent(event);
}

}  // namespace Orvanta
