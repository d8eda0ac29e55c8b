// SingleInstance: the mutex held once per session, in this process and among processes started at
// once; the copy-data message to the listening window from this process and from others, tagged by
// the message's name (that a sender waits until its message was handled is PhotosTest's, with a
// second start of the program); and a killed first instance, whose socket does not keep the next
// one from listening.

#include "orvanta/desktop/SingleInstance.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

// What a handler got: the text ("?" when the tag was another).
struct Report {
    char text[56];
};

// Keeps what each copy-data message brought: its text ("?" when the tag was another) and cbData;
// with a report pipe, reports each text there and ends the loop after `last` of them.
struct Inbox : Window::Handler {
    explicit Inbox(int reports = -1, std::size_t last = 0) : reports(reports), last(last) {}
    LRESULT windowProc(HWND, UINT message, WPARAM, LPARAM lParam) override {
        if (message != WM_COPYDATA) return 0;
        const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        CString text = u"?";
        SingleInstance::crackIncomingMessage(data, text);
        got.push_back(text.toUtf8() + "/" + std::to_string(data->cbData));
        Report report{};
        std::strncpy(report.text, text.toUtf8().c_str(), sizeof report.text - 1);
        if (reports >= 0 && write(reports, &report, sizeof report) == sizeof report && got.size() == last)
            postQuitMessage(0);
        return 1;
    }
    std::vector<std::string> got;
    const int reports;
    const std::size_t last;
};

// A pipe whose write end closes once, whoever closes it first.
struct Pipe {
    Pipe() { EXPECT_EQ(0, pipe(ends)); }
    ~Pipe() { closeWrite(), close(ends[0]); }
    void closeWrite() {
        if (ends[1] >= 0) close(ends[1]);
        ends[1] = -1;
    }
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
    Inbox inbox(reports, last);
    HWND window = Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &inbox);
    const char listening = instance.isFirstInstance() && instance.listen(window);
    if (write(ready, &listening, 1) != 1) _exit(3);
    for (MSG msg; getMessage(&msg);) dispatchMessage(&msg);
    _exit(0);
}

// Sends text from a child process under a message name, and waits for the process to end.
void sendFromProcess(const char16_t* messageName, const char16_t* text) {
    const pid_t child = fork();
    if (child == 0) {
        SingleInstance second(u"viewer-lock", u"viewer-window", messageName);
        second.sendToFirstInstance(text);
        _exit(second.isFirstInstance() ? 1 : 0);
    }
    int status = 0;
    EXPECT_TRUE(waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace

TEST(SingleInstanceTest, OfProcessesStartedAtOnceExactlyOneIsFirst) {
    for (int round = 0; round < 12; ++round) {
        Pipe start, results, finish;
        for (int i = 0; i < 4; ++i) {
            if (fork() != 0) continue;
            alarm(60);
            start.closeWrite(), finish.closeWrite();
            char first = 0;
            (void)!read(start.ends[0], &first, 1);  // all go when the parent closes its end
            SingleInstance instance(CString::fromUtf8("race-" + std::to_string(round)), u"race",
                                    u"race-open");
            first = instance.isFirstInstance();
            (void)!write(results.ends[1], &first, 1);
            (void)!read(finish.ends[0], &first, 1);  // each holds what it took until all have answered
            _exit(0);
        }
        start.closeWrite();
        int firsts = 0;
        for (char first = 0, i = 0; i < 4 && read(results.ends[0], &first, 1) == 1; ++i) firsts += first;
        finish.closeWrite();
        while (wait(nullptr) > 0) {
        }
        EXPECT_EQ(1, firsts) << "round " << round;
    }
}

TEST(SingleInstanceTest, TheFirstObjectOfANameHoldsItUntilTheProcessEndsAndItsWindowGetsTheText) {
    Inbox inbox;
    HWND window = Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &inbox);
    SingleInstance first(u"local", u"local-window", u"local-open");
    SingleInstance second(u"local", u"local-window", u"local-open");
    const SingleInstance copy(first);
    EXPECT_TRUE(first.isFirstInstance() && copy.isFirstInstance());
    EXPECT_FALSE(second.isFirstInstance());
    EXPECT_FALSE(second.listen(window)) << "not the first instance";
    second.sendToFirstInstance(u"nobody listens yet");
    ASSERT_TRUE(first.listen(window));
    EXPECT_FALSE(second.sendToFirstInstance(u"")) << "false, as callers do not branch on it";
    EXPECT_EQ(std::vector<std::string>{"/2"}, inbox.got) << "within the process, at once";
    COPYDATASTRUCT other{SingleInstance::getMessageID() + 1, 2, const_cast<char16_t*>(u"")};
    CString untouched = u"kept";
    EXPECT_FALSE(SingleInstance::crackIncomingMessage(&other, untouched));
    EXPECT_FALSE(SingleInstance::crackIncomingMessage(nullptr, untouched));
    EXPECT_EQ(CString(u"kept"), untouched);
    window->destroy();
    // Made last: the message id is the last object's, as a host makes one at start-up.
    { SingleInstance(u"gone", u"gone-window", u"gone-open"); }
    EXPECT_FALSE(SingleInstance(u"gone", u"gone-window", u"gone-open").isFirstInstance()) << "held for good";
}

TEST(SingleInstanceTest, AKilledFirstInstanceLeavesASocketThatTheNextReplacesAndOthersReachIt) {
    const std::string socket = std::string(std::getenv("XDG_RUNTIME_DIR")) + "/orvanta-viewer-window.socket";
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
    sendFromProcess(u"viewer-open", u"/photos/open me.jpg");
    Report got[2];
    for (Report& report : got)
        ASSERT_EQ(static_cast<ssize_t>(sizeof report), read(reports.ends[0], &report, sizeof report));
    int status = 0;
    EXPECT_TRUE(waitpid(first, &status, 0) == first && WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_STREQ("?", got[0].text) << "the other name's id is not this handler's";
    EXPECT_STREQ("/photos/open me.jpg", got[1].text);
}
