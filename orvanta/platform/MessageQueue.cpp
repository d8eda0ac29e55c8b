#include "orvanta/platform/MessageQueue.h"

#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

#include "orvanta/platform/Thread.h"

namespace Orvanta::Platform {

struct MessageHook {
    HOOKPROC proc;
};

namespace {

using Clock = std::chrono::steady_clock;

constexpr UINT kMinimumTimerInterval = 10;

DWORD tickCountAt(Clock::time_point t) {
    return static_cast<DWORD>(
        std::chrono::duration_cast<std::chrono::milliseconds>(t.time_since_epoch()).count());
}

// A message another thread sent, and the wait of its sender. Shared by the two, so that either may
// give up on the other.
struct SentMessage {
    SentMessage(const MSG& msg, std::shared_ptr<const void> keepAlive)
        : msg(msg), keepAlive(std::move(keepAlive)) {}

    void finish(bool wasDelivered, LRESULT value) {
        std::lock_guard<std::mutex> guard(lock);
        finished = true;
        delivered = wasDelivered;
        result = value;
        done.notify_all();
    }

    const MSG msg;
    const std::shared_ptr<const void> keepAlive;
    std::mutex lock;
    std::condition_variable_any done;
    bool finished = false;
    bool delivered = false;
    LRESULT result = 0;
};

// One thread's queue. Posted and sent messages, the quit request and the timers are shared with
// other threads and kept under `lock`; the key state, message position and hooks belong to the
// owning thread alone.
class MessageQueue {
public:
    struct Filter {
        UINT first = 0;
        UINT last = 0;
        bool threadOnly = false;

        bool accepts(UINT message) const {
            return (first == 0 && last == 0) || (message >= first && message <= last);
        }
    };

    explicit MessageQueue(DWORD threadId) : threadId(threadId) {}

    void post(const MSG& msg) {
        std::lock_guard<std::mutex> guard(lock);
        posted.push_back(msg);
        wake.notify_all();
        wakeDisplayLocked();
    }

    // False once the thread has ended: nobody would deliver it.
    bool send(const std::shared_ptr<SentMessage>& message) {
        std::lock_guard<std::mutex> guard(lock);
        if (ended) return false;
        sent.push_back(message);
        wake.notify_all();
        wakeDisplayLocked();
        return true;
    }

    void withdraw(const std::shared_ptr<SentMessage>& message) {
        std::lock_guard<std::mutex> guard(lock);
        std::erase(sent, message);
    }

    // The owning thread ends: its senders stop waiting.
    void end() {
        std::deque<std::shared_ptr<SentMessage>> undelivered;
        {
            std::lock_guard<std::mutex> guard(lock);
            ended = true;
            undelivered.swap(sent);
        }
        for (auto& message : undelivered) message->finish(false, 0);
    }

    // A thread asleep in its display server is woken once per wait, however many posts arrive.
    void wakeDisplayLocked() {
        if (waitingInDisplay && !wakeSent) {
            wakeSent = true;
            input->wake();
        }
    }

    // Finds the next posted message or quit request the filter accepts; with `remove` it leaves the
    // queue. Caller holds lock.
    bool takeLocked(MSG* out, const Filter& filter, bool remove, Clock::time_point now) {
        for (auto it = posted.begin(); it != posted.end(); ++it) {
            if (!filter.accepts(it->message) || (filter.threadOnly && it->hwnd)) continue;
            *out = *it;
            if (remove) posted.erase(it);
            return true;
        }
        if (quitPending && filter.accepts(WM_QUIT)) {
            *out = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(quitCode), 0, tickCountAt(now), lastPosition};
            if (remove) quitPending = false;
            return true;
        }
        return false;
    }

    // The next due timer the filter accepts. Caller holds lock.
    bool takeTimerLocked(MSG* out, const Filter& filter, bool remove, Clock::time_point now) {
        if (filter.accepts(WM_TIMER)) {
            Timer* due = nullptr;
            for (auto& [id, timer] : timers)
                if (timer.due <= now && (!due || timer.due < due->due)) due = &timer;
            if (due && filter.threadOnly && due->window) due = nullptr;
            if (due) {
                *out =
                    due->window
                        ? MSG{due->window, WM_TIMER, due->windowTimerId, 0, tickCountAt(now), lastPosition}
                        : MSG{nullptr,          WM_TIMER,    due->id, reinterpret_cast<LPARAM>(due->callback),
                              tickCountAt(now), lastPosition};
                if (remove) due->due = now + due->interval;
                return true;
            }
        }
        return false;
    }

