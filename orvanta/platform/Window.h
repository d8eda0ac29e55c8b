#pragma once
// Window: the library's own window object (the HWND): a rectangle in its parent's client area, its
// children (the last one on top), visibility, style, text, identifier, the region that needs
// painting, and the handler that receives its messages (a control).
//
// Contract:
//  - Windows belong to the thread that made them (the user-interface thread); only postMessage and
//    isWindow may be called from other threads.
//  - A window with no parent is top-level: its rectangle is in screen coordinates, it becomes a
//    display window the first time it is shown, and it keeps a backing store holding its pixels and
//    those of every window inside it. Child windows are areas of their top-level's backing store.
//    Windows have no frame: the window rectangle is the client area.
//  - Every change of geometry or visibility invalidates what it uncovers and what it covers, in every
//    window there, each by its visible region: its client area within its ancestors, less the child
//    windows and the later siblings that lie over it.
//  - WM_PAINT is made up by the queue for a visible window with an invalid region. beginPaint gives
//    a canvas clipped to the invalid part of the visible region, validates it, and marks those pixels
//    changed, so that they reach the screen once no window needs painting any more.
//  - destroy() destroys the children first, tells the handler WM_DESTROY, and drops every message,
//    timer, capture, focus and mouse tracking of the window: nothing reaches it afterwards.
//  - Mouse capture, keyboard focus and the active window are per process, on the user-interface thread.

#include <memory>
#include <stop_token>
#include <vector>

#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"
#include "orvanta/platform/Region.h"

namespace Orvanta::Platform {

class BackingStore;
class Canvas;

class Window {
public:
    // What receives a window's messages.
    class Handler {
    public:
        virtual ~Handler() = default;
        virtual LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    };

    // A hidden window, top-level when parent is null; shown only by show(true).
    static Window* create(Window* parent, const CRect& rect, DWORD style, Handler* handler);
    // The one hidden window that holds every control that is in no tree. Never shown.
    static Window* parkingWindow();
    // Whether the window exists (IsWindow). Any thread.
    static bool isWindow(const Window* window);
    // Queues a message for the window on its thread's queue; false when the window does not exist.
    // Any thread.
    static bool postMessage(Window* window, UINT message, WPARAM wParam, LPARAM lParam);
    // Calls the handler at once (SendMessage, same thread only); 0 when the window does not exist.
    static LRESULT sendMessage(Window* window, UINT message, WPARAM wParam, LPARAM lParam);
    // SendMessage from any thread: on the window's own thread the handler is called at once; from
    // another, the message waits for the window's thread to deliver it (see sendQueueMessage for
    // stop and keepAlive) and the caller waits too. False when the window does not exist or the
    // message was not delivered; the handler's result is then not set.
    static bool sendFromThread(Window* window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result,
                               std::stop_token stop = {}, std::shared_ptr<const void> keepAlive = nullptr);

    void destroy();

    Handler* getHandler() const { return mHandler; }
    void setHandler(Handler* handler) { mHandler = handler; }
    DWORD getStyle() const { return mStyle; }
    void setStyle(DWORD style) { mStyle = style; }
    int getId() const { return mId; }
    void setId(int id) { mId = id; }
    const CString& getText() const { return mText; }
    void setText(const CString& text);

    Window* getParent() const { return mParent; }
    // Moves the window into another parent (null: it becomes top-level), on top of its new siblings.
    void setParent(Window* parent);
    Window* getTopLevel();
    bool isTopLevel() const { return !mParent; }
    const std::vector<Window*>& getChildren() const { return mChildren; }
    // Whether `window` is this one or lies inside it.
    bool contains(const Window* window) const;

    // In the parent's client coordinates; a top-level window's in the screen's.
    CRect getRect() const { return mRect; }
    CRect getClientRect() const { return CRect(0, 0, mRect.width(), mRect.height()); }
    CRect getScreenRect() const;
    CPoint clientToScreen(CPoint point) const;
    CPoint screenToClient(CPoint point) const;
    // Where the client area starts in the top-level's backing store.
    CPoint getOriginInTopLevel() const;
    // MoveWindow: sends WM_MOVE and WM_SIZE when position or size change.
    void move(const CRect& rect);
    // ShowWindow. Showing a top-level window opens the display if needed; false if it cannot be.
    bool show(bool visible);
    bool isShown() const { return mShown; }
    // IsWindowVisible: shown, and every ancestor too.
    bool isVisible() const;
    bool isEnabled() const { return !(mStyle & WS_DISABLED); }

