// The edit field driven by posted keys, text, composition and the mouse: graphemes, surrogate pairs and
// right-to-left text moved over and deleted whole, words, the selection, the clipboard, undo of typing,
// the styles (password, number, read-only, a limit), input methods, and what the field shows.

#include <SDL.h>
#include <gtest/gtest.h>

#include <functional>

#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/SystemColors.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"
#include "tests/support/UiHarness.h"
#include "tests/toolkit/ToolkitSupport.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class EditTest : public ::testing::Test {
protected:
    void SetUp() override {
        Edit::setCaretBlinkTime(0);
        ui = std::make_unique<UiHarness>(CSize(320, 80));
        field = place(ui->root(), Edit::create(1, CString(), 0, &log), CRect(10, 10, 310, 36), true);
        field->setFocus();
        ui->runUntilIdle();
    }
    void TearDown() override {
        ui.reset();
        Edit::setCaretBlinkTime(Edit::kCaretBlinkTime);
    }
    void key(SDL_Keycode k, bool shift = false, bool control = false) { ui->pressKey(k, shift, control); }
    void type(const char* utf8) { ui->typeText(utf8); }
    void start(const char16_t* text, int caret) {
        field->setText(text);
        field->setSelection(caret, caret);
    }
    // The columns of the field's box holding text-coloured pixels: first and last.
    std::pair<int, int> inkColumns() {
        ui->runUntilIdle();
        int first = -1, last = -1;
        for (int x = 12; x < 308; ++x)
            for (int y = 12; y < 34; ++y)
                if (ui->pixel(x, y) == Platform::getSysColor(COLOR_WINDOWTEXT)) {
                    if (first < 0) first = x;
                    last = x;
                }
        return {first, last};
    }

    CommandLog log;  // outlives the field that tells it
    std::unique_ptr<UiHarness> ui;
    Edit* field;
};

TEST_F(EditTest, KeysMoveOverAndDeleteWholeGraphemesWordsAndSelections) {
    struct Case {
        const char16_t* text;
        int caret;
        std::function<void()> keys;
        const char16_t* after;
        int caretAfter, anchorAfter;
    };
    const Case cases[] = {
        // A Latin letter written as base and accent is one grapheme for Backspace and Left; after a
        // Hebrew letter with its vowel point, Backspace takes the point alone.
        {u"cafe\u0301", 5, [&] { key(SDLK_BACKSPACE); }, u"caf", 3, 3},
        {u"\u05E9\u05B8", 2, [&] { key(SDLK_BACKSPACE); }, u"\u05E9", 1, 1},
        {u"cafe\u0301", 5, [&] { key(SDLK_LEFT), key(SDLK_DELETE); }, u"caf", 3, 3},
        // A character outside the basic plane is two UTF-16 units and one step.
        {u"a📷b", 1, [&] { key(SDLK_RIGHT), key(SDLK_BACKSPACE); }, u"ab", 1, 1},
        {u"a📷b", 0, [&] { key(SDLK_END), key(SDLK_LEFT, true), key(SDLK_LEFT, true); }, u"a📷b", 1, 4},
        // Right to left: Left goes forward through the text, Right back.
        {u"שלום", 0, [&] { key(SDLK_LEFT), key(SDLK_LEFT); }, u"שלום", 2, 2},
        {u"שלום", 2, [&] { key(SDLK_RIGHT); }, u"שלום", 1, 1},
        // Words, with Control.
        {u"Photos of Ré", 12, [&] { key(SDLK_LEFT, false, true), key(SDLK_LEFT, false, true); },
         u"Photos of Ré", 7, 7},
        {u"Photos of Ré", 12, [&] { key(SDLK_BACKSPACE, false, true); }, u"Photos of ", 10, 10},
        {u"Photos of Ré", 0, [&] { key(SDLK_DELETE, false, true); }, u"of Ré", 0, 0},
        // Selections: Shift extends, typing replaces, a collapsed selection goes to its end.
        {u"Photos of Ré", 12, [&] { key(SDLK_HOME, true), type("Été"); }, u"Été", 3, 3},
        {u"Photos", 6, [&] { key(SDLK_a, false, true), key(SDLK_LEFT); }, u"Photos", 0, 0},
        {u"Photos", 2, [&] { key(SDLK_RIGHT, true), key(SDLK_RIGHT); }, u"Photos", 3, 3},
        // Typed text in any script, pairs included; the control characters type nothing.
        {u"", 0, [&] { type("Grüße 写真 📷"), key(SDLK_TAB, false, true), key(SDLK_b, false, true); },
         u"Grüße 写真 📷", 11, 11},
        {u"end", 3, [&] { key(SDLK_DELETE); }, u"end", 3, 3},
    };
    for (const Case& c : cases) {
        start(c.text, c.caret);
        c.keys();
        ui->runUntilIdle();
        EXPECT_EQ(field->getText().str(), std::u16string(c.after)) << CString(c.text).toUtf8();
        EXPECT_EQ(field->getCaret(), c.caretAfter) << CString(c.text).toUtf8();
        EXPECT_EQ(field->getSelectionStart() == c.caretAfter ? field->getSelectionEnd()
                                                             : field->getSelectionStart(),
                  c.anchorAfter)
            << CString(c.text).toUtf8();
    }
}