    // Whether a wait on input should end now. Caller holds lock.
    bool hasInputLocked(Clock::time_point now) const {
        if (!posted.empty() || !sent.empty() || quitPending) return true;
        for (const auto& [id, timer] : timers)
            if (timer.due <= now) return true;
        return false;
    }

    std::optional<Clock::time_point> nextTimerLocked() const {
        std::optional<Clock::time_point> next;
        for (const auto& [id, timer] : timers)
            if (!next || timer.due < *next) next = timer.due;
        return next;
    }

    // Owner thread: what a message taken out of the queue tells about the pointer and the keys.
    void noteTaken(const MSG& msg) {
        lastPosition = msg.pt;
        const bool down = msg.message == WM_KEYDOWN || msg.message == WM_SYSKEYDOWN;
        const bool up = msg.message == WM_KEYUP || msg.message == WM_SYSKEYUP;
        if ((down || up) && msg.wParam < keysDown.size()) keysDown[msg.wParam] = down;
    }

    // A thread timer carries its callback; a window timer its window and the window's own id for it.
    struct Timer {
        UINT_PTR id;
        Clock::duration interval;
        TIMERPROC callback;
        Clock::time_point due;
        HWND window = nullptr;
        UINT_PTR windowTimerId = 0;
    };

    const DWORD threadId;
    std::mutex lock;
    std::condition_variable wake;
    std::deque<MSG> posted;
    std::deque<std::shared_ptr<SentMessage>> sent;
    bool ended = false;
    bool quitPending = false;
    int quitCode = 0;
    std::map<UINT_PTR, Timer> timers;
    QueueInput* input = nullptr;
    bool waitingInDisplay = false;
    bool wakeSent = false;

    CPoint lastPosition;
    std::array<bool, 256> keysDown{};
    std::vector<std::unique_ptr<MessageHook>> hooks;  // oldest first
};

// Every live queue by thread id. Never destroyed, so that threads ending during process exit can
// still take their queue out.
struct Registry {
    std::mutex lock;
    std::unordered_map<DWORD, std::shared_ptr<MessageQueue>> queues;
};

Registry& registry() {
    static Registry* instance = new Registry();
    return *instance;
}

// The calling thread's queue, taken out of the registry when the thread ends.
struct QueueOwner {
    std::shared_ptr<MessageQueue> queue;

