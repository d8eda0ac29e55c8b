#include "bench/BenchScreen.h"

#include <benchmark/benchmark.h>

#include <cstdlib>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;

namespace OrvantaBench {

BenchScreen::BenchScreen(CSize size) {
    window = Platform::Window::create(nullptr, CRect(CPoint(0, 0), size), WS_OVERLAPPEDWINDOW, nullptr);
    root = Container::create(window);
    window->show(true);
}

BenchScreen::~BenchScreen() {
    root = nullptr;
    window->destroy();
}

void runUntilIdle(Container* root) {
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
        if (!processMessage(&msg, root)) Platform::dispatchMessage(&msg);
}

int runScreenBenchmarks(int argc, char** argv) {
    setenv("SDL_VIDEODRIVER", "offscreen", 0);
    init();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    deinit();
    return 0;
}

}  // namespace OrvantaBench
