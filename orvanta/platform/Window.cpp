#include "orvanta/platform/Window.h"

#include <algorithm>
#include <mutex>
#include <set>
#include <unordered_map>

#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"

namespace Orvanta::Platform {

namespace {

// Every live window and the thread whose queue it uses. Other threads consult it to post.
struct LiveWindows {
    std::mutex lock;
    std::unordered_map<const Window*, DWORD> threads;
};

LiveWindows& liveWindows() {
    static LiveWindows* live = new LiveWindows();
    return *live;
}

// The user-interface thread's window state.
struct WindowState {
    std::vector<Window*> topLevels;
    std::set<Window*> invalid;
    Window* capture = nullptr;
    Window* focus = nullptr;
    Window* active = nullptr;
    Window* parking = nullptr;
};

WindowState& state() {
    static WindowState* s = new WindowState();
    return *s;
}

bool isMouseMessage(UINT message) {
    return message >= WM_MOUSEFIRST && message <= WM_MOUSELAST;
}

}  // namespace

Window::Window(Window* parent, const CRect& rect, DWORD style, Handler* handler)
    : mParent(parent),
      mRect(rect),
      mStyle(style & ~WS_VISIBLE),
      mHandler(handler),
      mThreadId(currentThreadId()) {}

Window::~Window() = default;

Window* Window::create(Window* parent, const CRect& rect, DWORD style, Handler* handler) {
    Display::instance().attachToCurrentThread();
    setWindowDispatcher(&Window::dispatch);
    auto* window = new Window(parent, rect, style, handler);
    {
        LiveWindows& live = liveWindows();
        std::lock_guard<std::mutex> guard(live.lock);
        live.threads[window] = window->mThreadId;
    }
    if (parent) {
        parent->mChildren.push_back(window);
    } else {
        window->mStore = std::make_unique<BackingStore>(rect.size());
        state().topLevels.push_back(window);
    }
    if (style & WS_VISIBLE) window->show(true);
    return window;
}

Window* Window::parkingWindow() {
    WindowState& s = state();
    if (!s.parking) s.parking = create(nullptr, CRect(0, 0, 1, 1), WS_POPUP, nullptr);
    return s.parking;
}

bool Window::isWindow(const Window* window) {
    if (!window) return false;
    LiveWindows& live = liveWindows();
    std::lock_guard<std::mutex> guard(live.lock);
    return live.threads.count(window) > 0;
}

bool Window::postMessage(Window* window, UINT message, WPARAM wParam, LPARAM lParam) {
    DWORD thread = 0;
    {
        LiveWindows& live = liveWindows();
        std::lock_guard<std::mutex> guard(live.lock);
        auto it = live.threads.find(window);
        if (it == live.threads.end()) return false;
        thread = it->second;
    }
    const CPoint where = thread == currentThreadId() ? getMessagePos() : CPoint();
    return postQueueMessage(thread, MSG{window, message, wParam, lParam, getTickCount(), where});
}

LRESULT Window::sendMessage(Window* window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!isWindow(window) || !window->mHandler) return 0;
    return window->mHandler->windowProc(window, message, wParam, lParam);
}

bool Window::sendFromThread(Window* window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* result,
                            std::stop_token stop, std::shared_ptr<const void> keepAlive) {
    DWORD thread = 0;
    {
        LiveWindows& live = liveWindows();
        std::lock_guard<std::mutex> guard(live.lock);
        auto it = live.threads.find(window);
        if (it == live.threads.end()) return false;
        thread = it->second;
    }
    return sendQueueMessage(thread, MSG{window, message, wParam, lParam, getTickCount(), CPoint()}, result,
                            std::move(stop), std::move(keepAlive));
}