    ~QueueOwner() {
        if (!queue) return;
        {
            Registry& r = registry();
            std::lock_guard<std::mutex> guard(r.lock);
            auto it = r.queues.find(queue->threadId);
            if (it != r.queues.end() && it->second == queue) r.queues.erase(it);
        }
        queue->end();
    }
};

thread_local QueueOwner tQueueOwner;

MessageQueue& currentQueue() {
    if (!tQueueOwner.queue) {
        auto queue = std::make_shared<MessageQueue>(currentThreadId());
        Registry& r = registry();
        std::lock_guard<std::mutex> guard(r.lock);
        r.queues.insert_or_assign(queue->threadId, queue);
        tQueueOwner.queue = std::move(queue);
    }
    return *tQueueOwner.queue;
}

std::shared_ptr<MessageQueue> queueOf(DWORD threadId) {
    Registry& r = registry();
    std::lock_guard<std::mutex> guard(r.lock);
    auto it = r.queues.find(threadId);
    return it == r.queues.end() ? nullptr : it->second;
}

QueueInput* inputOf(MessageQueue& queue) {
    std::lock_guard<std::mutex> guard(queue.lock);
    return queue.input;
}

// Display input is taken only when nothing posted is waiting, as the platform takes input after
// posted messages: so each input message is routed (to the capture, the focus) as things stand when
// the messages before it have been handled.
void collectInput(MessageQueue& queue, QueueInput* input) {
    if (!input) return;
    {
        std::lock_guard<std::mutex> guard(queue.lock);
        if (!queue.posted.empty()) return;
    }
    input->collect();
}

// One look at the queue in its order: posted messages and quit, display input (collected only when
// nothing posted waits), paint, timers. A posted message, the common case, costs one lock.
// Messages sent from other threads are delivered on the way, whatever the filter.
bool takeNext(MessageQueue& queue, MSG* found, const MessageQueue::Filter& filter, bool remove) {
    QueueInput* input = nullptr;
    for (;;) {
        std::shared_ptr<SentMessage> incoming;
        {
            std::lock_guard<std::mutex> guard(queue.lock);
            if (queue.sent.empty()) {
                if (queue.takeLocked(found, filter, remove, Clock::now())) return true;
                input = queue.input;
                if (!queue.posted.empty()) input = nullptr;  // input waits behind what is posted
                break;
            }
            incoming = std::move(queue.sent.front());
            queue.sent.pop_front();
        }
        incoming->finish(true, dispatchMessage(&incoming->msg));
    }
    if (input) {
        input->collect();
        {
            std::lock_guard<std::mutex> guard(queue.lock);
            if (queue.takeLocked(found, filter, remove, Clock::now())) return true;
        }
        if (!filter.threadOnly && filter.accepts(WM_PAINT) && input->nextPaint(found)) return true;
    }
    std::lock_guard<std::mutex> guard(queue.lock);
    return queue.takeTimerLocked(found, filter, remove, Clock::now());
}

bool peek(MSG* msg, const MessageQueue::Filter& filter, UINT remove) {
    MessageQueue& queue = currentQueue();
    MSG found;
    if (!takeNext(queue, &found, filter, (remove & PM_REMOVE) != 0)) return false;
    queue.noteTaken(found);
    if (msg) *msg = found;
    return true;
}

// Sleeps until input may have arrived: on the queue's condition variable, or inside the display
// server when the thread has one that can block. Caller holds the lock through `guard`.
void sleepLocked(MessageQueue& queue, std::unique_lock<std::mutex>& guard,
                 std::optional<Clock::time_point> wakeAt) {
    QueueInput* input = queue.input;
    if (!input || !input->waitsInDisplay()) {
        if (wakeAt)
            queue.wake.wait_until(guard, *wakeAt);
        else
            queue.wake.wait(guard);
        return;
    }
    DWORD milliseconds = INFINITE;
    if (wakeAt) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*wakeAt - Clock::now()).count();
        milliseconds = static_cast<DWORD>(std::max<long long>(left, 0));
    }
    queue.waitingInDisplay = true;
    queue.wakeSent = false;
    guard.unlock();
    input->waitForInput(milliseconds);
    guard.lock();
    queue.waitingInDisplay = false;
}

WindowDispatcher gWindowDispatcher = nullptr;

// ASCII case folding is all registered names need: they are identifiers.
std::u16string foldedName(const char16_t* name) {
    std::u16string folded(name);
    for (char16_t& c : folded)
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    return folded;
}

std::atomic<UINT_PTR> gNextTimerId{1};

}  // namespace

DWORD currentThreadId() {
    thread_local const DWORD id = static_cast<DWORD>(gettid());
    return id;
}

DWORD getTickCount() {
    return tickCountAt(Clock::now());
}

UINT registerWindowMessage(const char16_t* name) {
    if (!name || !*name) return 0;
    static std::mutex lock;
    static std::map<std::u16string, UINT>* names = new std::map<std::u16string, UINT>();
    std::lock_guard<std::mutex> guard(lock);
    auto [it, added] = names->try_emplace(foldedName(name), 0);
    if (added) {
        const std::size_t number = kFirstRegisteredMessage + names->size() - 1;
        if (number > 0xFFFF) {
            names->erase(it);
            return 0;
        }
        it->second = static_cast<UINT>(number);
    }
    return it->second;
}

void ensureMessageQueue() {
    currentQueue();
}

bool postThreadMessage(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    auto queue = queueOf(threadId);
    if (!queue) return false;
    queue->post(MSG{nullptr, message, wParam, lParam, getTickCount(), CPoint()});
    return true;
}

bool postQueueMessage(DWORD threadId, const MSG& msg) {
    auto queue = queueOf(threadId);
    if (!queue) return false;
    queue->post(msg);
    return true;
}

bool sendQueueMessage(DWORD threadId, const MSG& msg, LRESULT* result, std::stop_token stop,
                      std::shared_ptr<const void> keepAlive) {
    if (threadId == currentThreadId()) {
        const LRESULT value = dispatchMessage(&msg);
        if (result) *result = value;
        return true;
    }
    auto queue = queueOf(threadId);
    if (!queue) return false;
    auto message = std::make_shared<SentMessage>(msg, std::move(keepAlive));
    if (!queue->send(message)) return false;
    std::unique_lock<std::mutex> guard(message->lock);
    if (!message->done.wait(guard, stop, [&] { return message->finished; })) {
        guard.unlock();
        queue->withdraw(message);
        return false;
    }
    if (result) *result = message->result;
    return message->delivered;
}

