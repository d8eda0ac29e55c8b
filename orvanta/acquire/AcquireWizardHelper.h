#pragma once
// AcquireWizardHelper: the wizard's end of the task events, with the list and thumbnail store the
// scan fills.
//
// Contract: made on the wizard's thread, so that the tasks' events (sendEventLater) arrive there;
// each one is handed to the wizard's parseHelperEvent. It owns the list and the store, which the
// wizard makes on first use.

#include "orvanta/assets/AssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

class AcquireWizard;

class AcquireWizardHelper : public EventListener {
public:
    explicit AcquireWizardHelper(AcquireWizard* owner) : mOwner(owner) {}
    void onEvent(Event* event) override;

    OwnedPtr<ThumbnailDb> thumbnails;
    OwnedPtr<AssetList> list;

private:
    AcquireWizard* mOwner;
};

}  // namespace Orvanta