LRESULT Window::dispatch(const MSG* msg) {
    Window* window = msg->hwnd;
    if (!isWindow(window)) return 0;
    if (isMouseMessage(msg->message) && msg->message != WM_MOUSEWHEEL) {
        // The window under the pointer chooses the cursor; the arrow when it does not.
        if (!sendMessage(window, WM_SETCURSOR, reinterpret_cast<WPARAM>(window),
                         MAKELPARAM(HTCLIENT, msg->message)))
            Cursor::set(Cursor::system(IDC_ARROW));
        if (!isWindow(window)) return 0;
    }
    const LRESULT result = sendMessage(window, msg->message, msg->wParam, msg->lParam);
    // A window that does not paint is taken as painted, or the queue would ask again forever.
    if (msg->message == WM_PAINT && isWindow(window) && window->needsPaint()) window->validate();
    return result;
}

void Window::destroy() {
    if (!isWindow(this)) return;
    if (isVisible()) {
        Region area(clippedRectInTopLevel());
        Window* top = getTopLevel();
        mShown = false;
        top->invalidateTopLevelArea(area);
    }
    if (mParent) {
        auto& siblings = mParent->mChildren;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
        mParent = nullptr;
    }
    destroyTree();
}

void Window::destroyTree() {
    // Children go first, the last-made first, as a container's parts are undone.
    while (!mChildren.empty()) {
        Window* child = mChildren.back();
        mChildren.pop_back();
        child->mParent = nullptr;
        child->destroyTree();
    }
    if (mHandler) mHandler->windowProc(this, WM_DESTROY, 0, 0);
    {
        LiveWindows& live = liveWindows();
        std::lock_guard<std::mutex> guard(live.lock);
        live.threads.erase(this);
    }
    forgetWindow(this);
    MouseTracker::instance().forget(this);
    WindowState& s = state();
    s.invalid.erase(this);
    if (s.capture == this) releaseCapture();
    if (s.focus == this) s.focus = nullptr;
    if (s.active == this) s.active = nullptr;
    if (s.parking == this) s.parking = nullptr;
    for (Window* top : s.topLevels)
        if (top->mLastFocus == this) top->mLastFocus = nullptr;
    s.topLevels.erase(std::remove(s.topLevels.begin(), s.topLevels.end(), this), s.topLevels.end());
    if (mDisplayWindow) Display::instance().destroyWindow(this);
    delete this;
}

void Window::setText(const CString& text) {
    mText = text;
    if (isTopLevel() && mDisplayWindow) Display::instance().setTitle(this);
}

void Window::setParent(Window* parent) {
    if (parent == mParent || parent == this || (parent && contains(parent))) return;
    const bool wasVisible = isVisible();
    if (wasVisible) getTopLevel()->invalidateTopLevelArea(Region(clippedRectInTopLevel()));
    WindowState& s = state();
    if (mParent) {
        auto& siblings = mParent->mChildren;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
    } else {
        if (mDisplayWindow) Display::instance().destroyWindow(this);
        s.topLevels.erase(std::remove(s.topLevels.begin(), s.topLevels.end(), this), s.topLevels.end());
        mStore.reset();
    }
    mParent = parent;
    if (parent) {
        parent->mChildren.push_back(this);
    } else {
        mStore = std::make_unique<BackingStore>(mRect.size());
        s.topLevels.push_back(this);
        mShown = false;
    }
    if (isVisible()) getTopLevel()->invalidateTopLevelArea(Region(clippedRectInTopLevel()));
}

Window* Window::getTopLevel() {
    Window* w = this;
    while (w->mParent) w = w->mParent;
    return w;
}

bool Window::contains(const Window* window) const {
    for (const Window* w = window; w; w = w->mParent)
        if (w == this) return true;
    return false;
}

CRect Window::rectInTopLevel() const {
    if (!mParent) return getClientRect();
    const CPoint origin = mParent->getOriginInTopLevel();
    return CRect(mRect.left + origin.x, mRect.top + origin.y, mRect.right + origin.x,
                 mRect.bottom + origin.y);
}

CPoint Window::getOriginInTopLevel() const {
    return mParent ? rectInTopLevel().topLeft() : CPoint();
}

CRect Window::clippedRectInTopLevel() const {
    CRect r = rectInTopLevel();
    for (const Window* p = mParent; p; p = p->mParent) {
        const CRect pr = p->rectInTopLevel();
        r = CRect(std::max(r.left, pr.left), std::max(r.top, pr.top), std::min(r.right, pr.right),
                  std::min(r.bottom, pr.bottom));
    }
    return r.isEmpty() ? CRect() : r;
}

