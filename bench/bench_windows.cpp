// The window layer under load, on SDL's offscreen display:
//  - a full repaint of a 1920 x 1080 window holding 500 windowless controls (filled boxes with
//    borders and a line of text each), from invalidation to the pixels presented (budget: 8 ms);
//  - a message posted from another thread until its control has it, through getMessage,
//    processMessage and dispatch, one at a time (budget: a median under 50 us);
//  - messages a second through the loop while another thread posts as fast as it can (budget: a
//    million), and with the posting on the loop's own thread.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include "bench/BenchScreen.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/Label.h"

using namespace Orvanta;
using OrvantaBench::runUntilIdle;
using Screen = OrvantaBench::BenchScreen;

namespace {

using Clock = std::chrono::steady_clock;

void BM_FullRepaint500Controls(benchmark::State& state) {
    Screen screen(CSize(1920, 1080));
    for (int i = 0; i < 500; ++i) {
        const int col = i % 25, row = i / 25;
        Label* label = Label::create(CString::fromUtf8("Photo " + std::to_string(i + 1)),
                                     DT_CENTER | DT_VCENTER | DT_SINGLELINE);
        label->setRect(CRect(col * 76 + 2, row * 54 + 2, col * 76 + 74, row * 54 + 52));
        label->setBkColor(RGB(200 + i % 50, 220, 240 - i % 40));
        label->setBorderWidth(2, Style::kBorders);
        label->setBorderColor(RGB(40, 60, 90), Style::kBorders);
        screen.root->add(label);
    }
    runUntilIdle(screen.root);
    for (auto _ : state) {
        screen.window->invalidate(nullptr, true, true);
        runUntilIdle(screen.root);
    }
}
BENCHMARK(BM_FullRepaint500Controls)->Unit(benchmark::kMillisecond)->MinTime(2.0);

// Receives the posted messages: the time each took from its post, in the first parameter.
class Receiver : public Container {
public:
    static Receiver* create() { return new Receiver(); }
    std::atomic<int> received{0};
    std::vector<double> latencies;
    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_APP) {
            const long long now = Clock::now().time_since_epoch().count();
            latencies.push_back((now - static_cast<long long>(wParam)) / 1000.0);
            received.fetch_add(1, std::memory_order_release);
            return 0;
        }
        if (message == WM_APP + 1) {
            received.fetch_add(1, std::memory_order_relaxed);
            return 0;
        }
        return Container::windowProc(window, message, wParam, lParam);
    }

private:
    Receiver() : Container(false) {}
};

void BM_PostFromAnotherThreadLatency(benchmark::State& state) {
    Screen screen(CSize(200, 100));
    OwnedPtr<Receiver> receiver = Receiver::create();
    receiver->setRect(CRect(0, 0, 100, 100));
    screen.root->add(receiver);
    runUntilIdle(screen.root);
    HWND target = receiver->getHWND();
    constexpr int kPosts = 2000;
    for (auto _ : state) {
        receiver->latencies.clear();
        receiver->received = 0;
        std::thread poster([&] {
            for (int i = 0; i < kPosts; ++i) {
                // Wait until the loop has the last one and is asleep again, then post.
                while (receiver->received.load(std::memory_order_acquire) < i) std::this_thread::yield();
                std::this_thread::sleep_for(std::chrono::microseconds(50));
                Platform::Window::postMessage(
                    target, WM_APP, static_cast<WPARAM>(Clock::now().time_since_epoch().count()), 0);
            }
        });
        MSG msg;
        while (receiver->received < kPosts && Platform::getMessage(&msg))
            if (!processMessage(&msg, screen.root)) Platform::dispatchMessage(&msg);
        poster.join();
    }
    auto latencies = receiver->latencies;
    std::sort(latencies.begin(), latencies.end());
    state.counters["median_us"] = latencies[latencies.size() / 2];
    state.counters["p99_us"] = latencies[latencies.size() * 99 / 100];
}
BENCHMARK(BM_PostFromAnotherThreadLatency)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoopThroughputFromAnotherThread(benchmark::State& state) {
    Screen screen(CSize(200, 100));
    OwnedPtr<Receiver> receiver = Receiver::create();
    receiver->setRect(CRect(0, 0, 100, 100));
    screen.root->add(receiver);
    runUntilIdle(screen.root);
    HWND target = receiver->getHWND();
    const int posts = static_cast<int>(state.range(0));
    for (auto _ : state) {
        receiver->received = 0;
        std::thread poster([&] {
            for (int i = 0; i < posts; ++i) Platform::Window::postMessage(target, WM_APP + 1, 0, 0);
        });
        MSG msg;
        while (receiver->received < posts && Platform::getMessage(&msg))
            if (!processMessage(&msg, screen.root)) Platform::dispatchMessage(&msg);
        poster.join();
    }
    state.counters["messages_per_s"] =
        benchmark::Counter(static_cast<double>(posts) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_LoopThroughputFromAnotherThread)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_LoopThroughputSameThread(benchmark::State& state) {
    Screen screen(CSize(200, 100));
    OwnedPtr<Receiver> receiver = Receiver::create();
    receiver->setRect(CRect(0, 0, 100, 100));
    screen.root->add(receiver);
    runUntilIdle(screen.root);
    HWND target = receiver->getHWND();
    constexpr int kBatch = 1000;
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i) Platform::Window::postMessage(target, WM_APP + 1, 0, 0);
        MSG msg;
        for (int i = 0; i < kBatch && Platform::getMessage(&msg); ++i)
            if (!processMessage(&msg, screen.root)) Platform::dispatchMessage(&msg);
    }
    state.counters["messages_per_s"] =
        benchmark::Counter(static_cast<double>(kBatch) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_LoopThroughputSameThread);

}  // namespace

int main(int argc, char** argv) {
    return OrvantaBench::runScreenBenchmarks(argc, argv);
}