std::vector<MSG> removeQueueMessages(DWORD threadId, const std::function<bool(const MSG&)>& which) {
    std::vector<MSG> removed;
    auto queue = queueOf(threadId);
    if (!queue) return removed;
    std::lock_guard<std::mutex> guard(queue->lock);
    auto kept = std::stable_partition(queue->posted.begin(), queue->posted.end(),
                                      [&](const MSG& msg) { return !which(msg); });
    removed.assign(kept, queue->posted.end());
    queue->posted.erase(kept, queue->posted.end());
    return removed;
}

bool peekMessage(MSG* msg, UINT first, UINT last, UINT remove) {
    return peek(msg, MessageQueue::Filter{first, last, false}, remove);
}

bool peekThreadMessage(MSG* msg, UINT first, UINT last, UINT remove) {
    return peek(msg, MessageQueue::Filter{first, last, true}, remove);
}

bool getMessage(MSG* msg) {
    MessageQueue& queue = currentQueue();
    MSG found;
    for (;;) {
        if (takeNext(queue, &found, MessageQueue::Filter{}, true)) break;
        std::unique_lock<std::mutex> guard(queue.lock);
        if (queue.hasInputLocked(Clock::now())) continue;
        sleepLocked(queue, guard, queue.nextTimerLocked());
    }
    queue.noteTaken(found);
    *msg = found;
    return found.message != WM_QUIT;
}

void postQuitMessage(int exitCode) {
    MessageQueue& queue = currentQueue();
    std::lock_guard<std::mutex> guard(queue.lock);
    queue.quitPending = true;
    queue.quitCode = exitCode;
    queue.wake.notify_all();
}

LRESULT dispatchMessage(const MSG* msg) {
    if (!msg) return 0;
    if (msg->hwnd) return gWindowDispatcher ? gWindowDispatcher(msg) : 0;
    if (msg->message == WM_TIMER && msg->lParam) {
        reinterpret_cast<TIMERPROC>(msg->lParam)(nullptr, WM_TIMER, msg->wParam, getTickCount());
    }
    return 0;
}

void setWindowDispatcher(WindowDispatcher dispatcher) {
    gWindowDispatcher = dispatcher;
}

void setQueueInput(QueueInput* input) {
    MessageQueue& queue = currentQueue();
    std::lock_guard<std::mutex> guard(queue.lock);
    queue.input = input;
}

UINT_PTR setTimer(UINT milliseconds, TIMERPROC callback) {
    MessageQueue& queue = currentQueue();
    const UINT_PTR id = gNextTimerId.fetch_add(1);
    const auto interval = std::chrono::milliseconds(std::max(milliseconds, kMinimumTimerInterval));
    std::lock_guard<std::mutex> guard(queue.lock);
    queue.timers[id] = MessageQueue::Timer{id, interval, callback, Clock::now() + interval};
    queue.wake.notify_all();
    return id;
}

bool killTimer(UINT_PTR id) {
    MessageQueue& queue = currentQueue();
    std::lock_guard<std::mutex> guard(queue.lock);
    return queue.timers.erase(id) > 0;
}

void setWindowTimer(HWND window, UINT_PTR id, UINT milliseconds) {
    MessageQueue& queue = currentQueue();
    const auto interval = std::chrono::milliseconds(std::max(milliseconds, kMinimumTimerInterval));
    std::lock_guard<std::mutex> guard(queue.lock);
    for (auto& [key, timer] : queue.timers) {
        if (timer.window == window && timer.windowTimerId == id) {
            timer.interval = interval;
            timer.due = Clock::now() + interval;
            return;
        }
    }
    const UINT_PTR key = gNextTimerId.fetch_add(1);
    queue.timers[key] = MessageQueue::Timer{key, interval, nullptr, Clock::now() + interval, window, id};
    queue.wake.notify_all();
}

bool killWindowTimer(HWND window, UINT_PTR id) {
    MessageQueue& queue = currentQueue();
    std::lock_guard<std::mutex> guard(queue.lock);
    return std::erase_if(queue.timers, [&](const auto& entry) {
               return entry.second.window == window && entry.second.windowTimerId == id;
           }) > 0;
}

void forgetWindow(HWND window) {
    MessageQueue& queue = currentQueue();
    std::lock_guard<std::mutex> guard(queue.lock);
    std::erase_if(queue.timers, [&](const auto& entry) { return entry.second.window == window; });
    std::erase_if(queue.posted, [&](const MSG& msg) { return msg.hwnd == window; });
}

