#include "orvanta/toolkit/Edit.h"

#include <algorithm>

#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/Display.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

namespace {

constexpr UINT_PTR kBlinkTimer = 1;

bool isHighSurrogate(char16_t c) {
    return c >= 0xD800 && c < 0xDC00;
}

bool isLowSurrogate(char16_t c) {
    return c >= 0xDC00 && c < 0xE000;
}

// The number of code points in text[0, end).
int codePointsBefore(const std::u16string& text, int end) {
    int count = 0;
    for (int i = 0; i < end; ++i)
        if (!(isLowSurrogate(text[i]) && i > 0 && isHighSurrogate(text[i - 1]))) ++count;
    return count;
}

bool keyDown(int virtualKey) {
    return Platform::getKeyState(virtualKey) < 0;
}

}  // namespace

UINT Edit::mgBlinkTime = Edit::kCaretBlinkTime;

Edit::Edit(int id, const CString& text, int style) : mStyle(style) {
    setId(id);
    setTabStop(true);
    setCursorId(IDC_IBEAM);
    mText = text;
    mCaret = mAnchor = getLength();
    refit();
}

Edit::~Edit() = default;

Edit* Edit::create(int id, const CString& text, int style, CommandListener* listener) {
    auto* edit = new Edit(id, text, style);
    if (listener) edit->addCommandListener(listener);
    return edit;
}

void Edit::setCaretBlinkTime(UINT milliseconds) {
    mgBlinkTime = milliseconds;
}

void Edit::refit() {
    const CSize text = Platform::TextLayout(u"Ag", getFont()->getDescription()).getSize();
    setMinSize(100, text.cy + 2 * (kPadding + 1));
}

void Edit::setText(const CString& text) {
    mText = text;
    if (mLimit > 0 && getLength() > mLimit) mText = mText.left(static_cast<std::size_t>(mLimit));
    mCaret = mAnchor = getLength();
    mUndo.clear();
    mRedo.clear();
    textChanged();
    if (mWindow) mWindow->setText(mText);
}

CString Edit::getSelectedText() const {
    return mText.mid(static_cast<std::size_t>(getSelectionStart()),
                     static_cast<std::size_t>(getSelectionEnd() - getSelectionStart()));
}

void Edit::setSelection(int anchor, int caret) {
    const Platform::TextLayout& text = textLayout();
    auto snap = [&](int position) {
        if (position < 0 || position >= getLength()) return getLength();
        if (position > 0 && isLowSurrogate(mText[static_cast<std::size_t>(position)]) &&
            isHighSurrogate(mText[position - 1u]))
            --position;
        if (position == 0) return 0;
        // A position inside a grapheme moves to its start.
        const int before = text.nextCursorPosition(position, false);
        return text.nextCursorPosition(before, true) == position ? position : before;
    };
    mAnchor = snap(anchor);
    mCaret = snap(caret);
    scrollToCaret();
    invalidate();
}

void Edit::setReadOnly(bool readOnly) {
    mStyle = readOnly ? (mStyle | ReadOnly) : (mStyle & ~ReadOnly);
    invalidate();
}

void Edit::setLimitText(int limit) {
    mLimit = std::max(limit, 0);
}

const Platform::TextLayout& Edit::textLayout() const {
    if (!mTextLayout)
        mTextLayout = std::make_unique<Platform::TextLayout>(mText, getFont()->getDescription());
    return *mTextLayout;
}

const Platform::TextLayout& Edit::layout() const {
    if (mLayout) return *mLayout;
    CString shown;
    if (isPassword()) {
        shown = CString(std::u16string(static_cast<std::size_t>(codePointsBefore(mText.str(), getLength())),
                                       kPasswordDot));
    } else {
        shown = mText.left(static_cast<std::size_t>(mCaret)) + mComposition +
                mText.mid(static_cast<std::size_t>(mCaret));
    }
    mLayout = std::make_unique<Platform::TextLayout>(shown, getFont()->getDescription());
    mLayout->setSingleParagraph();
    if (!mComposition.isEmpty()) mLayout->underline(mCaret, mCaret + static_cast<int>(mComposition.length()));
    return *mLayout;
}

