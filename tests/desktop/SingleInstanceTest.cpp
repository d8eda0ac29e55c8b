// SingleInstance: the mutex held once per session, in this process and among processes started at
// once; the copy-data message to the listening window from this thread, another thread and other
// processes, each sender waiting until it was handled, tagged by the message's name; and a killed
// first instance, whose socket does not keep the next one from listening.

#include "orvanta/desktop/SingleInstance.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"
#include "tests/desktop/PrivateSession.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

long long nowNanoseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

// What a handler got: the text ("?" when the tag was another) and when.
struct Report {
    long long at;
    char text[56];
};

// Keeps the text of each copy-data message; with a report pipe, reports it there and ends the loop
// after `last` of them.
struct Inbox : Window::Handler {
    LRESULT windowProc(HWND, UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_COPYDATA) return 0;
        const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        CString text;
        texts.push_back(SingleInstance::crackIncomingMessage(data, text) ? text : CString(u"?"));
        sizes.push_back(data->cbData);
        sendersWaiting.push_back(!senderReturned);
        Report report{nowNanoseconds(), {}};
        std::strncpy(report.text, texts.back().toUtf8().c_str(), sizeof report.text - 1);
        if (reports >= 0 && write(reports, &report, sizeof report) == sizeof report && texts.size() == last)
            postQuitMessage(0);
        return 1;
    }
    std::vector<CString> texts;
    std::vector<DWORD> sizes;
    std::vector<bool> sendersWaiting;
    std::atomic<bool> senderReturned{false};
    int reports = -1;
    std::size_t last = 0;
};

struct Pipe {
    Pipe() { EXPECT_EQ(0, pipe(ends)); }
    ~Pipe() { close(ends[0]), close(ends[1]); }
    int ends[2];
};

// A first instance of "viewer" in a child process: it tells on `ready` whether it took the mutex and
// listens, reports each text it is sent, and ends after `last`.
pid_t startFirstInstance(int ready, int reports, std::size_t last) {
    const pid_t child = fork();
    if (child != 0) return child;
    alarm(60);  // never outlives a test that failed before it could end it
    // Names registered before: this process's ids differ from those of its senders.
    registerWindowMessage(u"unrelated");
    SingleInstance instance(u"viewer-lock", u"viewer-window", u"viewer-open");
    Inbox inbox;
    inbox.reports = reports;
    inbox.last = last;
    HWND window = Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &inbox);
    const char listening = instance.isFirstInstance() && instance.listen(window);
    if (write(ready, &listening, 1) != 1) _exit(3);
    for (MSG msg; getMessage(&msg);) dispatchMessage(&msg);
    _exit(0);
}

// Sends text from a child process under a message name; answers when the sender began and returned.
std::pair<long long, long long> sendFromProcess(const char16_t* messageName, const char16_t* text) {
    Pipe times;
    const pid_t child = fork();
    if (child == 0) {
        SingleInstance second(u"viewer-lock", u"viewer-window", messageName);
        const long long began[2] = {nowNanoseconds(), (second.sendToFirstInstance(text), nowNanoseconds())};
        _exit(!second.isFirstInstance() && write(times.ends[1], began, sizeof began) == sizeof began ? 0 : 1);
    }
    int status = 0;
    long long span[2] = {0, 0};
    EXPECT_TRUE(waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(static_cast<ssize_t>(sizeof span), read(times.ends[0], span, sizeof span));
    return {span[0], span[1]};
}

}  // namespace

TEST(SingleInstanceTest, TheFirstObjectOfANameHoldsItUntilTheProcessEndsAndCopiesShareIt) {
    SingleInstance first(u"held", u"held-window", u"held-open");
    const SingleInstance copy(first);
    EXPECT_TRUE(first.isFirstInstance());
    EXPECT_TRUE(copy.isFirstInstance());
    EXPECT_FALSE(SingleInstance(u"held", u"held-window", u"held-open").isFirstInstance());
    { SingleInstance(u"gone", u"gone-window", u"gone-open"); }
    EXPECT_FALSE(SingleInstance(u"gone", u"gone-window", u"gone-open").isFirstInstance());
}

