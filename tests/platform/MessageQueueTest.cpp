// The per-thread message queue: posting, filters, quit, timers and messages sent between threads.
// (Registered messages, key state, message positions and filter hooks are tested through the
// library's event loop, in foundation.)

#include "orvanta/platform/MessageQueue.h"

#include <gtest/gtest.h>

#include <future>
#include <stop_token>
#include <thread>
#include <vector>

#include "orvanta/platform/Window.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

// What is waiting, taken off the queue: each message's number and wParam.
std::vector<std::pair<UINT, WPARAM>> takeAll() {
    std::vector<std::pair<UINT, WPARAM>> messages;
    MSG msg;
    while (peekMessage(&msg, 0, 0, PM_REMOVE)) messages.emplace_back(msg.message, msg.wParam);
    return messages;
}

// Every test starts and ends with an empty queue on the test thread.
class MessageQueueTest : public ::testing::Test {
protected:
    void SetUp() override { takeAll(); }
    void TearDown() override { takeAll(); }
    const DWORD me = currentThreadId();
};

std::vector<UINT_PTR> gTimerCalls;
void recordTimer(HWND, UINT message, UINT_PTR id, DWORD) {
    if (message == WM_TIMER) gTimerCalls.push_back(id);
}

}  // namespace

TEST_F(MessageQueueTest, MessagesComeOutInOrderAndAFilterTakesTheFirstMatch) {
    for (UINT m : {WM_USER + 1, WM_USER + 5, WM_USER + 2, WM_USER + 5}) postThreadMessage(me, m, m, -1);
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, WM_USER + 5, WM_USER + 5, PM_NOREMOVE));
    ASSERT_TRUE(peekMessage(&msg, WM_USER + 5, WM_USER + 5, PM_REMOVE));
    EXPECT_EQ(-1, msg.lParam);
    EXPECT_FALSE(peekMessage(&msg, WM_USER + 6, WM_USER + 9, PM_REMOVE));
    // A thread message peek passes over window messages.
    msg.hwnd = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0x1010));
    msg.message = WM_USER + 2;
    msg.wParam = 7;
    ASSERT_TRUE(postQueueMessage(me, msg));
    ASSERT_TRUE(peekThreadMessage(&msg, WM_USER + 2, WM_USER + 2, PM_REMOVE));
    EXPECT_EQ(nullptr, msg.hwnd);
    // Removing by a rule takes the chosen ones and keeps the others in order.
    const auto removed = removeQueueMessages(me, [](const MSG& m) { return m.message == WM_USER + 5; });
    ASSERT_EQ(1u, removed.size());
    EXPECT_EQ((std::vector<std::pair<UINT, WPARAM>>{{WM_USER + 1, WM_USER + 1}, {WM_USER + 2, 7}}),
              takeAll());
}

TEST_F(MessageQueueTest, AQueueTakesPostsWhileItsThreadLivesAndGoesWithIt) {
    std::promise<DWORD> idOfOther;
    std::promise<void> done;
    std::thread other([&] {
        ensureMessageQueue();
        idOfOther.set_value(currentThreadId());
        done.get_future().wait();
    });
    const DWORD id = idOfOther.get_future().get();
    EXPECT_TRUE(postThreadMessage(id, WM_USER, 0, 0));
    done.set_value();
    other.join();
    EXPECT_FALSE(postThreadMessage(id, WM_USER, 0, 0)) << "the thread has ended";
}

