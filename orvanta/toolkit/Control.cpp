#include "orvanta/toolkit/Control.h"

#include <algorithm>

#include "orvanta/foundation/RoutedContainer.h"
#include "orvanta/platform/Canvas.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/platform/Window.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

Control::Control() = default;

Control::~Control() = default;

CRect Control::getWindowRect() const {
    CPoint origin;
    HWND host = getHostWindow(&origin);
    if (!host) return CRect();
    const CPoint screen = host->clientToScreen(origin);
    return CRect(screen, mRect.size());
}

void Control::setRect(int left, int top, int right, int bottom) {
    const CRect rect(left, top, right, bottom);
    if (rect == mRect) return;
    setRectImpl(rect);
}

// A windowless control repaints where it was and where it is now, in its host's window.
void Control::setRectImpl(const CRect& rect) {
    invalidate(true, nullptr, false);
    mRect = rect;
    invalidate(true, nullptr, false);
}

void Control::setSize(int width, int height) {
    setRect(mRect.left, mRect.top, mRect.left + width, mRect.top + height);
}

void Control::setPosition(int x, int y) {
    setRect(x, y, x + mRect.width(), y + mRect.height());
}

void Control::move(int dx, int dy) {
    setPosition(mRect.left + dx, mRect.top + dy);
}

void Control::show(bool visible) {
    if (mHidden == !visible) return;
    invalidate(true, nullptr, false);
    mHidden = !visible;
    invalidate(true, nullptr, false);
    fireNotification(CommandListener::kVisibilityChanged);
}

void Control::invalidate(bool erase, const CRect* rect, bool children) {
    CPoint origin;
    HWND host = getHostWindow(&origin);
    if (!Platform::Window::isWindow(host)) return;
    CRect area = rect ? *rect : getClientRect();
    area = CRect(area.left + origin.x, area.top + origin.y, area.right + origin.x, area.bottom + origin.y);
    host->invalidate(&area, erase, children);
}

void Control::validate(const CRect* rect) {
    CPoint origin;
    HWND host = getHostWindow(&origin);
    if (!Platform::Window::isWindow(host)) return;
    CRect area = rect ? *rect : getClientRect();
    area = CRect(area.left + origin.x, area.top + origin.y, area.right + origin.x, area.bottom + origin.y);
    host->validate(&area);
}

CRect Control::getContentRect() const {
    const CRect client = getClientRect();
    const CRect borders = mStyle.getBorders();
    return CRect(client.left + borders.left, client.top + borders.top, client.right - borders.right,
                 client.bottom - borders.bottom);
}

void Control::setParent(Control* parent) {
    mParent = parent;
}

int Control::getMargin(int side) const {
    if (side & Style::Left) return mMargin.left;
    if (side & Style::Top) return mMargin.top;
    if (side & Style::Right) return mMargin.right;
    if (side & Style::Bottom) return mMargin.bottom;
    return 0;
}

void Control::setMargin(int value, int sides) {
    const CRect old = mMargin;
    if (sides & Style::Left) mMargin.left = value;
    if (sides & Style::Top) mMargin.top = value;
    if (sides & Style::Right) mMargin.right = value;
    if (sides & Style::Bottom) mMargin.bottom = value;
    if (mMargin != old) fireNotification(CommandListener::kLayoutChanged);
}

void Control::setBorderWidth(int width, int sides) {
    mStyle.setWidth(width, sides);
    invalidate();
}

void Control::setBorderColor(COLORREF color, int sides) {
    mStyle.setColor(color, sides);
    invalidate();
}

void Control::setMinSize(int width, int height) {
    const CSize size(width, height);
    if (size == mMinSize) return;
    mMinSize = size;
    fireNotification(CommandListener::kLayoutChanged);
}

CRect Control::getLayoutRect() const {
    CRect r = getRect();
    const CSize min = getMinSize();
    if (mFixedWidth > 0)
        r.right = r.left + mFixedWidth;
    else if (r.width() < min.cx)
        r.right = r.left + min.cx;
    if (mFixedHeight > 0)
        r.bottom = r.top + mFixedHeight;
    else if (r.height() < min.cy)
        r.bottom = r.top + min.cy;
    return r;
}

CSize Control::getLayoutSize() const {
    const CSize min = getMinSize();
    return CSize(mFixedWidth > 0 ? mFixedWidth : min.cx, mFixedHeight > 0 ? mFixedHeight : min.cy);
}

COLORREF Control::getBkColor(bool inherit) const {
    if (!inherit || (mBkColor != kInheritColor && mBkColor != kInheritColor2)) return mBkColor;
    return mParent ? mParent->getBkColor(true) : Platform::getSysColor(COLOR_WINDOW);
}