TEST(SingleInstanceTest, OfProcessesStartedAtOnceExactlyOneIsFirst) {
    constexpr int kProcesses = 4;
    for (int round = 0; round < 12; ++round) {
        const CString mutex = CString::fromUtf8("race-" + std::to_string(round));
        Pipe start, results, finish;
        std::vector<pid_t> children;
        for (int i = 0; i < kProcesses; ++i) {
            children.push_back(fork());
            if (children.back() != 0) continue;
            alarm(60);
            close(start.ends[1]), close(finish.ends[1]);
            char byte = 0;
            (void)!read(start.ends[0], &byte, 1);  // all go when the parent closes its end
            SingleInstance instance(mutex, u"race-window", u"race-open");
            byte = instance.isFirstInstance() ? 1 : 0;
            (void)!write(results.ends[1], &byte, 1);
            (void)!read(finish.ends[0], &byte, 1);  // each holds what it took until all have answered
            _exit(0);
        }
        close(start.ends[1]);
        int first = 0;
        for (int i = 0; i < kProcesses; ++i) {
            char byte = 0;
            ASSERT_EQ(1, read(results.ends[0], &byte, 1));
            first += byte;
        }
        close(finish.ends[1]);
        for (pid_t child : children) waitpid(child, nullptr, 0);
        EXPECT_EQ(1, first) << "round " << round;
    }
}

TEST(SingleInstanceTest, TextReachesTheListeningWindowOnItsOwnThreadWhileTheSenderWaits) {
    Inbox inbox;
    HWND window = Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &inbox);
    SingleInstance first(u"local", u"local-window", u"local-open");
    SingleInstance second(u"local", u"local-window", u"local-open");
    EXPECT_FALSE(second.listen(window)) << "not the first instance";
    second.sendToFirstInstance(u"nobody listens yet");
    ASSERT_TRUE(first.listen(window));
    EXPECT_FALSE(second.sendToFirstInstance(u"")) << "false, as callers do not branch on it";
    std::thread sender([&] {
        second.sendToFirstInstance(u"from a thread");
        inbox.senderReturned = true;
    });
    for (MSG msg; inbox.texts.size() < 2;) peekMessage(&msg, WM_APP, WM_APP, PM_NOREMOVE);
    sender.join();
    EXPECT_EQ((std::vector<CString>{u"", u"from a thread"}), inbox.texts);
    EXPECT_EQ((std::vector<DWORD>{2, 28}), inbox.sizes);
    EXPECT_EQ((std::vector<bool>{true, true}), inbox.sendersWaiting);
    COPYDATASTRUCT other{SingleInstance::getMessageID() + 1, 2, const_cast<char16_t*>(u"")};
    CString untouched = u"kept";
    EXPECT_FALSE(SingleInstance::crackIncomingMessage(&other, untouched));
    EXPECT_FALSE(SingleInstance::crackIncomingMessage(nullptr, untouched));
    EXPECT_EQ(CString(u"kept"), untouched);
    window->destroy();
}

TEST(SingleInstanceTest, AKilledFirstInstanceLeavesASocketThatTheNextReplacesAndOthersReachIt) {
    const std::string socket = OrvantaTest::sessionFolder() + "/run/orvanta-viewer-window.socket";
    Pipe ready, reports;
    char listening = 0;
    const pid_t killed = startFirstInstance(ready.ends[1], reports.ends[1], 1);
    ASSERT_EQ(1, read(ready.ends[0], &listening, 1));
    ASSERT_EQ(1, listening);
    kill(killed, SIGKILL);
    waitpid(killed, nullptr, 0);
    struct stat info;
    ASSERT_EQ(0, stat(socket.c_str(), &info)) << "the killed instance's socket is left behind";

    const pid_t first = startFirstInstance(ready.ends[1], reports.ends[1], 2);
    ASSERT_EQ(1, read(ready.ends[0], &listening, 1));
    ASSERT_EQ(1, listening) << "the next first instance took the name and listens";
    sendFromProcess(u"another message", u"not for this handler");
    const auto [began, returned] = sendFromProcess(u"viewer-open", u"/photos/open me.jpg");
    Report got[2];
    for (Report& report : got)
        ASSERT_EQ(static_cast<ssize_t>(sizeof report), read(reports.ends[0], &report, sizeof report));
    int status = 0;
    EXPECT_TRUE(waitpid(first, &status, 0) == first && WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_STREQ("?", got[0].text) << "the other name's id is not this handler's";
    EXPECT_STREQ("/photos/open me.jpg", got[1].text);
    EXPECT_TRUE(began <= got[1].at && got[1].at <= returned) << "the sender returns once it was handled";
    const double milliseconds = (got[1].at - began) / 1e6;
    ::testing::Test::RecordProperty("text_reached_first_ms", std::to_string(milliseconds));
    EXPECT_LT(milliseconds, 2000.0);
}
