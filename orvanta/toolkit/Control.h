#pragma once
// Control: a rectangle of the user interface with margins, a style (borders and gaps), alignment, a
// background colour, a cursor and a font. This class is the concrete base of every control; a
// control without a window of its own (windowless) is painted and fed input by the Container that
// holds it; WindowedControl gives a control its own window.
//
// Contract:
//  - Reference counted; a Container holds a reference to each child, the child's parent pointer is
//    not owned. Controls belong to the user-interface thread.
//  - getRect is in the parent's client coordinates. A windowless control draws in the window of the
//    nearest windowed ancestor (its host), at its rectangle's origin there.
//  - minSize (1, 1) means the control has no size of its own: its parent gives it the whole space.
//  - A background colour of -1 or -2 means the parent's colour, and at the root the platform's
//    window colour. A windowless control with such a colour paints no background: its container's
//    shows through, with whatever the container drew before it (a picture under a caption).
//  - paint runs paintBorders, paintBackground (the client area less the borders) and paintContent,
//    inside save and restore of the canvas, with the canvas's origin at the control's top left.
//  - Changes of visibility (code 1) and of minimum size or margins (code 3) are told to the
//    listeners' onNotification; what the user does is told to their onCommand.
//  - handleMessage is the message map, the same for windowless controls (called by their container
//    with positions in their own coordinates) and windowed ones (called by their window).

#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/RoutedControl.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/Messages.h"
#include "orvanta/toolkit/Style.h"

namespace Orvanta::Platform {
class Canvas;
class Cursor;
}  // namespace Orvanta::Platform

namespace Orvanta {

class CommandListener;
class Font;
using HDC = Platform::Canvas*;
using HCURSOR = Platform::Cursor*;

// A colour that means "the parent's".
constexpr COLORREF kInheritColor = 0xFFFFFFFF;
constexpr COLORREF kInheritColor2 = 0xFFFFFFFE;

class Control : public IOwned, public virtual RoutedControl {
public:
    enum Alignment {
        AlignUnset = 1,
        AlignFill = 2,
        AlignLeft = 3,
        AlignRight = 4,
        AlignTop = 5,
        AlignBottom = 6,
        AlignCenter = 7,
    };

    ~Control() override;

    virtual CRect getRect() const { return mRect; }
    // In the screen's coordinates.
    virtual CRect getWindowRect() const;
    virtual CRect getClientRect() const { return CRect(0, 0, mRect.width(), mRect.height()); }
    virtual void setRect(int left, int top, int right, int bottom);
    void setRect(const CRect& rect) { setRect(rect.left, rect.top, rect.right, rect.bottom); }
    void setRectSized(int x, int y, int width, int height) { setRect(x, y, x + width, y + height); }
    virtual void setSize(int width, int height);
    virtual void setPosition(int x, int y);
    virtual void move(int dx, int dy);

    virtual HWND getHWND() const { return nullptr; }
    virtual void show(bool visible);
    void hide() { show(false); }
    virtual bool isHidden() const { return mHidden; }
    virtual void invalidate(bool erase = true, const CRect* rect = nullptr, bool children = false);
    virtual void validate(const CRect* rect = nullptr);
    // The client rectangle less the borders.
    virtual CRect getContentRect() const;

    Control* getParent() const { return mParent; }
    virtual void setParent(Control* parent);
    // Tells the listeners (the parent among them) a notification code.
    void notifyParent(int code) { fireNotification(code); }

    int getMargin(int side) const;
    CRect getMargins() const { return mMargin; }
    void setMargin(int value, int sides);

    Style& getStyle() { return mStyle; }
    const Style& getStyle() const { return mStyle; }
    virtual void setBorderWidth(int width, int sides);
    void setBorderColor(COLORREF color, int sides);

    void setMinSize(int width, int height);
    void setMinSize(CSize size) { setMinSize(size.cx, size.cy); }
    void setMinWidth(int width) { setMinSize(width, mMinSize.cy); }
    void setMinHeight(int height) { setMinSize(mMinSize.cx, height); }
    virtual CSize getMinSize() const { return mMinSize; }
    bool hasOwnSize() const { return getMinSize() != CSize(1, 1); }