TEST_F(MessageQueueTest, GetMessageWaitsKeepsEachSendersOrderAndEndsAfterQuit) {
    constexpr int kThreads = 4, kEach = 200;
    ensureMessageQueue();
    std::vector<std::thread> posters;
    for (int t = 0; t < kThreads; ++t)
        posters.emplace_back([=, this] {
            for (int i = 0; i < kEach; ++i) postThreadMessage(me, WM_USER + t, static_cast<WPARAM>(i), 0);
        });
    std::vector<int> next(kThreads, 0);
    MSG msg;
    for (int received = 0; received < kThreads * kEach; ++received) {
        ASSERT_TRUE(getMessage(&msg));
        ASSERT_LT(msg.message - WM_USER, static_cast<UINT>(kThreads));
        EXPECT_EQ(static_cast<WPARAM>(next[msg.message - WM_USER]++), msg.wParam);
    }
    for (auto& poster : posters) poster.join();
    postQuitMessage(3);
    postThreadMessage(me, WM_USER, 0, 0);
    ASSERT_TRUE(getMessage(&msg));
    EXPECT_EQ(WM_USER, msg.message) << "quit comes after what was posted";
    EXPECT_FALSE(getMessage(&msg));
    EXPECT_EQ(std::pair(static_cast<UINT>(WM_QUIT), static_cast<WPARAM>(3)),
              std::pair(msg.message, msg.wParam));
}

TEST_F(MessageQueueTest, ATimerWaitsBehindPostedMessagesNeverPilesUpAndStopsWhenKilled) {
    gTimerCalls.clear();
    const UINT_PTR id = setTimer(10, recordTimer), stopped = setTimer(10, recordTimer);
    ASSERT_TRUE(killTimer(stopped));
    std::this_thread::sleep_for(std::chrono::milliseconds(50));  // several periods
    postThreadMessage(me, WM_USER, 0, 0);
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_USER, msg.message);
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(std::pair(static_cast<UINT>(WM_TIMER), id), std::pair(msg.message, msg.wParam));
    dispatchMessage(&msg);
    EXPECT_EQ(std::vector<UINT_PTR>{id}, gTimerCalls);
    EXPECT_FALSE(peekMessage(&msg, 0, 0, PM_REMOVE));
    killTimer(id);
}

TEST_F(MessageQueueTest, ASentMessageIsHandledInsideTheReceiversNextLookAndItsSenderGetsTheResult) {
    struct Doubler : Window::Handler {
        LRESULT windowProc(HWND, UINT message, WPARAM wParam, LPARAM) override {
            handled.push_back(message);
            return static_cast<LRESULT>(wParam * 2);
        }
        std::vector<UINT> handled;
    } doubler;
    HWND window = Window::create(nullptr, CRect(0, 0, 10, 10), WS_OVERLAPPED, &doubler);
    postThreadMessage(me, WM_USER + 1, 0, 0);
    LRESULT result = 0;
    bool sent = false;
    std::thread sender([&] { sent = Window::sendFromThread(window, WM_USER + 2, 21, 0, &result); });
    // A look that matches nothing posted still delivers it.
    for (MSG msg; doubler.handled.empty();) peekMessage(&msg, WM_APP, WM_APP, PM_NOREMOVE);
    sender.join();
    EXPECT_TRUE(sent);
    EXPECT_EQ(42, result);
    EXPECT_EQ((std::vector<std::pair<UINT, WPARAM>>{{WM_USER + 1, 0}}), takeAll()) << "never returned";

    // A sender that gives up takes its message back; a receiver that ends answers every waiting sender.
    std::stop_source stop;
    stop.request_stop();
    std::thread([&] {
        sent = Window::sendFromThread(window, WM_USER + 3, 0, 0, &result, stop.get_token());
    }).join();
    EXPECT_FALSE(sent);
    takeAll();
    EXPECT_EQ(std::vector<UINT>{WM_USER + 2}, doubler.handled);
    std::promise<DWORD> receiverId;
    std::thread receiver([&] {
        ensureMessageQueue();
        receiverId.set_value(currentThreadId());
        msgWaitForMultipleObjects(0, nullptr, INFINITE, QS_ALLINPUT);  // the message is there: end
    });
    EXPECT_FALSE(
        sendQueueMessage(receiverId.get_future().get(), MSG{nullptr, WM_USER, 0, 0, 0, CPoint()}, &result));
    receiver.join();
    window->destroy();
}