CRect Window::getScreenRect() const {
    const CPoint topLeft = clientToScreen(CPoint());
    return CRect(topLeft, mRect.size());
}

CPoint Window::clientToScreen(CPoint point) const {
    const Window* top = this;
    while (top->mParent) top = top->mParent;
    const CPoint origin = getOriginInTopLevel();
    return CPoint(point.x + origin.x + top->mRect.left, point.y + origin.y + top->mRect.top);
}

CPoint Window::screenToClient(CPoint point) const {
    const CPoint zero = clientToScreen(CPoint());
    return CPoint(point.x - zero.x, point.y - zero.y);
}

bool Window::isVisible() const {
    for (const Window* w = this; w; w = w->mParent)
        if (!w->mShown) return false;
    return true;
}

Region Window::getVisibleRegion() const {
    if (!isVisible()) return Region();
    Region region(clippedRectInTopLevel());
    for (const Window* w = this; w->mParent; w = w->mParent) {
        const auto& siblings = w->mParent->mChildren;
        auto it = std::find(siblings.begin(), siblings.end(), w);
        for (++it; it != siblings.end(); ++it)
            if ((*it)->mShown) region.subtract((*it)->rectInTopLevel());
    }
    for (const Window* child : mChildren)
        if (child->mShown) region.subtract(child->rectInTopLevel());
    return region;
}

void Window::invalidateTopLevelArea(const Region& area) {
    if (area.isEmpty() || !mShown) return;
    Region own = getVisibleRegion();
    own.intersect(area);
    if (!own.isEmpty()) {
        const CPoint origin = getOriginInTopLevel();
        own.offset(-origin.x, -origin.y);
        addInvalid(own, true);
    }
    for (Window* child : mChildren) child->invalidateTopLevelArea(area);
}

void Window::addInvalid(const Region& region, bool erase) {
    Region clipped(region);
    clipped.intersect(getClientRect());
    if (clipped.isEmpty()) return;
    mInvalid.unite(clipped);
    mEraseNeeded = mEraseNeeded || erase;
    state().invalid.insert(this);
}

void Window::invalidate(const CRect* rect, bool erase, bool children) {
    if (!isWindow(this)) return;
    const CRect area = rect ? *rect : getClientRect();
    addInvalid(Region(area), erase);
    if (!children) return;
    for (Window* child : mChildren) {
        const CRect r = child->mRect;
        CRect inChild(area.left - r.left, area.top - r.top, area.right - r.left, area.bottom - r.top);
        child->invalidate(&inChild, erase, true);
    }
}

void Window::invalidateRegion(const Region& region, bool erase) {
    addInvalid(region, erase);
}

void Window::validate(const CRect* rect) {
    if (!isWindow(this)) return;
    if (rect)
        mInvalid.subtract(*rect);
    else
        mInvalid.clear();
    if (mInvalid.isEmpty()) {
        mEraseNeeded = false;
        state().invalid.erase(this);
    }
}

std::unique_ptr<Canvas> Window::beginPaint(CRect* paintBox) {
    Window* top = getTopLevel();
    const CPoint origin = getOriginInTopLevel();
    Region area(mInvalid);
    area.offset(origin.x, origin.y);
    area.intersect(getVisibleRegion());
    const bool erase = mEraseNeeded;
    validate();
    if (paintBox) {
        const CRect box = area.getBox();
        *paintBox = box.isEmpty() ? CRect()
                                  : CRect(box.left - origin.x, box.top - origin.y, box.right - origin.x,
                                          box.bottom - origin.y);
    }
    top->mStore->markChanged(area);
    auto canvas = std::make_unique<Canvas>(top->mStore->getSurface(), Canvas::Kind::Window, origin, &area);
    if (erase && mHandler)
        mHandler->windowProc(this, WM_ERASEBKGND, reinterpret_cast<WPARAM>(canvas.get()), 0);
    return canvas;
}