void Control::setBkColor(COLORREF color) {
    mBkColor = color;
    invalidate(true, nullptr, true);
}

void Control::setCursorId(int id) {
    mCursor = Platform::Cursor::system(id);
}

Font* Control::getFont() const {
    if (mFont) return mFont.get();
    return mParent ? mParent->getFont() : Font::getDefault();
}

void Control::setFont(Font* font) {
    mFont = font;
    invalidate();
}

void Control::setText(const CString& text) {
    mText = text;
    invalidate();
}

void Control::paint(HDC dc) {
    const int level = dc->save();
    dc->selectFont(&getFont()->getDescription());
    paintBorders(dc);
    paintBackground(dc);
    paintContent(dc);
    dc->restore(level);
}

void Control::paintBorders(HDC dc) {
    const CRect client = getClientRect();
    const CRect b = mStyle.getBorders();
    if (b.left > 0)
        dc->fillRect(CRect(client.left, client.top, client.left + b.left, client.bottom),
                     mStyle.getColor(Style::Left));
    if (b.right > 0)
        dc->fillRect(CRect(client.right - b.right, client.top, client.right, client.bottom),
                     mStyle.getColor(Style::Right));
    if (b.top > 0)
        dc->fillRect(CRect(client.left + b.left, client.top, client.right - b.right, client.top + b.top),
                     mStyle.getColor(Style::Top));
    if (b.bottom > 0)
        dc->fillRect(
            CRect(client.left + b.left, client.bottom - b.bottom, client.right - b.right, client.bottom),
            mStyle.getColor(Style::Bottom));
}

// A windowless control without a colour of its own lets its container's background, and whatever
// was drawn before it there, show through.
void Control::paintBackground(HDC dc) {
    if (!getHWND() && (mBkColor == kInheritColor || mBkColor == kInheritColor2)) return;
    dc->fillRect(getContentRect(), getBkColor(true));
}

LRESULT Control::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    bool took = false;
    LRESULT result = 0;
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) {
        took = onMouse(message, CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)), wParam);
    } else {
        switch (message) {
            case WM_MOUSELEAVE:
                onMouseLeave();
                took = true;
                break;
            case WM_MOUSEHOVER:
                onMouseHover(CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)));
                took = true;
                break;
            case WM_SETCURSOR:
                if (mCursor) {
                    Platform::Cursor::set(mCursor);
                    took = true;
                    result = 1;
                }
                break;
            case WM_SETFOCUS:
            case WM_KILLFOCUS:
                onFocus(message == WM_SETFOCUS);
                took = true;
                break;
            case WM_KEYDOWN:
                took = onKeyDown(static_cast<int>(wParam), lParam);
                break;
            case WM_CHAR:
                took = onChar(static_cast<char16_t>(wParam));
                break;
            case WM_CUT:
            case WM_COPY:
            case WM_PASTE:
            case WM_UNDO:
                took = onEditCommand(message);
                break;
            default:
                break;
        }
    }
    if (handled) *handled = took;
    return result;
}

void Control::addCommandListener(CommandListener* listener) {
    if (listener && std::find(mListeners.begin(), mListeners.end(), listener) == mListeners.end())
        mListeners.push_back(listener);
}

void Control::removeCommandListener(CommandListener* listener) {
    mListeners.erase(std::remove(mListeners.begin(), mListeners.end(), listener), mListeners.end());
}

// Listeners may remove themselves while told: a copy is walked, and the removed are skipped.
void Control::fireNotification(int code) {
    const std::vector<CommandListener*> listeners = mListeners;
    for (CommandListener* listener : listeners)
        if (std::find(mListeners.begin(), mListeners.end(), listener) != mListeners.end())
            listener->onNotification(this, code);
}

void Control::fireCommand(int command, Control* source) {
    const std::vector<CommandListener*> listeners = mListeners;
    for (CommandListener* listener : listeners)
        if (std::find(mListeners.begin(), mListeners.end(), listener) != mListeners.end())
            listener->onCommand(source ? source : this, command);
}

HWND Control::getHostWindow(CPoint* origin) const {
    CPoint offset;
    for (const Control* c = this; c; c = c->mParent) {
        if (HWND window = c->getHWND()) {
            if (origin) *origin = offset;
            return window;
        }
        offset = CPoint(offset.x + c->mRect.left, offset.y + c->mRect.top);
    }
    return nullptr;
}

bool Control::isVisible() {
    for (Control* c = this; c; c = c->mParent)
        if (c->isHidden()) return false;
    return true;
}

RoutedContainer* Control::getRoutingParent() {
    return dynamic_cast<RoutedContainer*>(mParent);
}

}  // namespace Orvanta