    // The rectangle a layout works with: the present one, with the fixed width and height put in
    // where they are set, and otherwise never smaller than the minimum size, so that a control that
    // was never given a rectangle is laid out at the size it asks for.
    CRect getLayoutRect() const;
    // The size the control asks for in a layout: the fixed width and height where set, else its
    // minimum size.
    CSize getLayoutSize() const;
    int getWidth() const { return mRect.width(); }
    int getHeight() const { return mRect.height(); }
    CSize getSize() const { return mRect.size(); }
    void setWidth(int width) { setSize(width, getHeight()); }
    void setHeight(int height) { setSize(getWidth(), height); }
    virtual void setFixedWidth(int width) { mFixedWidth = width; }
    virtual void setFixedHeight(int height) { mFixedHeight = height; }
    int getFixedWidth() const { return mFixedWidth; }
    int getFixedHeight() const { return mFixedHeight; }

    CSize getAlignment() const { return mAlignment; }
    void setAlignment(int horizontal, int vertical) { mAlignment = CSize(horizontal, vertical); }

    virtual bool isTabStop() const { return mTabStop; }
    void setTabStop(bool tabStop) { mTabStop = tabStop; }
    int getId() const { return mId; }
    virtual void setId(int id) { mId = id; }

    COLORREF getBkColor(bool inherit = true) const;
    void setBkColor(COLORREF color);

    HCURSOR getCursor() const { return mCursor; }
    void setCursor(HCURSOR cursor) { mCursor = cursor; }
    // A standard shape by its IDC_ id.
    void setCursorId(int id);
    void setSystemCursor(int id) { setCursorId(id); }
    // The control's font, else its parent's, else the default one.
    Font* getFont() const;
    virtual void setFont(Font* font);

    void paint(HDC dc);
    virtual void paintBorders(HDC dc);
    virtual void paintBackground(HDC dc);
    virtual void paintContent(HDC dc) {}

    virtual CString getText() const { return mText; }
    virtual void setText(const CString& text);
    const CString& getTooltip() const { return mTooltip; }
    void setTooltip(const CString& text) { mTooltip = text; }

    // The message map; *handled tells whether the control took the message.
    virtual LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled);

    void addCommandListener(CommandListener* listener);
    void removeCommandListener(CommandListener* listener);
    void fireNotification(int code);
    void fireCommand(int command, Control* source = nullptr);

    // The window this control draws in, and where the control's origin is in it; null when the
    // control is in no windowed tree.
    HWND getHostWindow(CPoint* origin = nullptr) const;
    // Whether this control is shown and every ancestor too.
    bool isVisible() override;

    RoutedContainer* getRoutingParent() override;
    bool takesWheelMessages() override { return false; }
    void onWheelMessage(const MSG& msg) override {}
    bool preTranslateMessage(MSG* msg) override { return false; }

protected:
    Control();

    // The input hooks of the message map. Positions are in the control's client coordinates.
    virtual bool onMouse(UINT message, CPoint point, WPARAM keys) { return false; }
    virtual void onMouseLeave() {}
    virtual void onMouseHover(CPoint point) {}
    virtual bool onKeyDown(int virtualKey, LPARAM lParam) { return false; }
    virtual bool onChar(char16_t c) { return false; }
    virtual void onFocus(bool gained) {}
    // WM_CUT, WM_COPY, WM_PASTE and WM_UNDO.
    virtual bool onEditCommand(UINT message) { return false; }
    // Where the rectangle actually changes; a windowed control moves its window here.
    virtual void setRectImpl(const CRect& rect);

    CRect mRect;
    bool mHidden = false;
    CString mText;

private:
    Control* mParent = nullptr;
    CRect mMargin;
    CSize mMinSize{1, 1};
    Style mStyle;
    CSize mAlignment{AlignUnset, AlignUnset};
    COLORREF mBkColor = kInheritColor;
    HCURSOR mCursor = nullptr;
    OwnedPtr<Font> mFont;
    int mFixedWidth = 0;
    int mFixedHeight = 0;
    bool mTabStop = false;
    int mId = 0;
    CString mTooltip;
    std::vector<CommandListener*> mListeners;
};

}  // namespace Orvanta