int Edit::toShown(int position) const {
    if (isPassword()) return codePointsBefore(mText.str(), position);
    return position < mCaret ? position : position + static_cast<int>(mComposition.length());
}

int Edit::toText(int shown) const {
    if (isPassword()) {
        int position = 0;
        for (int points = 0; position < getLength() && points < shown; ++points)
            position +=
                isHighSurrogate(mText[static_cast<std::size_t>(position)]) && position + 1 < getLength() ? 2
                                                                                                         : 1;
        return position;
    }
    const int composed = static_cast<int>(mComposition.length());
    if (shown <= mCaret) return shown;
    return shown >= mCaret + composed ? shown - composed : mCaret;
}

void Edit::textChanged() {
    mLayout.reset();
    mTextLayout.reset();
    scrollToCaret();
    invalidate();
}

CRect Edit::textBox() const {
    const CRect client = getClientRect();
    return CRect(client.left + 1 + kPadding, client.top + 1, client.right - 1 - kPadding, client.bottom - 1);
}

int Edit::layoutLeft() const {
    const CRect box = textBox();
    const int width = layout().getSize().cx;
    if (layout().isRightToLeft() && width < box.width()) return box.right - 1 - width;
    return box.left - mScroll;
}

CRect Edit::getCaretRect() const {
    const CRect box = textBox();
    const Platform::TextLayout& shown = layout();
    const int at = isPassword() ? toShown(mCaret) : mCaret + mCompositionCursor;
    const CRect caret = shown.getCaretRect(at);
    const int top = box.top + (box.height() - shown.getSize().cy) / 2;
    return CRect(layoutLeft() + caret.left, top + caret.top, layoutLeft() + caret.left + 1,
                 top + caret.bottom);
}

// A caret that leaves the box scrolls the text by a quarter of the box beyond it, so that typing on
// does not scroll at every character.
void Edit::scrollToCaret() {
    const CRect box = textBox();
    const int width = layout().getSize().cx;
    if (width < box.width() || box.width() <= 0) {
        mScroll = 0;
    } else {
        const int at = isPassword() ? toShown(mCaret) : mCaret + mCompositionCursor;
        const int x = layout().getCaretRect(at).left;
        if (x < mScroll) mScroll = x - box.width() / 4;
        if (x >= mScroll + box.width()) mScroll = x - box.width() + 1 + box.width() / 4;
        mScroll = std::clamp(mScroll, 0, width + 1 - box.width());
    }
    placeInputMethod();
}

void Edit::placeInputMethod() {
    if (!hasFocus() || !mWindow) return;
    const CRect caret = getCaretRect();
    const CPoint origin = mWindow->getOriginInTopLevel();
    Platform::Display::instance().setTextInputRect(
        CRect(caret.left + origin.x, caret.top + origin.y, caret.right + origin.x, caret.bottom + origin.y));
}

void Edit::restartBlink() {
    mCaretShown = true;
    if (!mWindow) return;
    if (mgBlinkTime && hasFocus())
        mWindow->setTimer(kBlinkTimer, mgBlinkTime);
    else
        mWindow->killTimer(kBlinkTimer);
}

void Edit::moveTo(int position, bool extend) {
    mCaret = position;
    if (!extend) mAnchor = position;
    scrollToCaret();
    restartBlink();
    invalidate();
}