std::unique_ptr<Canvas> Window::getCanvas() {
    Window* top = getTopLevel();
    Region area = getVisibleRegion();
    top->mStore->markChanged(area);
    return std::make_unique<Canvas>(top->mStore->getSurface(), Canvas::Kind::Window, getOriginInTopLevel(),
                                    &area);
}

void Window::update() {
    if (mShown && needsPaint()) sendMessage(this, WM_PAINT, 0, 0);
    if (isWindow(this) && needsPaint()) validate();
    const std::vector<Window*> children = mChildren;
    for (Window* child : children)
        if (isWindow(child)) child->update();
}

void Window::scroll(int dx, int dy, const CRect* rect) {
    if (!isVisible() || (dx == 0 && dy == 0)) return;
    const CRect area = rect ? *rect : getClientRect();
    const CPoint origin = getOriginInTopLevel();
    Window* top = getTopLevel();
    // Only pixels that are this window's own and stay valid may move.
    Region movable = getVisibleRegion();
    movable.intersect(
        CRect(area.left + origin.x, area.top + origin.y, area.right + origin.x, area.bottom + origin.y));
    Region pending(mInvalid);
    pending.offset(origin.x, origin.y);
    Region source(movable);
    source.subtract(pending);
    Region moved(source);
    moved.offset(dx, dy);
    moved.intersect(movable);
    // The move is done per rectangle of what stays valid, so that covered parts are never copied,
    // the rectangles taken from the far side first so that none overwrites a source still to come.
    std::vector<CRect> targets = moved.getRects();
    std::sort(targets.begin(), targets.end(), [dx, dy](const CRect& a, const CRect& b) {
        if (a.top != b.top) return dy > 0 ? a.top > b.top : a.top < b.top;
        return dx > 0 ? a.left > b.left : a.left < b.left;
    });
    for (const CRect& target : targets) {
        const CRect from(target.left - dx, target.top - dy, target.right - dx, target.bottom - dy);
        CRect span(std::min(from.left, target.left), std::min(from.top, target.top),
                   std::max(from.right, target.right), std::max(from.bottom, target.bottom));
        top->mStore->scroll(span, dx, dy);
    }
    // Invalid parts move with the picture; what the move uncovers becomes invalid.
    mInvalid.offset(dx, dy);
    mInvalid.intersect(getClientRect());
    Region exposed(movable);
    exposed.subtract(moved);
    exposed.offset(-origin.x, -origin.y);
    addInvalid(exposed, true);
    if (mInvalid.isEmpty()) state().invalid.erase(this);
}

Window* Window::windowFromPoint(CPoint client) {
    if (!getClientRect().contains(client)) return nullptr;
    for (auto it = mChildren.rbegin(); it != mChildren.rend(); ++it) {
        Window* child = *it;
        if (!child->mShown || !child->isEnabled() || !child->mRect.contains(client)) continue;
        return child->windowFromPoint(CPoint(client.x - child->mRect.left, client.y - child->mRect.top));
    }
    return this;
}

Window* Window::windowFromScreenPoint(CPoint screen) {
    const std::vector<Window*>& tops = state().topLevels;
    for (auto it = tops.rbegin(); it != tops.rend(); ++it)
        if ((*it)->mShown && (*it)->mRect.contains(screen))
            return (*it)->windowFromPoint((*it)->screenToClient(screen));
    return nullptr;
}

void Window::move(const CRect& rect) {
    if (rect == mRect) return;
    const CRect old = mRect;
    if (isTopLevel()) {
        mRect = rect;
        if (rect.size() != old.size()) {
            mStore->resize(rect.size());
            invalidate(nullptr, true, true);
        }
        if (mDisplayWindow) Display::instance().moveWindow(this);
    } else {
        Region area;
        const bool visible = isVisible();
        if (visible) area.unite(clippedRectInTopLevel());
        mRect = rect;
        if (visible) {
            area.unite(clippedRectInTopLevel());
            getTopLevel()->invalidateTopLevelArea(area);
        }
    }
    if (rect.topLeft() != old.topLeft()) sendMessage(this, WM_MOVE, 0, MAKELPARAM(rect.left, rect.top));
    if (isWindow(this) && rect.size() != old.size())
        sendMessage(this, WM_SIZE, SIZE_RESTORED, MAKELPARAM(rect.width(), rect.height()));
}

