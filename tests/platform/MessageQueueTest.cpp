// The per-thread message queue: posting, filters, quit, timers, key state, hooks and waits.

#include "orvanta/platform/MessageQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

#include "orvanta/platform/Thread.h"

using namespace Orvanta;
using namespace Orvanta::Platform;

namespace {

HWND fakeWindow(int n) {
    return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0x1000 + 16 * n));
}

// Every test starts and ends with an empty queue on the test thread.
class MessageQueueTest : public ::testing::Test {
protected:
    void SetUp() override { drain(); }
    void TearDown() override { drain(); }
    static void drain() {
        MSG msg;
        while (peekMessage(&msg, 0, 0, PM_REMOVE)) {
        }
    }
};

std::vector<UINT> takeAll() {
    std::vector<UINT> messages;
    MSG msg;
    while (peekMessage(&msg, 0, 0, PM_REMOVE)) messages.push_back(msg.message);
    return messages;
}

}  // namespace

TEST_F(MessageQueueTest, RegisteredMessagesAreNumberedFromC000ByName) {
    const UINT a = registerWindowMessage(u"OrvantaTestMessageA");
    const UINT b = registerWindowMessage(u"OrvantaTestMessageB");
    EXPECT_GE(a, kFirstRegisteredMessage);
    EXPECT_GE(b, kFirstRegisteredMessage);
    EXPECT_NE(a, b);
    EXPECT_EQ(a, registerWindowMessage(u"OrvantaTestMessageA"));
    EXPECT_EQ(a, registerWindowMessage(u"orvantatestmessagea"));
    EXPECT_EQ(0u, registerWindowMessage(u""));
    EXPECT_EQ(0u, registerWindowMessage(nullptr));
}

TEST_F(MessageQueueTest, RegisteredNumbersAreTheSameOnEveryThread) {
    const UINT here = registerWindowMessage(u"OrvantaTestShared");
    UINT there = 0;
    std::thread([&] { there = registerWindowMessage(u"OrvantaTestShared"); }).join();
    EXPECT_EQ(here, there);
}

TEST_F(MessageQueueTest, PostedMessagesComeOutInOrder) {
    const DWORD me = currentThreadId();
    for (UINT m = WM_USER; m < WM_USER + 5; ++m)
        ASSERT_TRUE(postThreadMessage(me, m, m * 2, -static_cast<LPARAM>(m)));
    MSG msg;
    for (UINT m = WM_USER; m < WM_USER + 5; ++m) {
        ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
        EXPECT_EQ(m, msg.message);
        EXPECT_EQ(m * 2, msg.wParam);
        EXPECT_EQ(-static_cast<LPARAM>(m), msg.lParam);
        EXPECT_EQ(nullptr, msg.hwnd);
    }
    EXPECT_FALSE(peekMessage(&msg, 0, 0, PM_REMOVE));
}

TEST_F(MessageQueueTest, PeekWithoutRemoveLeavesTheMessage) {
    ASSERT_TRUE(postThreadMessage(currentThreadId(), WM_USER + 1, 7, 0));
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_NOREMOVE));
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(std::vector<UINT>{WM_USER + 1}, takeAll());
}

TEST_F(MessageQueueTest, FilterTakesTheFirstMatchingMessageAndKeepsTheRestInOrder) {
    const DWORD me = currentThreadId();
    postThreadMessage(me, WM_USER + 1, 0, 0);
    postThreadMessage(me, WM_USER + 5, 1, 0);
    postThreadMessage(me, WM_USER + 2, 0, 0);
    postThreadMessage(me, WM_USER + 5, 2, 0);
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, WM_USER + 5, WM_USER + 5, PM_REMOVE));
    EXPECT_EQ(1u, msg.wParam);
    EXPECT_FALSE(peekMessage(&msg, WM_USER + 6, WM_USER + 9, PM_REMOVE));
    EXPECT_EQ((std::vector<UINT>{WM_USER + 1, WM_USER + 2, WM_USER + 5}), takeAll());
}

TEST_F(MessageQueueTest, ThreadMessagePeekSkipsWindowMessages) {
    const DWORD me = currentThreadId();
    MSG windowMessage;
    windowMessage.hwnd = fakeWindow(1);
    windowMessage.message = WM_USER + 3;
    ASSERT_TRUE(postQueueMessage(me, windowMessage));
    postThreadMessage(me, WM_USER + 3, 9, 0);
    MSG msg;
    ASSERT_TRUE(peekThreadMessage(&msg, WM_USER + 3, WM_USER + 3, PM_REMOVE));
    EXPECT_EQ(nullptr, msg.hwnd);
    EXPECT_EQ(9u, msg.wParam);
    EXPECT_FALSE(peekThreadMessage(&msg, 0, 0, PM_REMOVE));
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(fakeWindow(1), msg.hwnd);
}

