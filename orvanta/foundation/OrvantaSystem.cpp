#include "orvanta/foundation/OrvantaSystem.h"

namespace Orvanta {

OrvantaSystem* OrvantaSystem::mgInstance = nullptr;

void init() {
    if (OrvantaSystem::mgInstance) return;
    OrvantaSystem::mgInstance = new OrvantaSystem();
}

void deinit() {
    delete OrvantaSystem::mgInstance;
    OrvantaSystem::mgInstance = nullptr;
}

bool isInited() { return OrvantaSystem::instance() != nullptr; }

}  // namespace Orvanta
