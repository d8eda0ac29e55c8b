#pragma once
// EditableLabel: text shown as a label that the user can rename in place (a photograph's caption, an
// album's name): a double click, F2 or Enter turns it into an edit field over the same place.
//
// Contract:
//  - While shown as a label, the text is drawn as it is ('&' marks nothing), cut with an ellipsis
//    when too long; with the focus it has the focus rectangle. It is one tab stop.
//  - beginEdit (a double click, F2 or Enter with the focus) shows an Edit holding the text, all of it
//    selected, with the focus. Enter, or the focus going elsewhere, ends the edit and keeps the new
//    text: when it differs, the label fires kTextCommitted. Escape ends it and keeps the old text
//    (and is not seen by the dialog around, which would close). The label has the focus again after
//    Enter and Escape.
//  - setText changes the text without a command; it ends an edit in progress without keeping it.
//  - Disabled, the text is grey and no edit begins.

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class Edit;

class EditableLabel : public Container {
public:
    static EditableLabel* create(int id, const CString& text, CommandListener* listener = nullptr);

    void setText(const CString& text) override;
    bool isEditing() const;
    void beginEdit();
    void endEdit(bool keep);
    // The field used while editing.
    Edit* getEdit() const { return mEdit; }

    void paintContent(HDC dc) override;
    void onCommand(Control* source, int command) override;
    void layout() override;

    static constexpr int kPadding = 3;

protected:
    EditableLabel(int id, const CString& text);

    bool onMouse(UINT message, CPoint point, WPARAM keys) override;
    bool onKeyDown(int virtualKey, LPARAM lParam) override;
    void onFocus(bool gained) override;

private:
    class Field;
    void refit();

    Edit* mEdit;
    bool mEnding = false;
};

}  // namespace Orvanta
