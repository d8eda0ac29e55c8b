#pragma once
// The per-thread message queue: posted messages, timers, the key state and message filter hooks of
// each thread, and the wait that wakes on a thread's end or on its input.
//
// Contract: every thread has at most one queue, made the first time the thread calls one of these
// functions (or ensureMessageQueue) and gone when the thread ends. Anyone may post or send to a
// thread that has a queue; everything else acts on the calling thread's own queue. Messages sent from
// other threads are delivered first, inside the calls that take messages, and never returned by
// them. Posted messages come out in the order they were posted; a quit request comes after all posted
// messages, then a made-up WM_PAINT for a window that needs painting, and timer messages after that, one per
// due timer, so a busy queue delays its paints and timers rather than piling them up. A message that leaves
// the queue sets the thread's message position and, for key messages, its key state, both as of that message.

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

#include "orvanta/platform/Messages.h"

namespace Orvanta::Platform {

class Thread;

// The kernel's id of the calling thread.
DWORD currentThreadId();
// Milliseconds of the monotonic clock, as carried in MSG::time.
DWORD getTickCount();

// The message number for a name, the same for every caller in the process: the first name gets
// kFirstRegisteredMessage, the next new name the number after. Names compare without regard to ASCII
// case. 0 for an empty name or when the numbers are used up.
UINT registerWindowMessage(const char16_t* name);

// What a thread's display adds to its queue: input collected from the display server, made-up paint
// messages, and a wait that the display server can end. Everything but wake() runs on the owning
// thread with no queue lock held.
class QueueInput {
public:
    virtual ~QueueInput() = default;
    // Called when nothing posted is waiting: posts the display's next input message(s), so that each
    // is routed as things stand after the ones before it were handled.
    virtual void collect() = 0;
    // A WM_PAINT for a window that needs painting; false when none does.
    virtual bool nextPaint(MSG* msg) = 0;
    // Whether the thread waits inside the display server (then wake() must end that wait).
    virtual bool waitsInDisplay() const = 0;
    // Waits for display input or wake(), at most `milliseconds` (INFINITE: no limit).
    virtual void waitForInput(DWORD milliseconds) = 0;
    // Any thread, under the queue's lock: ends a waitForInput in progress, or the next one.
    virtual void wake() = 0;
};

// Joins a display to the calling thread's queue (null: none). The input must outlive the thread's
// use of it.
void setQueueInput(QueueInput* input);

// Makes the calling thread's queue, so that other threads can post to it before it first pumps.
void ensureMessageQueue();

// Posts a thread message (no window) stamped with the current time. False if the thread has no queue.
bool postThreadMessage(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam);
// Posts a complete message (window, position and time as given), as input arrives from the display.
bool postQueueMessage(DWORD threadId, const MSG& msg);
// Sends a message to a thread and waits until that thread has delivered it through dispatchMessage,
// which it does inside its next getMessage, peekMessage or peekThreadMessage (whatever their
// filter), before any posted message: the way messages sent between threads are delivered. From
// the thread itself the message is dispatched at once. True, with the dispatch's result in
// *result, once it was delivered. False when the thread has no queue or ends first, and when stop
// is requested before the delivery is over; then a message not yet begun is withdrawn, and one under
// way goes on without the sender. keepAlive is held until the delivery is over, for whatever the
// message points at.
bool sendQueueMessage(DWORD threadId, const MSG& msg, LRESULT* result, std::stop_token stop = {},
                      std::shared_ptr<const void> keepAlive = nullptr);
// Takes out of a thread's queue every posted message that `which` selects, and returns them in order.
std::vector<MSG> removeQueueMessages(DWORD threadId, const std::function<bool(const MSG&)>& which);

// Looks for a message numbered first..last (0, 0: any), without waiting; PM_REMOVE takes it out.
bool peekMessage(MSG* msg, UINT first, UINT last, UINT remove);
// The same among thread messages only (those with no window), timers included.
bool peekThreadMessage(MSG* msg, UINT first, UINT last, UINT remove);
// Waits for the next message and takes it out. False when it is WM_QUIT.
bool getMessage(MSG* msg);
// Asks the calling thread's loop to end: getMessage returns false once the posted messages are done.
void postQuitMessage(int exitCode);
// Delivers a message taken from the queue. A thread message has no window to go to: a timer message
// runs the callback it carries; other thread messages are for the loop itself and do nothing here.
// A window message goes to the window's handler through the dispatcher the window layer installs,
// which drops messages for windows that no longer exist.
LRESULT dispatchMessage(const MSG* msg);
using WindowDispatcher = LRESULT (*)(const MSG* msg);
void setWindowDispatcher(WindowDispatcher dispatcher);

// A timer of the calling thread: WM_TIMER with the id as wParam and the callback as lParam, every
// `milliseconds` (at least 10). Ids are unique in the process and never 0.
UINT_PTR setTimer(UINT milliseconds, TIMERPROC callback);
bool killTimer(UINT_PTR id);
// A window's timer on the calling thread: WM_TIMER for that window with the caller's id as wParam.
// Setting an id the window already has restarts it with the new interval.
void setWindowTimer(HWND window, UINT_PTR id, UINT milliseconds);
bool killWindowTimer(HWND window, UINT_PTR id);
// Stops every timer of the window and takes every message posted for it out of the calling thread's
// queue: a destroyed window is sent nothing more.
void forgetWindow(HWND window);

// Where the pointer was for the last message taken from the calling thread's queue.
CPoint getMessagePos();
// Negative while the key is down, as of the last key message taken from the calling thread's queue.
short getKeyState(int virtualKey);

// Waits until one of the threads ends (WAIT_OBJECT_0 + its index), or, with a non-zero wake mask,
// until the calling thread has input: a posted message, a quit request or a due timer
// (WAIT_OBJECT_0 + count); WAIT_TIMEOUT when the time is up; WAIT_FAILED for a thread waiting for
// itself, which would never wake.
DWORD msgWaitForMultipleObjects(DWORD count, Thread* const* threads, DWORD milliseconds, DWORD wakeMask);

// Message filter hooks of the calling thread, newest first. A modal loop that the host does not run
// passes each message to callMessageFilter before dispatching it; true means a hook consumed it.
HHOOK setMessageFilterHook(HOOKPROC hook);
bool unhookMessageFilter(HHOOK hook);
LRESULT callNextMessageFilter(HHOOK hook, int code, WPARAM wParam, LPARAM lParam);
bool callMessageFilter(MSG* msg, int code);

}  // namespace Orvanta::Platform