void Edit::edit(int from, int to, const CString& inserted, bool typing) {
    CString text = inserted;
    if (mLimit > 0) {
        const int room = mLimit - (getLength() - (to - from));
        if (room <= 0) return;
        if (static_cast<int>(text.length()) > room) {
            int cut = room;
            if (isLowSurrogate(text[static_cast<std::size_t>(cut)]) && isHighSurrogate(text[cut - 1u])) --cut;
            text = text.left(static_cast<std::size_t>(cut));
        }
    }
    if (from == to && text.isEmpty()) return;
    Change change{from,    mText.mid(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)),
                  text,    mCaret,
                  mAnchor, typing};
    Change* last = mUndo.empty() ? nullptr : &mUndo.back();
    const bool joins = typing && from == to && last && last->typing && last->removed.isEmpty() &&
                       last->at + static_cast<int>(last->inserted.length()) == from && mRedo.empty();
    apply(change, true);
    if (joins)
        last->inserted += text;
    else
        mUndo.push_back(std::move(change));
    mRedo.clear();
}

void Edit::apply(const Change& change, bool forward) {
    const CString& out = forward ? change.removed : change.inserted;
    const CString& in = forward ? change.inserted : change.removed;
    mText = mText.left(static_cast<std::size_t>(change.at)) + in +
            mText.mid(static_cast<std::size_t>(change.at) + out.length());
    if (forward) {
        mCaret = mAnchor = change.at + static_cast<int>(in.length());
    } else {
        mCaret = change.caretBefore;
        mAnchor = change.anchorBefore;
    }
    if (mWindow) mWindow->setText(mText);
    textChanged();
    restartBlink();
    fireCommand(CommandListener::kTextChanged);
}

void Edit::deleteRange(int from, int to) {
    if (isReadOnly() || from == to) return;
    edit(std::min(from, to), std::max(from, to), CString(), false);
}

void Edit::replaceSelection(const CString& text) {
    if (isReadOnly()) return;
    edit(getSelectionStart(), getSelectionEnd(), text, false);
}

bool Edit::undo() {
    if (mUndo.empty() || isReadOnly()) return false;
    Change change = std::move(mUndo.back());
    mUndo.pop_back();
    apply(change, false);
    mRedo.push_back(std::move(change));
    return true;
}

bool Edit::redo() {
    if (mRedo.empty() || isReadOnly()) return false;
    Change change = std::move(mRedo.back());
    mRedo.pop_back();
    change.typing = false;
    apply(change, true);
    mUndo.push_back(std::move(change));
    return true;
}

void Edit::copy() {
    if (isPassword() || !hasSelection()) return;
    Platform::Clipboard::setText(getSelectedText());
}

void Edit::cut() {
    if (isPassword() || isReadOnly() || !hasSelection()) return;
    copy();
    replaceSelection(CString());
}

void Edit::paste() {
    if (isReadOnly()) return;
    // One line: a line break ends what is taken.
    CString text = Platform::Clipboard::getText();
    const std::size_t end = std::min(text.find(u'\n'), text.find(u'\r'));
    if (end != CString::npos) text = text.left(end);
    std::u16string accepted;
    for (char16_t c : text.str())
        if (acceptsCharacter(c)) accepted += c;
    if (!accepted.empty()) replaceSelection(CString(std::move(accepted)));
}

bool Edit::acceptsCharacter(char16_t c) const {
    if (c < 0x20 || c == 0x7F) return false;
    return !(mStyle & Number) || (c >= u'0' && c <= u'9');
}

int Edit::moveCaret(int position, int virtualKey, bool control) const {
    const Platform::TextLayout& text = textLayout();
    switch (virtualKey) {
        case VK_HOME:
            return 0;
        case VK_END:
            return getLength();
        case VK_LEFT:
        case VK_RIGHT: {
            if (control) {
                // Words go by the text's order; in right-to-left text, Left goes forward.
                const bool forward = (virtualKey == VK_RIGHT) != layout().isRightToLeft();
                return text.nextWordStart(position, forward);
            }
            if (isPassword()) {
                const bool forward = virtualKey == VK_RIGHT;
                return text.nextCursorPosition(position, forward);
            }
            return text.moveVisually(position, virtualKey == VK_LEFT ? -1 : 1);
        }
        default:
            return position;
    }
}