TEST_F(MessageQueueTest, PostingFailsForAThreadWithoutQueue) {
    std::promise<DWORD> idOfOther;
    std::promise<void> madeQueue, checked, done;
    std::thread other([&] {
        idOfOther.set_value(currentThreadId());
        checked.get_future().wait();
        ensureMessageQueue();
        madeQueue.set_value();
        done.get_future().wait();
    });
    const DWORD id = idOfOther.get_future().get();
    EXPECT_FALSE(postThreadMessage(id, WM_USER, 0, 0));
    checked.set_value();
    madeQueue.get_future().wait();
    EXPECT_TRUE(postThreadMessage(id, WM_USER, 0, 0));
    done.set_value();
    other.join();
}

TEST_F(MessageQueueTest, QueueGoesWithItsThread) {
    DWORD id = 0;
    std::thread([&] {
        ensureMessageQueue();
        id = currentThreadId();
    }).join();
    EXPECT_FALSE(postThreadMessage(id, WM_USER, 0, 0));
}

TEST_F(MessageQueueTest, QuitComesAfterPostedMessagesAndEndsGetMessage) {
    postQuitMessage(3);
    postThreadMessage(currentThreadId(), WM_USER, 0, 0);
    MSG msg;
    ASSERT_TRUE(getMessage(&msg));
    EXPECT_EQ(WM_USER, msg.message);
    EXPECT_FALSE(getMessage(&msg));
    EXPECT_EQ(WM_QUIT, msg.message);
    EXPECT_EQ(3u, msg.wParam);
}

TEST_F(MessageQueueTest, GetMessageWaitsForAnotherThreadsPost) {
    const DWORD me = currentThreadId();
    ensureMessageQueue();
    std::thread poster([me] {
        for (int i = 0; i < 3; ++i) postThreadMessage(me, WM_USER + i, 0, 0);
    });
    MSG msg;
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(getMessage(&msg));
        EXPECT_EQ(WM_USER + i, msg.message);
    }
    poster.join();
}

TEST_F(MessageQueueTest, MessagesFromManyThreadsKeepEachSendersOrder) {
    constexpr int kThreads = 4, kEach = 200;
    const DWORD me = currentThreadId();
    ensureMessageQueue();
    std::vector<std::thread> posters;
    for (int t = 0; t < kThreads; ++t)
        posters.emplace_back([=] {
            for (int i = 0; i < kEach; ++i) postThreadMessage(me, WM_USER + t, static_cast<WPARAM>(i), 0);
        });
    std::vector<int> next(kThreads, 0);
    MSG msg;
    for (int received = 0; received < kThreads * kEach; ++received) {
        ASSERT_TRUE(getMessage(&msg));
        const int sender = static_cast<int>(msg.message - WM_USER);
        ASSERT_GE(sender, 0);
        ASSERT_LT(sender, kThreads);
        EXPECT_EQ(static_cast<WPARAM>(next[sender]++), msg.wParam);
    }
    for (auto& poster : posters) poster.join();
    EXPECT_EQ(std::vector<int>(kThreads, kEach), next);
}

TEST_F(MessageQueueTest, RemoveQueueMessagesTakesOnlyTheSelectedOnes) {
    const DWORD me = currentThreadId();
    for (int i = 0; i < 6; ++i) postThreadMessage(me, WM_USER, static_cast<WPARAM>(i), i % 2);
    const auto removed = removeQueueMessages(me, [](const MSG& msg) { return msg.lParam == 1; });
    ASSERT_EQ(3u, removed.size());
    EXPECT_EQ(1u, removed[0].wParam);
    EXPECT_EQ(5u, removed[2].wParam);
    MSG msg;
    for (WPARAM expected : {0u, 2u, 4u}) {
        ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
        EXPECT_EQ(expected, msg.wParam);
    }
}

namespace {
std::vector<UINT_PTR> gTimerCalls;
void recordTimer(HWND, UINT message, UINT_PTR id, DWORD) {
    if (message == WM_TIMER) gTimerCalls.push_back(id);
}
}  // namespace

TEST_F(MessageQueueTest, TimerMessageRunsItsCallbackWhenDispatched) {
    gTimerCalls.clear();
    const UINT_PTR id = setTimer(10, recordTimer);
    ASSERT_NE(0u, id);
    MSG msg;
    ASSERT_TRUE(getMessage(&msg));
    EXPECT_EQ(WM_TIMER, msg.message);
    EXPECT_EQ(id, msg.wParam);
    EXPECT_TRUE(gTimerCalls.empty());
    dispatchMessage(&msg);
    EXPECT_EQ(std::vector<UINT_PTR>{id}, gTimerCalls);
    EXPECT_TRUE(killTimer(id));
    EXPECT_FALSE(killTimer(id));
}

