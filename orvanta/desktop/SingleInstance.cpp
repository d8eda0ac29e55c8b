#include "orvanta/desktop/SingleInstance.h"

#include <map>
#include <mutex>

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MessageSocket.h"
#include "orvanta/platform/NamedMutex.h"
#include "orvanta/platform/RuntimeFolder.h"
#include "orvanta/platform/Window.h"

namespace Orvanta {

using Platform::MessageSocket;
using Platform::Window;

UINT SingleInstance::mgMessageID = 0;

namespace {

// The windows this process listens for, by class. A send from this process goes to them directly:
// through the socket, its own thread would wait for an answer that its own queue has to give.
struct Listening {
    std::mutex lock;
    std::map<CString, HWND> windows;
};

Listening& listening() {
    static auto* instance = new Listening();
    return *instance;
}

std::string socketPath(const CString& windowClass) {
    return Platform::runtimePath(windowClass, ".socket");
}

// What a WM_COPYDATA from another process points at, kept until its delivery is over.
struct Delivery {
    MessageSocket::Bytes bytes;
    COPYDATASTRUCT data;
};

LRESULT deliver(HWND window, const std::string& messageName, const MessageSocket::Bytes& bytes,
                std::stop_token stop) {
    auto delivery = std::make_shared<Delivery>();
    const auto size = static_cast<DWORD>(bytes->size());
    // Whatever the sender sent, a reader that goes on to a zero unit finds one inside the buffer.
    bytes->resize(size + (size & 1) + sizeof(char16_t), 0);
    delivery->bytes = bytes;
    delivery->data =
        COPYDATASTRUCT{Platform::registerWindowMessage(CString::fromUtf8(messageName)), size, bytes->data()};
    LRESULT result = 0;
    Window::sendFromThread(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&delivery->data), &result,
                           std::move(stop), delivery);
    return result;
}

}  // namespace

struct SingleInstance::Listener {
    Listener(const CString& windowClass, HWND window) : windowClass(windowClass), window(window) {}

    ~Listener() {
        socket.close();
        Listening& l = listening();
        std::lock_guard<std::mutex> guard(l.lock);
        auto it = l.windows.find(windowClass);
        if (it != l.windows.end() && it->second == window) l.windows.erase(it);
    }

    const CString windowClass;
    const HWND window;
    MessageSocket socket;
};

SingleInstance::SingleInstance(const CString& mutexName, const CString& windowClass,
                               const CString& messageName)
    : mMutexName(mutexName), mWindowClass(windowClass), mMessageName(messageName) {
    mgMessageID = Platform::registerWindowMessage(messageName);
    // Never closed: the mutex stays taken until the process ends.
    mMutex = Platform::takeNamedMutex(mutexName);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::listen(HWND window) {
    if (!isFirstInstance() || !Window::isWindow(window)) return false;
    mListener.reset();  // the earlier socket of this object goes first, or it would look alive
    auto listener = std::make_shared<Listener>(mWindowClass, window);
    const bool listened = listener->socket.listen(
        socketPath(mWindowClass),
        [window](const std::string& name, const MessageSocket::Bytes& bytes, std::stop_token stop) {
            return deliver(window, name, bytes, stop);
        });
    if (!listened) return false;
    {
        Listening& l = listening();
        std::lock_guard<std::mutex> guard(l.lock);
        l.windows[mWindowClass] = window;
    }
    mListener = std::move(listener);
    return true;
}

bool SingleInstance::sendToFirstInstance(const CString& text) {
    const auto size = static_cast<DWORD>((text.length() + 1) * sizeof(char16_t));
    HWND window = nullptr;
    {
        Listening& l = listening();
        std::lock_guard<std::mutex> guard(l.lock);
        auto it = l.windows.find(mWindowClass);
        if (it != l.windows.end()) window = it->second;
    }
    if (window) {
        COPYDATASTRUCT data{Platform::registerWindowMessage(mMessageName), size,
                            const_cast<char16_t*>(text.c_str())};
        Window::sendFromThread(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data), nullptr);
    } else {
        MessageSocket::send(socketPath(mWindowClass), mMessageName.toUtf8(), text.c_str(), size, nullptr);
    }
    return false;
}

bool SingleInstance::crackIncomingMessage(const COPYDATASTRUCT* data, CString& text) {
    if (!data || data->dwData != mgMessageID) return false;
    text = CString(static_cast<const char16_t*>(data->lpData));
    return true;
}

}  // namespace Orvanta