TEST_F(EditTest, TypingUndoesAsOneStepAndEachOtherChangeAsItsOwn) {
    Platform::Clipboard::setText(u"clip");
    const struct {
        std::function<void()> act;
        const char16_t* text;
        const char16_t* clipboard;
    } steps[] = {
        {[&] { type("Hello"), type(" wörld"); }, u"Hello wörld", u"clip"},
        {[&] { key(SDLK_z, false, true); }, u"", u"clip"},
        {[&] { key(SDLK_y, false, true); }, u"Hello wörld", u"clip"},
        {[&] { key(SDLK_HOME, true), key(SDLK_x, false, true); }, u"", u"Hello wörld"},
        {[&] { key(SDLK_v, false, true), key(SDLK_INSERT, true); }, u"Hello wörldHello wörld",
         u"Hello wörld"},
        {[&] { key(SDLK_z, false, true); }, u"Hello wörld", u"Hello wörld"},
        {[&] { key(SDLK_z, false, true), key(SDLK_z, false, true); }, u"Hello wörld", u"Hello wörld"},
        {[&] { key(SDLK_z, false, true); }, u"", u"Hello wörld"},
        {[&] { key(SDLK_z, true, true); }, u"Hello wörld", u"Hello wörld"},
        {[&] { key(SDLK_LEFT), type("!"), key(SDLK_RIGHT), type("?"); }, u"Hello wörl!d?", u"Hello wörld"},
        {[&] { key(SDLK_z, false, true); }, u"Hello wörl!d", u"Hello wörld"},
        {[&] { key(SDLK_a, false, true), key(SDLK_INSERT, false, true); }, u"Hello wörl!d", u"Hello wörl!d"},
    };
    for (const auto& s : steps) {
        s.act();
        ui->runUntilIdle();
        EXPECT_EQ(field->getText().str(), std::u16string(s.text));
        EXPECT_EQ(Platform::Clipboard::getText().str(), std::u16string(s.clipboard));
    }
    // Every change by the user was told, and only those.
    std::size_t changes = 0;
    for (const auto& [source, command] : log.commands) changes += command == CommandListener::kTextChanged;
    EXPECT_EQ(changes, 5u + 6u + 1u + 1u + 1u + 2u + 1u + 2u + 1u + 1u + 2u + 1u);
    field->setText(u"new");
    EXPECT_FALSE(field->canUndo());
}

TEST_F(EditTest, StylesAndTheLimitRestrictWhatChanges) {
    Platform::Clipboard::setText(u"12345678901234567890");
    struct Case {
        int style;
        int limit;
        std::function<void()> act;
        const char16_t* text;
        const char16_t* clipboard;
    };
    const Case cases[] = {
        {Edit::Number, 0, [&] { type("a1b2"), key(SDLK_v, false, true); }, u"1212345678901234567890",
         u"12345678901234567890"},
        {0, 8, [&] { type("ab"), key(SDLK_v, false, true); }, u"ab123456", u"12345678901234567890"},
        {0, 3, [&] { type("ab📷"); }, u"ab", u"12345678901234567890"},  // a pair is never cut in half
        {Edit::Password, 0,
         [&] {
             type("s3cr€t"), key(SDLK_a, false, true), key(SDLK_c, false, true), key(SDLK_x, false, true);
         },
         u"s3cr€t", u"12345678901234567890"},
        {Edit::ReadOnly, 0,
         [&] { type("x"), key(SDLK_BACKSPACE), key(SDLK_a, false, true), key(SDLK_c, false, true); }, u"kept",
         u"kept"},
    };
    for (const Case& c : cases) {
        Edit* edit = Edit::create(2, c.style & Edit::ReadOnly ? u"kept" : u"", c.style);
        edit->setLimitText(c.limit);
        edit->setRect(CRect(10, 40, 310, 66));
        ui->root()->add(edit, true);
        edit->setFocus();
        c.act();
        ui->runUntilIdle();
        EXPECT_EQ(edit->getText().str(), std::u16string(c.text)) << c.style;
        EXPECT_EQ(Platform::Clipboard::getText().str(), std::u16string(c.clipboard)) << c.style;
        if (c.style == Edit::Password) {
            // Six dots, whatever the characters.
            Platform::TextLayout dots(CString(std::u16string(6, Edit::kPasswordDot)),
                                      Font::getDefault()->getDescription());
            EXPECT_EQ(edit->getCaretRect().left, 10 + 1 + Edit::kPadding + dots.getSize().cx - 10);
        }
        ui->root()->remove(edit);
    }
}

