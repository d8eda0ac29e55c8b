#include "orvanta/toolkit/Container.h"

#include <algorithm>

#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/MouseTracker.h"

namespace Orvanta {

namespace {

constexpr WPARAM kAnyButton = MK_LBUTTON | MK_RBUTTON | MK_MBUTTON;

bool isButtonDown(UINT message) {
    return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN ||
           message == WM_LBUTTONDBLCLK || message == WM_RBUTTONDBLCLK || message == WM_MBUTTONDBLCLK;
}

bool isButtonUp(UINT message) {
    return message == WM_LBUTTONUP || message == WM_RBUTTONUP || message == WM_MBUTTONUP;
}

}  // namespace

Container::Container(bool tabStop) {
    setTabStop(tabStop);
}

Container::Container(HWND window) : WindowedControl(window) {}

Container* Container::create(int style, bool tabStop) {
    return new Container(tabStop);
}

Container* Container::create(HWND window) {
    return window ? new Container(window) : nullptr;
}

Container::~Container() {
    removeAll();
}

bool Container::isChild(const Control* control) const {
    return std::any_of(mChildren.begin(), mChildren.end(),
                       [control](const auto& c) { return c.get() == control; });
}

void Container::add(Control* child, bool tabStop) {
    if (!child || child == this || isChild(child)) return;
    mChildren.emplace_back(child);
    child->addCommandListener(this);
    child->setParent(this);
    layoutChild(child);
    child->show(true);
    if (tabStop) mTabStops.push_back(child);
    child->invalidate(true, nullptr, true);
}

void Container::remove(Control* child) {
    if (!isChild(child)) return;
    child->hide();
    child->setParent(nullptr);
    child->removeCommandListener(this);
    removeFromTabOrder(child);
    if (mMouseChild == child) mMouseChild = nullptr;
    if (mHoverChild == child) mHoverChild = nullptr;
    auto it =
        std::find_if(mChildren.begin(), mChildren.end(), [child](const auto& c) { return c.get() == child; });
    mChildren.erase(it);
}

void Container::removeAll() {
    while (!mChildren.empty()) remove(mChildren.back().get());
}

void Container::addToTabOrder(Control* child) {
    if (isChild(child) && std::find(mTabStops.begin(), mTabStops.end(), child) == mTabStops.end())
        mTabStops.push_back(child);
}

void Container::removeFromTabOrder(Control* child) {
    mTabStops.erase(std::remove(mTabStops.begin(), mTabStops.end(), child), mTabStops.end());
}

void Container::clearTabOrder() {
    mTabStops.clear();
}

Control* Container::getChildAt(int index) const {
    return index >= 0 && index < getChildCount() ? mChildren[index].get() : nullptr;
}

Control* Container::getChildById(int id) const {
    for (const auto& child : mChildren)
        if (child->getId() == id) return child.get();
    return nullptr;
}

Control* Container::childForPoint(int x, int y) const {
    for (auto it = mChildren.rbegin(); it != mChildren.rend(); ++it) {
        Control* child = it->get();
        if (!child->getHWND() && !child->isHidden() && child->isEnabled() &&
            child->getRect().contains(CPoint(x, y)))
            return child;
    }
    return nullptr;
}

bool Container::canTakeFocus(const Control* stop) {
    return stop->getHWND() && !stop->isHidden() && stop->isEnabled();
}

void Container::collectTabStops(std::vector<WindowedControl*>& stops) const {
    for (Control* stop : mTabStops) {
        if (!canTakeFocus(stop)) continue;
        const std::size_t before = stops.size();
        if (auto* container = dynamic_cast<Container*>(stop)) container->collectTabStops(stops);
        if (stops.size() == before) stops.push_back(static_cast<WindowedControl*>(stop));
    }
}

// Tab walks the window's whole tree of tab stops, not only this container's, so that the focus leaves
// a nested grid for the controls after it.
bool Container::moveFocus(bool forward) {
    const Container* scope = this;
    while (auto* parent = dynamic_cast<const Container*>(scope->getParent())) scope = parent;
    std::vector<WindowedControl*> stops;
    scope->collectTabStops(stops);
    if (stops.empty()) return false;
    const int count = static_cast<int>(stops.size());
    HWND focus = Platform::Window::getFocus();
    int current = -1;
    for (int i = 0; i < count; ++i)
        if (focus && stops[i]->getHWND()->contains(focus)) current = i;
    const int next = current < 0 ? (forward ? 0 : count - 1) : (current + (forward ? 1 : count - 1)) % count;
    stops[next]->setFocus();
    return true;
}

void Container::focusNext() {
    moveFocus(true);
}

void Container::focusPrevious() {
    moveFocus(false);
}

bool Container::focusFirst() {
    std::vector<WindowedControl*> stops;
    collectTabStops(stops);
    if (stops.empty()) return false;
    stops.front()->setFocus();
    return true;
}

bool Container::focusLast() {
    std::vector<WindowedControl*> stops;
    collectTabStops(stops);
    if (stops.empty()) return false;
    stops.back()->setFocus();
    return true;
}

namespace {

// Places [low, high) of the given size on one axis within [boundLow, boundHigh) by the alignment
// (start and end are the axis's own names for the two edges); clamp keeps it inside a non-empty bound.
void alignSpan(int alignment, int start, int end, int boundLow, int boundHigh, bool clamp, int& low,
               int& high) {
    const int size = high - low;
    if (alignment == Control::AlignFill) {
        low = boundLow;
        high = boundHigh;
    } else if (alignment == start) {
        low = boundLow;
        high = boundLow + size;
    } else if (alignment == end) {
        high = boundHigh;
        low = boundHigh - size;
    } else if (alignment == Control::AlignCenter) {
        low = (boundHigh - boundLow - size) / 2 + boundLow;
        high = low + size;
    }
    if (boundHigh - boundLow > 0 && clamp) {
        low = std::max(low, boundLow);
        high = std::min(high, boundHigh);
    }
}

}  // namespace

CRect Container::placement(const Control* child, const CRect& bounds, bool clampX, bool clampY) {
    CRect r = child->getLayoutRect();
    const CRect m = child->getMargins();
    const CRect b(bounds.left + m.left, bounds.top + m.top, bounds.right - m.right, bounds.bottom - m.bottom);
    const CSize alignment = child->getAlignment();
    alignSpan(alignment.cx, AlignLeft, AlignRight, b.left, b.right, clampX, r.left, r.right);
    alignSpan(alignment.cy, AlignTop, AlignBottom, b.top, b.bottom, clampY, r.top, r.bottom);
    return r;
}

void Container::placeChild(Control* child, const CRect& bounds, bool clampX, bool clampY) {
    const CRect r = placement(child, bounds, clampX, clampY);
    if (r != CRect()) child->setRect(r);
}

// A child with no size of its own fills the content rectangle, less its margins.
void Container::layoutChild(Control* child) {
    const CRect content = getContentRect();
    if (!child->hasOwnSize()) {
        const CRect m = child->getMargins();
        child->setRect(content.left + m.left, content.top + m.top, content.right - m.right,
                       content.bottom - m.bottom);
        return;
    }
    placeChild(child, content, true, true);
}

void Container::layout() {
    setLayoutBusy(true);
    for (const auto& child : mChildren) layoutChild(child.get());
    setLayoutBusy(false);
}

CSize Container::getContentSize() const {
    CSize size;
    for (const auto& child : mChildren) {
        if (child->isHidden()) continue;
        const CSize min = child->getMinSize();
        const CRect m = child->getMargins();
        size.cx = std::max(size.cx, min.cx + m.left + m.right);
        size.cy = std::max(size.cy, min.cy + m.top + m.bottom);
    }
    const CRect borders = getStyle().getBorders();
    return CSize(size.cx + borders.left + borders.right, size.cy + borders.top + borders.bottom);
}

void Container::setLayoutBusy(bool busy) {
    mLayoutBusy += busy ? 1 : -1;
    if (mLayoutBusy < 0) mLayoutBusy = 0;
}

void Container::setBorderWidth(int width, int sides) {
    Control::setBorderWidth(width, sides);
    layout();
}

void Container::onSize(CSize size) {
    layout();
}

void Container::paintContent(HDC dc) {
    const CRect clip = dc->getClipBox();
    for (const auto& owned : mChildren) {
        Control* child = owned.get();
        if (child->getHWND() || child->isHidden()) continue;
        const CRect r = child->getRect();
        const CRect meet(std::max(r.left, clip.left), std::max(r.top, clip.top),
                         std::min(r.right, clip.right), std::min(r.bottom, clip.bottom));
        if (meet.isEmpty()) continue;
        const int level = dc->save();
        const CPoint origin = dc->getViewportOrigin();
        dc->setViewportOrigin(CPoint(origin.x + r.left, origin.y + r.top));
        dc->intersectClipRect(CRect(0, 0, r.width(), r.height()));
        child->paint(dc);
        dc->restore(level);
    }
}

void Container::forwardMouse(Control* child, UINT message, WPARAM wParam, CPoint point) {
    const CRect r = child->getRect();
    child->handleMessage(message, wParam, MAKELPARAM(point.x - r.left, point.y - r.top), nullptr);
}

void Container::setHoverChild(Control* child) {
    if (child == mHoverChild) return;
    Control* old = mHoverChild;
    mHoverChild = child;
    hideTooltip();
    mWaitingForHover = false;
    if (old) old->handleMessage(WM_MOUSELEAVE, 0, 0, nullptr);
}

// Leave and hover tracking, asked again after each hover and each change of child.
void Container::trackPointer() {
    if (mWaitingForHover || !mWindow) return;
    TRACKMOUSEEVENT request;
    request.dwFlags = TME_LEAVE | TME_HOVER;
    request.hwndTrack = mWindow;
    mWaitingForHover = Platform::trackMouseEvent(&request);
}

void Container::showTooltip(const CString& text, CPoint screen) {
    if (!mTooltip) mTooltip = std::make_unique<Tooltip>();
    mTooltip->show(text, screen);
}

void Container::hideTooltip() {
    if (mTooltip) mTooltip->hide();
}

LRESULT Container::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST && message != WM_MOUSEWHEEL) {
        const CPoint point(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        Control* under = childForPoint(point.x, point.y);
        if (!mMouseChild) setHoverChild(under);
        if (message == WM_MOUSEMOVE)
            trackPointer();
        else
            hideTooltip();
        Control* target = mMouseChild ? mMouseChild : under;
        if (target) {
            // The child may be removed, and released, while it handles the message.
            OwnedPtr<Control> keep(target);
            if (isButtonDown(message) && !mMouseChild) {
                mMouseChild = target;
                if (mWindow) mWindow->setCapture();
            }
            forwardMouse(target, message, wParam, point);
            if (isButtonUp(message) && !(wParam & kAnyButton) && mMouseChild) {
                mMouseChild = nullptr;
                if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            }
            if (handled) *handled = true;
            return 0;
        }
        // A pop-up is never active: a press in it leaves the focus where it is.
        if (message == WM_LBUTTONDOWN)
            if (HWND active = Platform::Window::getActiveWindow();
                active && mWindow && active->contains(mWindow))
                active->setFocus();
    } else if (message == WM_MOUSELEAVE) {
        setHoverChild(nullptr);
        hideTooltip();
        mWaitingForHover = false;
    } else if (message == WM_MOUSEHOVER) {
        mWaitingForHover = false;
        const CPoint point(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
        Control* child = childForPoint(point.x, point.y);
        const CString& text = child ? child->getTooltip() : getTooltip();
        if (!text.isEmpty() && mWindow) showTooltip(text, mWindow->clientToScreen(point));
        if (child) {
            forwardMouse(child, message, wParam, point);
            if (handled) *handled = true;
            return 0;
        }
    } else if (message == WM_CAPTURECHANGED) {
        mMouseChild = nullptr;
    } else if (message == WM_SETCURSOR && mWindow) {
        const CPoint point = mWindow->screenToClient(Platform::getMessagePos());
        Control* child = mMouseChild ? mMouseChild : childForPoint(point.x, point.y);
        if (child && child->getCursor()) {
            bool took = false;
            const LRESULT result = child->handleMessage(message, wParam, lParam, &took);
            if (took) {
                if (handled) *handled = true;
                return result;
            }
        }
    }
    return WindowedControl::handleMessage(message, wParam, lParam, handled);
}

CPoint Container::screenToClient(CPoint screen) {
    return mWindow ? mWindow->screenToClient(screen) : screen;
}

RoutedControl* Container::getDeepestControlAt(CPoint client) {
    if (!mWindow) return nullptr;
    HWND window = mWindow->windowFromPoint(client);
    if (!window) return nullptr;
    auto* control = dynamic_cast<WindowedControl*>(window->getHandler());
    if (!control) return this;
    if (auto* container = dynamic_cast<Container*>(control)) {
        const CPoint inner = window->screenToClient(mWindow->clientToScreen(client));
        if (Control* child = container->childForPoint(inner.x, inner.y)) return child;
    }
    return control;
}

bool Container::containsWindow(HWND window) {
    return mWindow && mWindow->contains(window);
}

void Container::onNotification(Control* source, int code) {
    if (!isChild(source)) return;
    if (code != kVisibilityChanged && code != kLayoutChanged) return;
    if (mInNotification || isLayoutBusy()) return;
    mInNotification = true;
    if (!source->hasOwnSize())
        layoutChild(source);
    else
        layout();
    mInNotification = false;
}

void Container::onCommand(Control* source, int command) {
    if (command == 1)
        fireCommand(1, source);
    else if (command == 5)
        fireCommand(2, source);
    else
        fireCommand(command, source);
}

}  // namespace Orvanta