TEST_F(MessageQueueTest, TimerWaitsBehindPostedMessagesAndDoesNotPileUp) {
    const UINT_PTR id = setTimer(10, recordTimer);
    // Let several periods pass: one timer message comes out, after the posted one.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    postThreadMessage(currentThreadId(), WM_USER, 0, 0);
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_USER, msg.message);
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_EQ(WM_TIMER, msg.message);
    EXPECT_FALSE(peekMessage(&msg, 0, 0, PM_REMOVE));
    killTimer(id);
}

TEST_F(MessageQueueTest, KilledTimerSendsNothingMore) {
    gTimerCalls.clear();
    const UINT_PTR stopped = setTimer(10, recordTimer);
    const UINT_PTR kept = setTimer(40, recordTimer);
    ASSERT_TRUE(killTimer(stopped));
    MSG msg;
    ASSERT_TRUE(getMessage(&msg));
    EXPECT_EQ(WM_TIMER, msg.message);
    EXPECT_EQ(kept, msg.wParam);
    killTimer(kept);
}

TEST_F(MessageQueueTest, KeyStateFollowsTheKeyMessagesTaken) {
    const DWORD me = currentThreadId();
    EXPECT_GE(getKeyState(VK_SHIFT), 0);
    MSG down;
    down.hwnd = fakeWindow(2);
    down.message = WM_KEYDOWN;
    down.wParam = VK_SHIFT;
    postQueueMessage(me, down);
    EXPECT_GE(getKeyState(VK_SHIFT), 0) << "the key is down only once its message is taken";
    MSG msg;
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_LT(getKeyState(VK_SHIFT), 0);
    EXPECT_GE(getKeyState(VK_CONTROL), 0);
    MSG up = down;
    up.message = WM_KEYUP;
    postQueueMessage(me, up);
    ASSERT_TRUE(peekMessage(&msg, 0, 0, PM_REMOVE));
    EXPECT_GE(getKeyState(VK_SHIFT), 0);
}

TEST_F(MessageQueueTest, MessagePositionIsThatOfTheLastMessageTaken) {
    MSG wheel;
    wheel.hwnd = fakeWindow(3);
    wheel.message = WM_MOUSEWHEEL;
    wheel.pt = CPoint(120, 45);
    postQueueMessage(currentThreadId(), wheel);
    MSG msg;
    ASSERT_TRUE(getMessage(&msg));
    EXPECT_EQ(CPoint(120, 45), getMessagePos());
    EXPECT_EQ(CPoint(120, 45), msg.pt);
}

namespace {
std::vector<int> gHookCalls;
HHOOK gOlderHook = nullptr;
HHOOK gNewerHook = nullptr;
LRESULT olderHook(int code, WPARAM, LPARAM lParam) {
    gHookCalls.push_back(1);
    return reinterpret_cast<MSG*>(lParam)->message == WM_USER + 1 ? 1 : 0;
}
LRESULT newerHook(int code, WPARAM wParam, LPARAM lParam) {
    gHookCalls.push_back(2);
    if (reinterpret_cast<MSG*>(lParam)->message == WM_USER + 2) return 1;
    return callNextMessageFilter(gNewerHook, code, wParam, lParam);
}
}  // namespace

TEST_F(MessageQueueTest, MessageFilterHooksRunNewestFirstAndChain) {
    gHookCalls.clear();
    MSG msg;
    msg.message = WM_USER + 1;
    EXPECT_FALSE(callMessageFilter(&msg, MSGF_DIALOGBOX)) << "no hook installed";
    gOlderHook = setMessageFilterHook(olderHook);
    gNewerHook = setMessageFilterHook(newerHook);
    EXPECT_TRUE(callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ((std::vector<int>{2, 1}), gHookCalls);
    gHookCalls.clear();
    msg.message = WM_USER + 2;
    EXPECT_TRUE(callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ(std::vector<int>{2}, gHookCalls);
    gHookCalls.clear();
    msg.message = WM_USER + 3;
    EXPECT_FALSE(callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ((std::vector<int>{2, 1}), gHookCalls);

    EXPECT_TRUE(unhookMessageFilter(gNewerHook));
    EXPECT_FALSE(unhookMessageFilter(gNewerHook));
    gHookCalls.clear();
    msg.message = WM_USER + 1;
    EXPECT_TRUE(callMessageFilter(&msg, MSGF_DIALOGBOX));
    EXPECT_EQ(std::vector<int>{1}, gHookCalls);
    EXPECT_TRUE(unhookMessageFilter(gOlderHook));
}

TEST_F(MessageQueueTest, HooksBelongToTheirThread) {
    gOlderHook = setMessageFilterHook(olderHook);
    bool consumedElsewhere = true;
    std::thread([&] {
        MSG msg;
        msg.message = WM_USER + 1;
        consumedElsewhere = callMessageFilter(&msg, MSGF_DIALOGBOX);
    }).join();
    EXPECT_FALSE(consumedElsewhere);
    unhookMessageFilter(gOlderHook);
}