bool Edit::onKeyDown(int virtualKey, LPARAM) {
    if (!isEnabled()) return false;
    const bool shift = keyDown(VK_SHIFT);
    const bool control = keyDown(VK_CONTROL);
    const Platform::TextLayout& text = textLayout();
    switch (virtualKey) {
        case VK_LEFT:
        case VK_RIGHT:
        case VK_HOME:
        case VK_END:
            if (hasSelection() && !shift && (virtualKey == VK_LEFT || virtualKey == VK_RIGHT) && !control)
                moveTo(virtualKey == VK_LEFT ? getSelectionStart() : getSelectionEnd(), false);
            else
                moveTo(moveCaret(mCaret, virtualKey, control), shift);
            return true;
        case VK_BACK:
            if (hasSelection())
                replaceSelection(CString());
            else
                deleteRange(control ? text.nextWordStart(mCaret, false) : text.backspaceStart(mCaret),
                            mCaret);
            return true;
        case VK_DELETE:
            if (shift) {
                cut();
            } else if (hasSelection()) {
                replaceSelection(CString());
            } else {
                deleteRange(mCaret, control ? text.nextWordStart(mCaret, true)
                                            : text.nextCursorPosition(mCaret, true));
            }
            return true;
        case VK_INSERT:
            if (control) copy();
            if (shift) paste();
            return control || shift;
        case VK_RETURN:
            fireCommand(CommandListener::kTextCommitted);
            return true;
        default:
            break;
    }
    if (!control) return false;
    switch (virtualKey) {
        case 'A':
            selectAll();
            return true;
        case 'C':
            copy();
            return true;
        case 'X':
            cut();
            return true;
        case 'V':
            paste();
            return true;
        case 'Z':
            if (shift)
                redo();
            else
                undo();
            return true;
        case 'Y':
            redo();
            return true;
        default:
            return false;
    }
}

// Characters come one UTF-16 unit at a time: the first half of a pair waits for the second.
bool Edit::onChar(char16_t c) {
    if (!isEnabled()) return false;
    if (isHighSurrogate(c)) {
        mHighSurrogate = c;
        return true;
    }
    CString typed;
    if (isLowSurrogate(c)) {
        if (!mHighSurrogate) return true;
        typed = CString(std::u16string{mHighSurrogate, c});
    } else if (acceptsCharacter(c)) {
        typed = CString(std::u16string(1, c));
    }
    mHighSurrogate = 0;
    if (typed.isEmpty()) return c >= 0x20;
    // An input method's result replaces its composition.
    mComposition = CString();
    mCompositionCursor = 0;
    if (!isReadOnly()) edit(getSelectionStart(), getSelectionEnd(), typed, true);
    return true;
}

bool Edit::onEditCommand(UINT message) {
    switch (message) {
        case WM_CUT:
            cut();
            return true;
        case WM_COPY:
            copy();
            return true;
        case WM_PASTE:
            paste();
            return true;
        case WM_UNDO:
            undo();
            return true;
        default:
            return false;
    }
}

