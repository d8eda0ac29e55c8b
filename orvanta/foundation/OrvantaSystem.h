#pragma once
// OrvantaSystem: the library's process-wide state, alive from init() to deinit(), and the entry
// point of the host's message loop.
//
// Contract: init() is called once on the user-interface thread before anything else of the class
// library; a second call does nothing. deinit() ends what init() began; without init() it does
// nothing. isInited() tells whether the state exists. Codec registrations are not part of it and
// survive deinit().
//
// The host calls processMessage for every message its loop takes, before dispatching it, and
// dispatches only when it returns false. processMessage delivers events (see sendEventLater), tells
// open pop-ups to close on mouse actions, routes the wheel and the Tab key among the controls, and
// shows every message it does not consume to the listeners of the singleton: during that call,
// getCurrentMessage() is the message and the notification code is its number.
//
// Registered dialogs keep working inside modal loops that the host does not run: while any is
// registered, a message filter hook of the user-interface thread routes their messages, and events,
// through processMessage.
//
// Everything here belongs to the thread that called init(), except sendEventLater, which any thread
// may call.

#include <set>

#include "orvanta/foundation/Notifier.h"
#include "orvanta/platform/Messages.h"

namespace Orvanta {

class Event;
class EventListener;
class PopupWindow;
class RoutedContainer;

// The name of the registered message that carries events.
inline constexpr const char16_t* kEventMessageName = u"OrvantaEventMessage";

// Where mouse wheel messages go. Any other value sends them nowhere.
enum WheelMessagesMode {
    WheelMessagesToPointer = 1,  // the control under the pointer
    WheelMessagesToFocus = 2,    // the control with the keyboard focus
};

class OrvantaSystem : public Notifier {
public:
    static OrvantaSystem* instance() { return mgInstance; }

    static void registerDialog(RoutedContainer* dialog);
    static void unregisterDialog(RoutedContainer* dialog);
    // Installs the hook (on) when there is none and a dialog is registered, or removes it (off).
    // Returns whether a hook was installed before the call.
    static bool setDialogMessageProcessing(bool on);

    static void registerPopup(PopupWindow* popup);
    static void unregisterPopup(PopupWindow* popup);

    UINT getEventMessage() const { return mEventMessage; }
    int getWheelMessagesMode() const { return mWheelMode; }
    // The message being shown to the listeners, or null outside that call.
    const MSG* getCurrentMessage() const { return mCurrentMessage; }

private:
    friend void init();
    friend void deinit();
    friend bool processMessage(MSG* msg, RoutedContainer* topLevel);
    friend void setWheelMessagesMode(WheelMessagesMode mode);

    OrvantaSystem() = default;
    ~OrvantaSystem() override = default;

    static LRESULT messageFilterHook(int code, WPARAM wParam, LPARAM lParam);
    bool routeWheel(MSG* msg, RoutedContainer* topLevel);
    void notifyMessage(const MSG* msg);

    std::set<PopupWindow*> mPopups;
    UINT mEventMessage = 0;
    HHOOK mHook = nullptr;
    std::set<RoutedContainer*> mDialogs;
    int mWheelMode = WheelMessagesToPointer;
    const MSG* mCurrentMessage = nullptr;

    static OrvantaSystem* mgInstance;
};

void init();
void deinit();
bool isInited();

// Returns true when the message was consumed and must not be dispatched.
bool processMessage(MSG* msg, RoutedContainer* topLevel);
// Hands an event to the listener's thread: the event gains one owner count and is posted; the
// listener's onEvent runs there when that thread's loop passes the message to processMessage,
// which then lets go of the count. Returns at once; any thread may call it, even while the library
// stops or the listener goes away: nothing is posted once deinit() or the listener's destructor has
// begun. Answers whether the event was posted; if not, it is left as it was, for the caller to let go
// of (owner counts are not atomic, so a worker cannot keep a count of an event it has handed over).
bool sendEventLater(Event* event, EventListener* listener);
// Drops every event waiting in the calling thread's queue. They are not delivered, and the counts
// they hold are not given back: their objects stay allocated.
void removeAllEventsFromQueue();
// Drops every pending WM_MOUSEMOVE of the calling thread; other mouse messages stay.
void removeAllMouseMessages();
void setWheelMessagesMode(WheelMessagesMode mode);

}  // namespace Orvanta
