#pragma once
// What the benchmarks of screens share: a shown top-level window holding a root Container, the loop
// run until nothing is left to do (as a host's would), and their main(), which measures on SDL's
// offscreen display unless SDL_VIDEODRIVER says otherwise (x11 with DISPLAY set measures the same on
// an X server: the wait inside SDL, presentation through the server).

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Container.h"

namespace OrvantaBench {

struct BenchScreen {
    explicit BenchScreen(Orvanta::CSize size);
    ~BenchScreen();
    BenchScreen(const BenchScreen&) = delete;
    BenchScreen& operator=(const BenchScreen&) = delete;

    Orvanta::HWND window;
    Orvanta::OwnedPtr<Orvanta::Container> root;
};

void runUntilIdle(Orvanta::Container* root);

int runScreenBenchmarks(int argc, char** argv);

}  // namespace OrvantaBench
