#include "orvanta/toolkit/BitmapScrollbar.h"

#include <algorithm>

#include "orvanta/platform/SystemColors.h"

namespace Orvanta {

namespace {

// An arrow's strip holds square frames.
int squareFrames(const Resource& strip) {
    OwnedPtr<Bitmaps> picture = Bitmaps::create(strip, 1, kNoTransparentColor);
    if (!picture) return 1;
    const CSize size = picture->getFrameSize();
    return std::max(size.cx / std::max(size.cy, 1), 1);
}

BitmapButton* makeArrow(int id, const Resource& strip, COLORREF transparentColor) {
    BitmapButton* arrow = BitmapButton::create(id, strip, nullptr, squareFrames(strip), 1, transparentColor,
                                               Painting::ModeStretch);
    arrow->setAutoRepeat(true, BitmapScrollbar::kRepeatDelay, BitmapScrollbar::kRepeatInterval);
    return arrow;
}

}  // namespace

BitmapScrollbar::BitmapScrollbar(bool vertical, int id, const Resource& track, const Resource& thumb,
                                 const Resource& up, const Resource& down, COLORREF transparentColor,
                                 bool proportionalThumb, bool withArrows)
    : Container(false),
      mVertical(vertical),
      mProportional(proportionalThumb),
      mTrack(Painting::create(track, 1, transparentColor, Painting::ModeStretch)),
      mThumb(Painting::create(thumb, 1, transparentColor, Painting::ModeStretch)) {
    setId(id);
    if (!mTrack->getFrameCount()) setBkColor(Platform::getSysColor(COLOR_SCROLLBAR));
    if (!mThumb->getFrameCount()) {
        mThumb->setBkColor(Platform::getSysColor(COLOR_BTNFACE));
        mThumb->setBorderWidth(1, Style::kBorders);
        mThumb->setBorderColor(Platform::getSysColor(COLOR_BTNSHADOW), Style::kBorders);
    }
    add(mTrack);
    add(mThumb);
    int thickness = std::max({mTrack->getFrameSize().cx, mThumb->getFrameSize().cx, 0});
    if (!vertical) thickness = std::max({mTrack->getFrameSize().cy, mThumb->getFrameSize().cy, 0});
    int ends = 0;
    if (withArrows) {
        mUp = makeArrow(1, up, transparentColor);
        mDown = makeArrow(2, down, transparentColor);
        for (BitmapButton* arrow : {mUp.get(), mDown.get()}) {
            add(arrow);
            const CSize size = arrow->getMinSize();
            thickness = std::max(thickness, vertical ? size.cx : size.cy);
            ends += vertical ? size.cy : size.cx;
        }
    }
    if (thickness <= 0) thickness = kDefaultThickness;
    const int length = ends + kMinThumb;
    setMinSize(vertical ? CSize(thickness, length) : CSize(length, thickness));
    setSize(getMinSize().cx, getMinSize().cy);
}

BitmapScrollbar* BitmapScrollbar::create(int id, const Resource& track, const Resource& thumb,
                                         const Resource& up, const Resource& down, CommandListener* listener,
                                         COLORREF transparentColor, bool proportionalThumb, bool withArrows) {
    auto* bar = new BitmapScrollbar(true, id, track, thumb, up, down, transparentColor, proportionalThumb,
                                    withArrows);
    if (listener) bar->addCommandListener(listener);
    return bar;
}

BitmapScrollbarHorz* BitmapScrollbarHorz::create(int id, const Resource& track, const Resource& thumb,
                                                 const Resource& left, const Resource& right,
                                                 CommandListener* listener, COLORREF transparentColor,
                                                 bool proportionalThumb, bool withArrows) {
    auto* bar = new BitmapScrollbarHorz(false, id, track, thumb, left, right, transparentColor,
                                        proportionalThumb, withArrows);
    if (listener) bar->addCommandListener(listener);
    return bar;
}

void BitmapScrollbar::setRange(int range, int page) {
    mRange = std::max(range, 0);
    mPage = std::max(page, 0);
    mPos = std::clamp(mPos, 0, getMaxPos());
    layout();
}

void BitmapScrollbar::setPos(int pos) {
    pos = std::clamp(pos, 0, getMaxPos());
    if (pos == mPos) return;
    mPos = pos;
    mThumb->setRect(getThumbRect());
}

void BitmapScrollbar::scrollBy(int steps) {
    const int old = mPos;
    setPos(mPos + steps);
    if (mPos != old) fireCommand(getId(), this);
}

CRect BitmapScrollbar::span(int from, int to, const CRect& across) const {
    return mVertical ? CRect(across.left, from, across.right, to)
                     : CRect(from, across.top, to, across.bottom);
}

CRect BitmapScrollbar::trackRect() const {
    const CRect content = getContentRect();
    int start = mVertical ? content.top : content.left;
    int end = mVertical ? content.bottom : content.right;
    if (mUp) start += mVertical ? mUp->getHeight() : mUp->getWidth();
    if (mDown) end -= mVertical ? mDown->getHeight() : mDown->getWidth();
    return span(start, std::max(start, end), content);
}

int BitmapScrollbar::thumbLength(int trackLength) const {
    int length;
    if (mProportional)
        length =
            mRange > mPage && mRange > 0
                ? std::max(kMinThumb, static_cast<int>(static_cast<long long>(trackLength) * mPage / mRange))
                : trackLength;
    else
        length = mThumb->getFrameCount() ? (mVertical ? mThumb->getFrameSize().cy : mThumb->getFrameSize().cx)
                                         : kDefaultThickness;
    return std::min(length, trackLength);
}

CRect BitmapScrollbar::getThumbRect() const {
    const CRect track = trackRect();
    const int trackStart = mVertical ? track.top : track.left;
    const int trackLength = mVertical ? track.height() : track.width();
    const int length = thumbLength(trackLength);
    const int maxPos = getMaxPos();
    const int start =
        trackStart +
        (maxPos ? static_cast<int>(static_cast<long long>(trackLength - length) * mPos / maxPos) : 0);
    return span(start, start + length, track);
}

void BitmapScrollbar::layout() {
    setLayoutBusy(true);
    const CRect content = getContentRect();
    if (mUp) {
        const CSize size = mUp->getMinSize();
        const int start = mVertical ? content.top : content.left;
        mUp->setRect(span(start, start + (mVertical ? size.cy : size.cx), content));
    }
    if (mDown) {
        const CSize size = mDown->getMinSize();
        const int end = mVertical ? content.bottom : content.right;
        mDown->setRect(span(end - (mVertical ? size.cy : size.cx), end, content));
    }
    mTrack->setRect(trackRect());
    mThumb->setRect(getThumbRect());
    setLayoutBusy(false);
}

void BitmapScrollbar::pageTowardsPointer() {
    const CRect thumb = getThumbRect();
    if (mPaging < 0 && along(mPointer) < along(thumb.topLeft())) pageUp();
    if (mPaging > 0 && along(mPointer) >= along(thumb.bottomRight())) pageDown();
}

void BitmapScrollbar::endMouse() {
    mDragging = false;
    mPaging = 0;
    if (!mWindow) return;
    mWindow->killTimer(kRepeatTimer);
    if (Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
}

void BitmapScrollbar::onMouseMessage(UINT message, CPoint point) {
    switch (message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK: {
            if (mDragging || mPaging) break;
            mPointer = point;
            const CRect thumb = getThumbRect();
            if (!trackRect().contains(point)) break;
            if (mWindow) mWindow->setCapture();
            if (thumb.contains(point)) {
                mDragging = true;
                mGrab = along(point) - along(thumb.topLeft());
                break;
            }
            mPaging = along(point) < along(thumb.topLeft()) ? -1 : 1;
            pageTowardsPointer();
            if (mWindow) mWindow->setTimer(kRepeatTimer, kRepeatDelay);
            break;
        }
        case WM_MOUSEMOVE: {
            mPointer = point;
            if (!mDragging) break;
            const CRect track = trackRect();
            const int trackLength = mVertical ? track.height() : track.width();
            const int room = trackLength - thumbLength(trackLength);
            if (room <= 0) break;
            const int offset = std::clamp(along(point) - mGrab - along(track.topLeft()), 0, room);
            // To the nearest position.
            const long long twice = 2LL * offset * getMaxPos() + room;
            scrollBy(static_cast<int>(twice / (2LL * room)) - mPos);
            break;
        }
        case WM_LBUTTONUP:
            endMouse();
            break;
        default:
            break;
    }
}

LRESULT BitmapScrollbar::handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) {
    if (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST && message != WM_MOUSEWHEEL) {
        onMouseMessage(message, CPoint(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)));
    } else if (message == WM_CAPTURECHANGED) {
        mDragging = false;
        mPaging = 0;
        if (mWindow) mWindow->killTimer(kRepeatTimer);
    } else if (message == WM_TIMER && wParam == kRepeatTimer) {
        if (mPaging) {
            pageTowardsPointer();
            if (mWindow) mWindow->setTimer(kRepeatTimer, kRepeatInterval);
        }
    } else {
        return Container::handleMessage(message, wParam, lParam, handled);
    }
    if (handled) *handled = true;
    return 0;
}

void BitmapScrollbar::onCommand(Control* source, int command) {
    if (mUp && source == mUp.get())
        lineUp();
    else if (mDown && source == mDown.get())
        lineDown();
    else
        Container::onCommand(source, command);
}

}  // namespace Orvanta