bool Edit::onMouse(UINT message, CPoint point, WPARAM keys) {
    if (!isEnabled()) return false;
    const Platform::TextLayout& shown = layout();
    const CRect box = textBox();
    const CPoint inLayout(point.x - layoutLeft(), (shown.getSize().cy) / 2);
    const int at = toText(shown.positionAt(inLayout));
    switch (message) {
        case WM_LBUTTONDOWN:
            mPressedByMouse = true;
            setFocus();
            mPressedByMouse = false;
            moveTo(at, (keys & MK_SHIFT) != 0);
            mDragging = true;
            if (mWindow) mWindow->setCapture();
            return true;
        case WM_LBUTTONDBLCLK: {
            const Platform::TextLayout& text = textLayout();
            const int start = text.nextWordStart(text.nextCursorPosition(at, true), false);
            mAnchor = std::min(start, at);
            moveTo(text.nextWordStart(at, true), true);
            return true;
        }
        case WM_MOUSEMOVE:
            if (!mDragging) return false;
            // Past an end of the box the position keeps moving, so that a drag scrolls the text.
            if (point.x < box.left)
                moveTo(moveCaret(mCaret, layout().isRightToLeft() ? VK_RIGHT : VK_LEFT, false), true);
            else if (point.x >= box.right)
                moveTo(moveCaret(mCaret, layout().isRightToLeft() ? VK_LEFT : VK_RIGHT, false), true);
            else
                moveTo(at, true);
            return true;
        case WM_LBUTTONUP:
            if (!mDragging) return false;
            mDragging = false;
            if (mWindow && Platform::Window::getCapture() == mWindow) Platform::Window::releaseCapture();
            return true;
        default:
            return false;
    }
}

void Edit::onFocus(bool gained) {
    if (gained && !mPressedByMouse) {
        mAnchor = 0;
        mCaret = getLength();
        scrollToCaret();
    }
    if (!gained) {
        mComposition = CString();
        mCompositionCursor = 0;
        mLayout.reset();
        mDragging = false;
    }
    restartBlink();
    if (gained) placeInputMethod();
    invalidate();
}

void Edit::onSize(CSize) {
    scrollToCaret();
}

LRESULT Edit::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_TIMER && wParam == kBlinkTimer) {
        mCaretShown = !mCaretShown;
        invalidate(false, nullptr);
        return 0;
    }
    if (message == WM_IME_COMPOSITION) {
        if (isPassword() || isReadOnly() || !isEnabled()) return 0;
        if (hasSelection()) replaceSelection(CString());
        mComposition = Platform::Display::instance().getComposition();
        // The input method counts its cursor in characters of the composition.
        const std::u16string& composed = mComposition.str();
        int unit = 0;
        for (int points = 0; unit < static_cast<int>(composed.size()) && points < static_cast<int>(wParam);
             ++points)
            unit += isHighSurrogate(composed[static_cast<std::size_t>(unit)]) ? 2 : 1;
        mCompositionCursor = std::min(unit, static_cast<int>(composed.size()));
        mLayout.reset();
        scrollToCaret();
        restartBlink();
        invalidate();
        return 0;
    }
    return WindowedControl::windowProc(window, message, wParam, lParam);
}

void Edit::paintBackground(HDC dc) {
    WidgetLook::drawField(dc, getClientRect(), isEnabled() && !isReadOnly());
}

void Edit::paintContent(HDC dc) {
    const CRect box = textBox();
    if (box.isEmpty()) return;
    const Platform::TextLayout& shown = layout();
    const int left = layoutLeft();
    const int top = box.top + (box.height() - shown.getSize().cy) / 2;
    dc->intersectClipRect(CRect(box.left - kPadding, box.top, box.right + kPadding, box.bottom));
    dc->setTextColor(WidgetLook::textColor(isEnabled()));
    dc->drawLayout(shown, CPoint(left, top));
    const bool focused = hasFocus();
    if (hasSelection() && focused) {
        // The selected pieces again, over the highlight, in the highlighted text's colour.
        for (const auto& [from, to] :
             shown.rangeExtents(toShown(getSelectionStart()), toShown(getSelectionEnd()))) {
            const CRect piece(left + from, top, left + to, top + shown.getSize().cy);
            const int level = dc->save();
            dc->intersectClipRect(piece);
            dc->fillRect(piece, WidgetLook::selectionColor(true));
            dc->setTextColor(WidgetLook::selectedTextColor(true));
            dc->drawLayout(shown, CPoint(left, top));
            dc->restore(level);
        }
    }
    if (focused && mCaretShown && isEnabled())
        dc->fillRect(getCaretRect(), Platform::getSysColor(COLOR_WINDOWTEXT));
}

}  // namespace Orvanta
