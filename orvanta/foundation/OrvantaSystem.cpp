#include "orvanta/foundation/OrvantaSystem.h"

#include <vector>

#include "orvanta/foundation/Event.h"
#include "orvanta/foundation/EventGate.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/foundation/PopupWindow.h"
#include "orvanta/foundation/RoutedContainer.h"
#include "orvanta/platform/MessageQueue.h"

namespace Orvanta {

OrvantaSystem* OrvantaSystem::mgInstance = nullptr;

// Start-up, in order. Of the duties a Windows build has here, those that Linux gives no meaning are
// marked where they would stand:
//  - mouse-leave tracking needs no system module to be looked up: the window layer tracks the
//    pointer itself;
//  - the application module (instance handle, resource fallback, hidden helper window) belongs to
//    the resource and window layers, which start their own state on first use;
//  - the shell allocator does not exist: memory from the shell layer is plain heap memory;
//  - the control-hosting messages and window class serve hosted ActiveX controls, which Linux has
//    none of.
void init() {
    if (OrvantaSystem::mgInstance) return;
    OrvantaSystem* system = new OrvantaSystem();
    OrvantaSystem::mgInstance = system;
    // The user-interface thread gets its queue now, so that tasks can post to it from the start.
    Platform::ensureMessageQueue();
    system->mEventMessage = Platform::registerWindowMessage(kEventMessageName);
    system->mWheelMode = WheelMessagesToPointer;
    system->mHook = nullptr;
    EventGate::open(system->mEventMessage);
}

// Shut-down, in order: the scanner layer unloads its driver library itself when it goes (there is
// no process-wide one to unload here); the dialog hook is removed; the allocator, helper window and
// mouse-tracking module of a Windows build have no counterpart (see init); then the singleton goes.
void deinit() {
    OrvantaSystem* system = OrvantaSystem::mgInstance;
    if (!system) return;
    // Workers post through the gate, never through the singleton, so they cannot see it go.
    EventGate::close();
    if (system->mHook) {
        Platform::unhookMessageFilter(system->mHook);
        system->mHook = nullptr;
    }
    delete system;
    OrvantaSystem::mgInstance = nullptr;
}

bool isInited() {
    return OrvantaSystem::instance() != nullptr;
}

void OrvantaSystem::registerDialog(RoutedContainer* dialog) {
    if (!mgInstance) return;
    mgInstance->mDialogs.insert(dialog);
    setDialogMessageProcessing(true);
}

void OrvantaSystem::unregisterDialog(RoutedContainer* dialog) {
    if (!mgInstance) return;
    mgInstance->mDialogs.erase(dialog);
    if (mgInstance->mDialogs.empty()) setDialogMessageProcessing(false);
}

bool OrvantaSystem::setDialogMessageProcessing(bool on) {
    OrvantaSystem* system = mgInstance;
    if (!system) return false;
    const bool wasInstalled = system->mHook != nullptr;
    if (!on) {
        if (system->mHook) Platform::unhookMessageFilter(system->mHook);
        system->mHook = nullptr;
    } else if (!system->mHook && !system->mDialogs.empty()) {
        system->mHook = Platform::setMessageFilterHook(&OrvantaSystem::messageFilterHook);
    }
    return wasInstalled;
}

void OrvantaSystem::registerPopup(PopupWindow* popup) {
    if (mgInstance) mgInstance->mPopups.insert(popup);
}

void OrvantaSystem::unregisterPopup(PopupWindow* popup) {
    if (mgInstance) mgInstance->mPopups.erase(popup);
}

LRESULT OrvantaSystem::messageFilterHook(int code, WPARAM wParam, LPARAM lParam) {
    OrvantaSystem* system = mgInstance;
    if (!system) return 0;
    const HHOOK hook = system->mHook;
    if (code == MSGF_DIALOGBOX) {
        MSG* msg = reinterpret_cast<MSG*>(lParam);
        if (!msg->hwnd && msg->message == system->mEventMessage) {
            if (processMessage(msg, nullptr)) return 1;
        } else {
            RoutedContainer* owner = nullptr;
            for (RoutedContainer* dialog : system->mDialogs) {
                if (dialog->containsWindow(msg->hwnd)) {
                    owner = dialog;
                    break;
                }
            }
            if (owner && processMessage(msg, owner)) return 1;
        }
    }
    return Platform::callNextMessageFilter(hook, code, wParam, lParam);
}

bool OrvantaSystem::routeWheel(MSG* msg, RoutedContainer* topLevel) {
    RoutedControl* target = nullptr;
    if (mWheelMode == WheelMessagesToPointer)
        target = topLevel->getDeepestControlAt(topLevel->screenToClient(Platform::getMessagePos()));
    else if (mWheelMode == WheelMessagesToFocus)
        target = RoutedControl::getFocusedControl();
    for (RoutedControl* control = target; control; control = control->getRoutingParent()) {
        if (control->takesWheelMessages() && control->isVisible()) {
            control->onWheelMessage(*msg);
            break;
        }
    }
    return true;
}

void OrvantaSystem::notifyMessage(const MSG* msg) {
    // Listeners may pump messages themselves, so the current message nests.
    const MSG* outer = mCurrentMessage;
    mCurrentMessage = msg;
    notify(static_cast<int>(msg->message));
    mCurrentMessage = outer;
}

bool processMessage(MSG* msg, RoutedContainer* topLevel) {
    OrvantaSystem* system = OrvantaSystem::mgInstance;
    if (!system || !msg) return false;
    const bool shiftDown = Platform::getKeyState(VK_SHIFT) < 0;
    const bool controlDown = Platform::getKeyState(VK_CONTROL) < 0;

    if (!msg->hwnd) {
        if (msg->message == system->mEventMessage) {
            Event* event = reinterpret_cast<Event*>(msg->wParam);
            reinterpret_cast<EventListener*>(msg->lParam)->onEvent(event);
            event->release();
            return true;
        }
    } else if (msg->message >= WM_MOUSEFIRST && msg->message <= WM_MOUSEWHEEL) {
        if (msg->message != WM_MOUSEWHEEL) {
            // A pop-up told to close usually unregisters itself, so walk a copy and skip the gone.
            const std::vector<PopupWindow*> popups(system->mPopups.begin(), system->mPopups.end());
            for (PopupWindow* popup : popups)
                if (system->mPopups.count(popup) && popup->isWindow())
                    popup->sendMessage(kClosePopupMessage, msg->message, 0);
        } else if (topLevel) {
            return system->routeWheel(msg, topLevel);
        }
    } else if (msg->message >= WM_KEYFIRST && msg->message <= WM_KEYLAST) {
        RoutedControl* focused = RoutedControl::getFocusedControl();
        if (focused && focused->preTranslateMessage(msg)) return true;
        if (topLevel && msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_TAB) &&
            !controlDown) {
            RoutedContainer* scope = focused ? focused->getRoutingParent() : nullptr;
            if (!scope) scope = topLevel;
            if (shiftDown)
                scope->focusPrevious();
            else
                scope->focusNext();
            return true;
        }
    }
    system->notifyMessage(msg);
    return false;
}

bool sendEventLater(Event* event, EventListener* listener) {
    return event && listener && EventGate::post(event, listener);
}

void removeAllEventsFromQueue() {
    OrvantaSystem* system = OrvantaSystem::instance();
    if (!system) return;
    const UINT eventMessage = system->getEventMessage();
    MSG msg;
    while (Platform::peekThreadMessage(&msg, eventMessage, eventMessage, PM_REMOVE)) {
    }
}

void removeAllMouseMessages() {
    MSG msg;
    while (Platform::peekMessage(&msg, WM_MOUSEMOVE, WM_MOUSEMOVE, PM_REMOVE)) {
    }
}

void setWheelMessagesMode(WheelMessagesMode mode) {
    if (OrvantaSystem::mgInstance) OrvantaSystem::mgInstance->mWheelMode = mode;
}

}  // namespace Orvanta
