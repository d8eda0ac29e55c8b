#pragma once
// RadioButtonGroup: a set of choices of which one is taken, each a round mark with its caption, in a
// column (or a row). The group is one control and one tab stop: Tab enters and leaves it as a whole,
// and the arrow keys move the choice within it, as users of radio buttons expect.
//
// Contract:
//  - A click on a choice (its mark or caption: press and release over the same choice) takes it;
//    Up/Left and Down/Right take the previous and next choice, wrapping round; Home and End the first
//    and last; Space takes the one under the focus. Each change the user makes fires
//    kSelectionChanged; setSelection does not.
//  - A '&' in a caption marks its mnemonic: Alt and that letter take the choice and focus the group.
//  - The selection is -1 until a choice is taken. With the focus, the taken choice's caption (the
//    first one while none is taken) has the focus rectangle. A disabled group is grey.
//  - The minimum size fits every choice.

#include <vector>

#include "orvanta/toolkit/WindowedControl.h"

namespace Orvanta {

class RadioButtonGroup : public WindowedControl {
public:
    static RadioButtonGroup* create(int id, const std::vector<CString>& choices, bool horizontal = false,
                                    CommandListener* listener = nullptr);

    int addChoice(const CString& caption);
    int getCount() const { return static_cast<int>(mChoices.size()); }
    const CString& getChoice(int index) const { return mChoices[index]; }
    int getSelection() const { return mSelection; }
    void setSelection(int index);
    // A choice's rectangle (mark and caption), in client coordinates.
    CRect getChoiceRect(int index) const;

    void paintContent(HDC dc) override;
    bool onMnemonic(char16_t key) override;

    static constexpr int kGap = 5;      // between a mark and its caption
    static constexpr int kSpacing = 4;  // between choices in a column
    static constexpr int kRowGap = 16;  // between choices in a row

protected:
    RadioButtonGroup(int id, bool horizontal);

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    void onFocus(bool gained) override;

private:
    void refit();
    int choiceAt(CPoint point) const;
    void take(int index);

    bool mHorizontal;
    std::vector<CString> mChoices;
    std::vector<CRect> mRects;
    int mSelection = -1;
    int mPressed = -1;
};

}  // namespace Orvanta