TEST_F(EditTest, TheMouseSetsTheCaretSelectsByDraggingAndWordsByDoubleClicking) {
    field->setText(u"Photos of Ré 2026");
    ui->runUntilIdle();
    const Platform::TextLayout layout(u"Photos of Ré 2026", Font::getDefault()->getDescription());
    const int left = 10 + 1 + Edit::kPadding;
    auto xOf = [&](int position) { return left + layout.getCaretRect(position).left; };
    struct Case {
        std::function<void()> act;
        int start, end;
    };
    const Case cases[] = {
        {[&] { ui->click(CPoint(xOf(7) + 1, 22)); }, 7, 7},
        {[&] { ui->click(CPoint(300, 22)); }, 17, 17},
        {[&] {
             ui->mouseDown(CPoint(xOf(2) - 1, 22));
             ui->mouseMove(CPoint(xOf(9) + 1, 22));
             ui->mouseUp(CPoint(xOf(9) + 1, 22));
         },
         2, 9},
        {[&] {
             ui->click(CPoint(xOf(1), 22));
             ui->mouseDown(CPoint(xOf(13) + 1, 22), 1, 2);
             ui->mouseUp(CPoint(xOf(13) + 1, 22));
         },
         13, 17},
        {[&] { ui->mouseDown(CPoint(xOf(8), 22), 1, 2), ui->mouseUp(CPoint(xOf(8), 22)); }, 7,
         10},  // the space after
        {[&] { ui->mouseDown(CPoint(xOf(3), 22)), ui->mouseUp(CPoint(xOf(3), 22)); }, 3, 3},
    };
    for (const Case& c : cases) {
        c.act();
        ui->runUntilIdle();
        EXPECT_EQ(field->getSelectionStart(), c.start);
        EXPECT_EQ(field->getSelectionEnd(), c.end);
    }
    // The selection is drawn in the highlight, the selected text in its colour on it.
    field->setSelection(0, 6);
    ui->runUntilIdle();
    const int top = 10 + field->getCaretRect().top + 1;  // above the letters
    int highlighted = 0;
    for (int x = left; x < xOf(6); ++x) highlighted += ui->pixel(x, top) == WidgetLook::selectionColor(true);
    EXPECT_GE(highlighted, xOf(6) - left - 1);
    EXPECT_EQ(ui->pixel(xOf(8), top), Platform::getSysColor(COLOR_WINDOW));
}

TEST_F(EditTest, RightToLeftTextAlignsRightAndMixedTextSelectsInPieces) {
    field->setText(u"Photos");
    const auto latin = inkColumns();
    field->setText(u"תמונות");
    const auto hebrew = inkColumns();
    field->setText(u"صور العطلة");
    const auto arabic = inkColumns();
    EXPECT_LT(latin.first, 40);
    EXPECT_GT(hebrew.first, 200);
    EXPECT_GE(hebrew.second, 280);
    EXPECT_GT(arabic.first, 200);
    // "abc" then Hebrew then "def": the logical run from 'c' into the Hebrew word is two pieces.
    const Platform::TextLayout mixed(u"abc שלום def", Font::getDefault()->getDescription());
    EXPECT_EQ(mixed.rangeExtents(2, 6).size(), 2u);
    EXPECT_EQ(mixed.rangeExtents(0, 3).size(), 1u);
    EXPECT_FALSE(mixed.isRightToLeft());
}

TEST_F(EditTest, AComposedTextShowsAtTheCaretUntilTheInputMethodTypesIt) {
    field->setText(u"写");
    const int before = field->getCaretRect().left;
    ui->compose("しゃしん", 4);
    ui->runUntilIdle();
    EXPECT_EQ(field->getText().str(), u"写");
    EXPECT_EQ(field->getComposition().str(), u"しゃしん");
    EXPECT_GT(field->getCaretRect().left, before + 30);  // after the four characters shown
    const auto shown = inkColumns();
    ui->compose("写真", 2);
    ui->typeText("写真");
    ui->runUntilIdle();
    EXPECT_EQ(field->getText().str(), u"写写真");
    EXPECT_TRUE(field->getComposition().isEmpty());
    EXPECT_LT(inkColumns().second, shown.second);  // two characters shown, not four
    // A long text scrolls to keep the caret in view, and back for Home.
    field->setText(CString(std::u16string(80, u'W')));
    ui->runUntilIdle();
    EXPECT_GT(field->getScrollOffset(), 0);
    EXPECT_LE(field->getCaretRect().right, 310);
    key(SDLK_HOME);
    ui->runUntilIdle();
    EXPECT_EQ(field->getScrollOffset(), 0);
}

}  // namespace
