#pragma once
// SingleInstance: tells a program whether another copy of it runs, and hands that copy a text (its
// command line) as the copy-data message.
//
// Contract: the three names are the host's. The mutex name is a named mutex of the user's session
// (Platform::takeNamedMutex), taken by the constructor and held until the process ends, which is
// what keeps the name taken: isFirstInstance tells whether this object took it. A second object
// of the same name, in this process too, does not. Copies share the mutex and the listening.
//
// The first instance makes its window known under the window class name with listen; from then on,
// until the last copy of the object goes, sendToFirstInstance of any process of the user delivers
// WM_COPYDATA to that window on the window's thread (inside its getMessage or peekMessage), with
// wParam 0 and a COPYDATASTRUCT: dwData the id of the message name as registered in the receiving
// process, cbData (length + 1) * 2, lpData the UTF-16 text and its terminator. Message ids are per
// process, so the name travels and the receiver registers it. The sender waits until the handler
// has returned; the answer is false in every case, as callers do not branch on it. With no window
// of the class (no first instance, or one that has not listened yet) nothing is sent. The window
// handler calls crackIncomingMessage, which answers false for a null message or another tag and
// then leaves text alone; cbData is not consulted, so the bytes another process sent are always
// followed by a zero unit in the buffer lpData points at.
//
// A window class is reached through a Unix domain socket named after it in the runtime folder; a
// socket left by a first instance that was killed is replaced by the next listen. The message id
// is process-wide state written by the constructor, the last object's: a host makes its
// SingleInstance at start-up.

#include <memory>

#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"

namespace Orvanta {

class SingleInstance {
public:
    SingleInstance(const CString& mutexName, const CString& windowClass, const CString& messageName);
    virtual ~SingleInstance();
    SingleInstance(const SingleInstance&) = default;
    SingleInstance& operator=(const SingleInstance&) = default;

    bool isFirstInstance() const { return mMutex >= 0; }
    // Makes window the first instance's window of the class. False when this object is not the
    // first instance, or another live process listens for the class.
    bool listen(HWND window);
    bool sendToFirstInstance(const CString& text);

    static bool crackIncomingMessage(const COPYDATASTRUCT* data, CString& text);
    static UINT getMessageID() { return mgMessageID; }

private:
    CString mMutexName;
    CString mWindowClass;
    CString mMessageName;
    struct Listener;

    int mMutex = -1;
    std::shared_ptr<Listener> mListener;

    static UINT mgMessageID;
};

}  // namespace Orvanta
