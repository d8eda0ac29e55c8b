#pragma once
// OrvantaSystem: the library's process-wide state, alive from init() to deinit().
//
// Contract: init() is called once on the user-interface thread before anything else of the class
// library; a second call does nothing. deinit() ends what init() began; without init() it does
// nothing. isInited() tells whether the state exists. Codec registrations are not part of it and
// survive deinit().

namespace Orvanta {

class OrvantaSystem {
public:
    static OrvantaSystem* instance() { return mgInstance; }

private:
    friend void init();
    friend void deinit();
    OrvantaSystem() = default;
    ~OrvantaSystem() = default;

    static OrvantaSystem* mgInstance;
};

void init();
void deinit();
bool isInited();

}  // namespace Orvanta
