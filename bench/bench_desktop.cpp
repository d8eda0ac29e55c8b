// Desktop services, in a session of their own (private configuration and runtime folders):
//  - a second instance's text until the first instance's window has handled it and the sender has
//    its answer, the first instance a process of its own running its message loop (budget: 50 ms);
//  - a preference read, and a preference written (the file replaced whole and flushed to the disk).

#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "orvanta/desktop/RegistryPrefs.h"
#include "orvanta/desktop/SingleInstance.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/ResourceModule.h"
#include "orvanta/platform/Window.h"

using namespace Orvanta;

namespace {

struct Answering : Platform::Window::Handler {
    LRESULT windowProc(HWND, UINT message, WPARAM, LPARAM lParam) override {
        CString text;
        return message == WM_COPYDATA &&
               SingleInstance::crackIncomingMessage(reinterpret_cast<COPYDATASTRUCT*>(lParam), text);
    }
};

// The first instance: takes the name, listens with a window and runs its loop until killed.
pid_t startFirstInstance() {
    int ready[2];
    if (pipe(ready) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) {
        SingleInstance first(u"bench-lock", u"bench-window", u"bench-open");
        Answering handler;
        HWND window = Platform::Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &handler);
        const char listening = first.listen(window);
        if (write(ready[1], &listening, 1) != 1 || !listening) _exit(1);
        for (MSG msg; Platform::getMessage(&msg);) Platform::dispatchMessage(&msg);
        _exit(0);
    }
    char listening = 0;
    const bool started = read(ready[0], &listening, 1) == 1 && listening;
    close(ready[0]), close(ready[1]);
    return started ? child : -1;
}

void BM_SecondInstanceTextHandledByTheFirst(benchmark::State& state) {
    const pid_t first = startFirstInstance();
    if (first < 0) return state.SkipWithError("the first instance did not start");
    SingleInstance second(u"bench-lock", u"bench-window", u"bench-open");
    for (auto _ : state) second.sendToFirstInstance(u"/home/ana/Pictures/2026/IMG_0001.JPG");
    kill(first, SIGKILL);
    waitpid(first, nullptr, 0);
}
BENCHMARK(BM_SecondInstanceTextHandledByTheFirst)->Unit(benchmark::kMicrosecond);

RegistryPrefs& benchPrefs() {
    Platform::ResourceModule::current()->addString(1, u"Software\\Orvanta Bench");
    static RegistryPrefs prefs(1);
    return prefs;
}

void BM_PreferenceRead(benchmark::State& state) {
    RegistryPrefs& prefs = benchPrefs();
    for (int i = 0; i < 40; ++i) prefs.setInt(CString::fromUtf8("Setting " + std::to_string(i)).c_str(), i);
    for (auto _ : state) benchmark::DoNotOptimize(prefs.getInt(u"Setting 20"));
}
BENCHMARK(BM_PreferenceRead)->Unit(benchmark::kMicrosecond);

void BM_PreferenceWritten(benchmark::State& state) {
    RegistryPrefs& prefs = benchPrefs();
    unsigned long value = 0;
    for (auto _ : state) prefs.setInt(u"Counter", ++value);
}
BENCHMARK(BM_PreferenceWritten)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    char session[] = "/tmp/orvanta-bench-XXXXXX";
    if (!mkdtemp(session)) return 1;
    setenv("XDG_CONFIG_HOME", session, 1);
    setenv("XDG_RUNTIME_DIR", session, 1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::system((std::string("rm -rf '") + session + "'").c_str());
    return 0;
}
