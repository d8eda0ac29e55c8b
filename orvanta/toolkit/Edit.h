#pragma once
// Edit: a one-line field of text the user types into: a caret, a selection made with the mouse or the
// keys, the clipboard, undo of what was typed, text from input methods, right-to-left and combining
// text, and a password form that shows a dot for each character.
//
// Contract:
//  - Positions are UTF-16 indices into the text. The caret and both ends of the selection stand only
//    where Pango allows a caret (between grapheme clusters), so a letter with its combining marks, or
//    a character outside the basic plane, is passed over and deleted whole; Backspace does the same
//    after a Latin, Greek or Cyrillic letter, and in other scripts (a Hebrew letter with its vowel
//    points) removes the last mark alone, as Pango advises.
//  - Keys: Left and Right move one grapheme on the screen (in right-to-left text Left goes forward),
//    with Control a word (to the previous or next word start, in the text's order), Home and End to
//    the ends; with Shift each extends the selection. A selection collapses to its start (Left) or end
//    (Right). Backspace and Delete remove the selection or one grapheme (with Control a word); Control
//    with A selects all, C copies, X cuts, V pastes, Z undoes and Y (or Shift+Control+Z) redoes; Shift
//    with Delete cuts and with Insert pastes, Control with Insert copies. Enter fires kTextCommitted.
//  - The mouse: a press puts the caret at the nearest grapheme edge (with Shift it extends the
//    selection), dragging selects, a double click selects the word and the spaces after it. Focus
//    gained by Tab (not by a click) selects all the text.
//  - Every change of the text by the user fires kTextChanged. setText replaces the text without a
//    command, puts the caret at the end and forgets the undo history.
//  - Undo: each change is one step (a paste, a deletion, a cut), except that characters typed one
//    after another without the caret moving in between make one step together; redo steps forward
//    again until the next change. Undo restores the text, the caret and the selection of before.
//  - Input methods: the text being composed (WM_IME_COMPOSITION, the display's composition) is shown
//    at the caret, underlined, without being part of the text, until the input method types its
//    result. The input method is told where the caret is, for its list of candidates.
//  - The password form shows one dot per character (code point), never gives its text to the
//    clipboard (copy and cut do nothing) and takes no composition. A read-only field moves its caret
//    and selects and copies, but changes nothing. A limit caps the length: what would pass it is cut
//    at a character's edge. The Number style takes digits only.
//  - Paragraphs in right-to-left script are aligned to the right while they fit; longer text scrolls
//    so that the caret stays in view. The caret blinks (kCaretBlinkTime; setCaretBlinkTime(0) keeps it
//    steady, which tests of pixels do). A disabled field is grey and takes no input.

#include <memory>
#include <vector>

#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class Edit : public WindowedControl {
public:
    enum Style { Password = 1, ReadOnly = 2, Number = 4 };

    static Edit* create(int id, const CString& text = CString(), int style = 0,
                        CommandListener* listener = nullptr);
    ~Edit() override;

    void setText(const CString& text) override;
    int getLength() const { return static_cast<int>(mText.length()); }

    int getCaret() const { return mCaret; }
    int getSelectionStart() const { return std::min(mCaret, mAnchor); }
    int getSelectionEnd() const { return std::max(mCaret, mAnchor); }
    bool hasSelection() const { return mCaret != mAnchor; }
    CString getSelectedText() const;
    // Selects from anchor to caret (the caret ends at `caret`); -1 stands for the end of the text.
    void setSelection(int anchor, int caret);
    void selectAll() { setSelection(0, -1); }
    // Puts text in place of the selection, as if typed or pasted: one step of undo, kTextChanged.
    void replaceSelection(const CString& text);

    bool isPassword() const { return mStyle & Password; }
    bool isReadOnly() const { return mStyle & ReadOnly; }
    void setReadOnly(bool readOnly);
    void setLimitText(int limit);
    int getLimitText() const { return mLimit; }

    bool canUndo() const { return !mUndo.empty(); }
    bool canRedo() const { return !mRedo.empty(); }
    bool undo();
    bool redo();
    void cut();
    void copy();
    void paste();

    const CString& getComposition() const { return mComposition; }
    // How far the text is scrolled to the left, in pixels.
    int getScrollOffset() const { return mScroll; }
    // Where the caret is drawn, in client coordinates.
    CRect getCaretRect() const;

    // The blink period of every field's caret, in milliseconds; 0 keeps it steady.
    static void setCaretBlinkTime(UINT milliseconds);

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;
    LRESULT windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override;

    static constexpr int kPadding = 3;
    static constexpr UINT kCaretBlinkTime = 530;
    static constexpr char16_t kPasswordDot = u'\u25CF';

protected:
    Edit(int id, const CString& text, int style);

    // Whether a typed character may go into the text (the Number style takes digits only).
    virtual bool acceptsCharacter(char16_t c) const;

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    bool onChar(char16_t c) override;
    void onFocus(bool gained) override;
    bool onEditCommand(UINT message) override;
    void onSize(CSize size) override;

private:
    // One step of undo: at `at`, `removed` gave way to `inserted`; the caret and anchor before it.
    struct Change {
        int at;
        CString removed;
        CString inserted;
        int caretBefore;
        int anchorBefore;
        bool typing;
    };

    void refit();
    // The text as laid out: dots for a password, the composition at the caret.
    const Platform::TextLayout& layout() const;
    void textChanged();
    int toShown(int position) const;
    int toText(int shown) const;
    // The text's caret positions in the text's own order, for the password form's dots.
    const Platform::TextLayout& textLayout() const;
    int moveCaret(int position, int virtualKey, bool control) const;
    void moveTo(int position, bool extend);
    void edit(int from, int to, const CString& inserted, bool typing);
    void apply(const Change& change, bool forward);
    void deleteRange(int from, int to);
    CRect textBox() const;
    // Where the layout's left edge is, in client coordinates.
    int layoutLeft() const;
    void scrollToCaret();
    void restartBlink();
    void placeInputMethod();

    int mStyle;
    int mCaret = 0;
    int mAnchor = 0;
    int mLimit = 0;
    int mScroll = 0;
    bool mDragging = false;
    bool mPressedByMouse = false;
    bool mCaretShown = true;
    char16_t mHighSurrogate = 0;
    CString mComposition;
    int mCompositionCursor = 0;
    std::vector<Change> mUndo;
    std::vector<Change> mRedo;
    mutable std::unique_ptr<Platform::TextLayout> mLayout;
    mutable std::unique_ptr<Platform::TextLayout> mTextLayout;

    static UINT mgBlinkTime;
};

}  // namespace Orvanta