void Window::setScreenPosition(CPoint topLeft) {
    if (!isTopLevel() || topLeft == mRect.topLeft()) return;
    mRect = CRect(topLeft, mRect.size());
    sendMessage(this, WM_MOVE, 0, MAKELPARAM(topLeft.x, topLeft.y));
}

bool Window::show(bool visible) {
    if (visible == mShown) return true;
    if (isTopLevel()) {
        if (this == state().parking) return false;
        if (!Display::instance().showWindow(this, visible)) return false;
        mShown = visible;
        if (visible) invalidate(nullptr, true, true);
    } else {
        Region area;
        if (isVisible()) area.unite(clippedRectInTopLevel());
        mShown = visible;
        if (isVisible()) area.unite(clippedRectInTopLevel());
        getTopLevel()->invalidateTopLevelArea(area);
    }
    if (!visible) {
        WindowState& s = state();
        if (s.capture && contains(s.capture)) releaseCapture();
        if (s.focus && contains(s.focus)) clearFocus();
    }
    sendMessage(this, WM_SHOWWINDOW, visible ? 1 : 0, 0);
    return true;
}

Window* Window::getCapture() {
    return state().capture;
}

Window* Window::setCapture() {
    WindowState& s = state();
    Window* old = s.capture;
    if (old == this) return old;
    s.capture = this;
    Display::instance().captureMouse(true);
    if (old) sendMessage(old, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(this));
    return old;
}

void Window::releaseCapture() {
    WindowState& s = state();
    Window* old = s.capture;
    if (!old) return;
    s.capture = nullptr;
    Display::instance().captureMouse(false);
    sendMessage(old, WM_CAPTURECHANGED, 0, 0);
}

Window* Window::getFocus() {
    return state().focus;
}

Window* Window::setFocus() {
    WindowState& s = state();
    Window* old = s.focus;
    if (old == this) return old;
    s.focus = this;
    Window* top = getTopLevel();
    if (top != s.active && top != s.parking) {
        Window* previous = s.active;
        s.active = top;
        if (previous) sendMessage(previous, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(top));
        sendMessage(top, WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(previous));
    }
    if (old) sendMessage(old, WM_KILLFOCUS, reinterpret_cast<WPARAM>(this), 0);
    if (s.focus == this) sendMessage(this, WM_SETFOCUS, reinterpret_cast<WPARAM>(old), 0);
    return old;
}

void Window::clearFocus() {
    WindowState& s = state();
    Window* old = s.focus;
    s.focus = nullptr;
    if (old) sendMessage(old, WM_KILLFOCUS, 0, 0);
}

Window* Window::getActiveWindow() {
    return state().active;
}

void Window::setActiveWindow(Window* topLevel) {
    WindowState& s = state();
    if (topLevel == s.active) return;
    Window* previous = s.active;
    if (previous) {
        previous->mLastFocus = s.focus && previous->contains(s.focus) ? s.focus : nullptr;
        sendMessage(previous, WM_ACTIVATE, WA_INACTIVE, reinterpret_cast<LPARAM>(topLevel));
        if (s.focus && previous->contains(s.focus)) clearFocus();
    }
    s.active = topLevel;
    if (!topLevel) return;
    sendMessage(topLevel, WM_ACTIVATE, WA_ACTIVE, reinterpret_cast<LPARAM>(previous));
    Window* focus = isWindow(topLevel->mLastFocus) ? topLevel->mLastFocus : topLevel;
    if (isWindow(focus)) focus->setFocus();
}

void Window::setTimer(UINT_PTR id, UINT milliseconds) {
    setWindowTimer(this, id, milliseconds);
}

bool Window::killTimer(UINT_PTR id) {
    return killWindowTimer(this, id);
}

std::vector<Window*> Window::topLevelWindows() {
    return state().topLevels;
}

Window* Window::nextWindowToPaint() {
    for (Window* window : state().invalid)
        if (window->isVisible()) return window;
    return nullptr;
}

}  // namespace Orvanta::Platform