CPoint getMessagePos() {
    return currentQueue().lastPosition;
}

short getKeyState(int virtualKey) {
    const auto& keys = currentQueue().keysDown;
    if (virtualKey < 0 || virtualKey >= static_cast<int>(keys.size())) return 0;
    return keys[virtualKey] ? static_cast<short>(0x8000) : 0;
}

DWORD msgWaitForMultipleObjects(DWORD count, Thread* const* threads, DWORD milliseconds, DWORD wakeMask) {
    for (DWORD i = 0; i < count; ++i) {
        if (threads[i]->hasEnded()) return WAIT_OBJECT_0 + i;
        if (threads[i]->isCurrent()) return WAIT_FAILED;
    }
    // Input wakes the queue's own condition; a wait for threads alone needs none of the queue.
    std::mutex ownLock;
    std::condition_variable ownWake;
    MessageQueue* queue = wakeMask ? &currentQueue() : nullptr;
    Thread::Waiter waiter{queue ? &queue->lock : &ownLock, queue ? &queue->wake : &ownWake};
    QueueInput* input = queue ? inputOf(*queue) : nullptr;
    for (DWORD i = 0; i < count; ++i) threads[i]->addWaiter(&waiter);

    std::optional<Clock::time_point> deadline;
    if (milliseconds != INFINITE) deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    DWORD result = WAIT_TIMEOUT;
    {
        std::unique_lock<std::mutex> guard(*waiter.lock);
        for (;;) {
            auto ended = std::find_if(threads, threads + count, [](Thread* t) { return t->hasEnded(); });
            if (ended != threads + count) {
                result = WAIT_OBJECT_0 + static_cast<DWORD>(ended - threads);
                break;
            }
            if (input) {
                // Display input and paint count as input too; both are found without the lock.
                guard.unlock();
                collectInput(*queue, input);
                MSG paint;
                const bool needsPaint = input->nextPaint(&paint);
                guard.lock();
                if (needsPaint) {
                    result = WAIT_OBJECT_0 + count;
                    break;
                }
            }
            const auto now = Clock::now();
            if (queue && queue->hasInputLocked(now)) {
                result = WAIT_OBJECT_0 + count;
                break;
            }
            if (deadline && now >= *deadline) break;
            std::optional<Clock::time_point> wakeAt = deadline;
            if (queue)
                if (auto timer = queue->nextTimerLocked(); timer && (!wakeAt || *timer < *wakeAt))
                    wakeAt = timer;
            if (input && input->waitsInDisplay()) {
                // A thread's end signals the condition variable, not the display: look again often.
                const auto slice = now + std::chrono::milliseconds(5);
                if (!wakeAt || slice < *wakeAt) wakeAt = slice;
                sleepLocked(*queue, guard, wakeAt);
            } else if (wakeAt) {
                waiter.wake->wait_until(guard, *wakeAt);
            } else {
                waiter.wake->wait(guard);
            }
        }
    }
    for (DWORD i = 0; i < count; ++i) threads[i]->removeWaiter(&waiter);
    return result;
}

HHOOK setMessageFilterHook(HOOKPROC hook) {
    auto& hooks = currentQueue().hooks;
    hooks.push_back(std::make_unique<MessageHook>(MessageHook{hook}));
    return hooks.back().get();
}

bool unhookMessageFilter(HHOOK hook) {
    auto& hooks = currentQueue().hooks;
    auto it = std::find_if(hooks.begin(), hooks.end(), [hook](const auto& h) { return h.get() == hook; });
    if (it == hooks.end()) return false;
    hooks.erase(it);
    return true;
}

LRESULT callNextMessageFilter(HHOOK hook, int code, WPARAM wParam, LPARAM lParam) {
    auto& hooks = currentQueue().hooks;
    auto it = std::find_if(hooks.begin(), hooks.end(), [hook](const auto& h) { return h.get() == hook; });
    if (it == hooks.end() || it == hooks.begin()) return 0;
    return (*std::prev(it))->proc(code, wParam, lParam);
}

bool callMessageFilter(MSG* msg, int code) {
    auto& hooks = currentQueue().hooks;
    if (hooks.empty()) return false;
    return hooks.back()->proc(code, 0, reinterpret_cast<LPARAM>(msg)) != 0;
}

}  // namespace Orvanta::Platform