    // InvalidateRect, in client coordinates (null: all); with `children` the child windows under it too.
    void invalidate(const CRect* rect = nullptr, bool erase = true, bool children = false);
    void invalidateRegion(const Region& region, bool erase = true);
    void validate(const CRect* rect = nullptr);
    bool needsPaint() const { return !mInvalid.isEmpty(); }
    const Region& getInvalidRegion() const { return mInvalid; }
    // The visible region, in the top-level's coordinates.
    Region getVisibleRegion() const;

    // BeginPaint and EndPaint in one: the canvas to repaint the invalid part with, which is now
    // valid. A WM_ERASEBKGND with the canvas as wParam comes first when an erase was asked for.
    std::unique_ptr<Canvas> beginPaint(CRect* paintBox = nullptr);
    // A canvas for drawing outside WM_PAINT (GetDC), clipped to the visible region; what it draws
    // reaches the screen with the next presentation.
    std::unique_ptr<Canvas> getCanvas();
    // UpdateWindow: paints this window and the windows inside it now, if they need it.
    void update();
    // ScrollWindowEx with SW_INVALIDATE: moves the visible pixels of `rect` (null: the client area)
    // by (dx, dy) and invalidates what is uncovered; the invalid region moves along.
    void scroll(int dx, int dy, const CRect* rect = nullptr);

    // The deepest shown and enabled window at a client point: a child, or this window; null outside.
    Window* windowFromPoint(CPoint client);
    // WindowFromPoint: the deepest window at a screen point among this thread's shown top-level
    // windows, the newest first; null where none is (other programs' windows are not known here).
    static Window* windowFromScreenPoint(CPoint screen);

    static Window* getCapture();
    // Sends WM_CAPTURECHANGED to the window that loses the capture.
    Window* setCapture();
    static void releaseCapture();
    static Window* getFocus();
    // Sends WM_KILLFOCUS to the window losing the focus, then WM_SETFOCUS to this one.
    Window* setFocus();
    static void clearFocus();
    static Window* getActiveWindow();
    // Makes a top-level window the active one: WM_ACTIVATE to the old (inactive) and the new one,
    // and the focus back to where it was in it.
    static void setActiveWindow(Window* topLevel);

    void setTimer(UINT_PTR id, UINT milliseconds);
    bool killTimer(UINT_PTR id);

    // A top-level window's pixels: null for a child.
    BackingStore* getBackingStore() const { return mStore.get(); }
    // The display's window, while a shown top-level window has one.
    void* getDisplayWindow() const { return mDisplayWindow; }
    void setDisplayWindow(void* displayWindow) { mDisplayWindow = displayWindow; }
    // Top-level windows of the calling thread, oldest first.
    static std::vector<Window*> topLevelWindows();
    // The window the queue should make WM_PAINT for next, or null.
    static Window* nextWindowToPaint();
    // Delivers a window message to its handler (installed as the queue's window dispatcher).
    static LRESULT dispatch(const MSG* msg);
    // Moves a top-level window as the display reports it moved, without repainting.
    void setScreenPosition(CPoint topLeft);

private:
    Window(Window* parent, const CRect& rect, DWORD style, Handler* handler);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    CRect rectInTopLevel() const;
    // The window's rectangle within its ancestors, in top-level coordinates.
    CRect clippedRectInTopLevel() const;
    void invalidateTopLevelArea(const Region& area);
    void addInvalid(const Region& region, bool erase);
    void destroyTree();

    Window* mParent;
    std::vector<Window*> mChildren;
    CRect mRect;
    DWORD mStyle;
    Handler* mHandler;
    int mId = 0;
    CString mText;
    bool mShown = false;
    Region mInvalid;
    bool mEraseNeeded = false;
    DWORD mThreadId;
    Window* mLastFocus = nullptr;  // top-level: where the focus was when it was last deactivated
    std::unique_ptr<BackingStore> mStore;
    void* mDisplayWindow = nullptr;
};

}  // namespace Orvanta::Platform
