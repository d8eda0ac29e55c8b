#pragma once
// DropDown: a field showing one choice of a list, with a button that drops the whole list down below
// it (a paper size, a sort order).
//
// Contract:
//  - The items live in a ListBox, shown in a Popup while open. A press on the field or its button
//    opens the list, a second press closes it; so do Alt+Down, Alt+Up and F4, and Space opens it. While open,
//    the item under the pointer is highlighted, and a click takes it and closes the list; Up, Down, Page Up,
//    Page Down, Home and End move the highlight, Enter (or Tab, or the focus going elsewhere) takes it,
//    and Escape closes the list without taking anything (the dialog around does not see that Escape).
//    A press anywhere else closes it too.
//  - While closed, the movement keys, the wheel over the field and typed letters (the next item
//    starting with them) change the choice at once.
//  - Every change of the choice the user makes fires kSelectionChanged; setCurSel does not.
//  - Items are drawn as they are ('&' is no mnemonic), or by a ListItemPainter, in the field too.
//  - With the focus, the field shows its choice highlighted. Disabled, it is grey and takes no input.

#include "orvanta/toolkit/ListBox.h"
#include "orvanta/toolkit/PopupField.h"

namespace Orvanta {

class DropDown : public PopupField {
public:
    static DropDown* create(int id, CommandListener* listener = nullptr);

    int addString(const CString& text, LPARAM data = 0) { return mList->addString(text, data); }
    int insertString(int index, const CString& text, LPARAM data = 0);
    bool deleteString(int index);
    void resetContent();
    int getCount() const { return mList->getCount(); }
    CString getString(int index) const { return mList->getString(index); }
    LPARAM getItemData(int index) const { return mList->getItemData(index); }
    void setItemData(int index, LPARAM data) { mList->setItemData(index, data); }
    int getCurSel() const { return mChoice; }
    void setCurSel(int index);
    void setPainter(ListItemPainter* painter);
    // How many items the open list shows before it scrolls.
    void setVisibleItems(int count) { mVisibleItems = count > 0 ? count : 1; }

    ListBox* getList() const { return mList; }

    bool preTranslateMessage(MSG* msg) override;
    bool takesWheelMessages() override { return isEnabled(); }
    void onWheelMessage(const MSG& msg) override;

    static constexpr int kDefaultVisibleItems = 8;

protected:
    explicit DropDown(int id);

    CSize prepareDropDown() override;
    void onDropDownShown() override;
    // The highlighted item becomes the choice.
    void takeDropDownValue() override;
    void paintField(HDC dc, const CRect& field) override;
    bool onOpenKey(int virtualKey, LPARAM lParam) override;
    bool onClosedKey(int virtualKey, LPARAM lParam) override;
    bool takesOnFocusLoss() const override { return true; }
    bool onChar(char16_t c) override;

private:
    DropDown(int id, ListBox* list);
    void choose(int index);
    void refit();

    OwnedPtr<ListBox> mList;
    int mChoice = -1;
    int mVisibleItems = kDefaultVisibleItems;
};

}  // namespace Orvanta
