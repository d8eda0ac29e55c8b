#include "orvanta/toolkit/EditableLabel.h"

#include "orvanta/platform/TextLayout.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/Font.h"
#include "orvanta/toolkit/WidgetLook.h"

namespace Orvanta {

// The field over the label while editing: Escape and the loss of the focus end the edit.
class EditableLabel::Field : public Edit {
public:
    explicit Field(EditableLabel* owner) : Edit(owner->getId(), CString(), 0), mOwner(owner) {}

    bool preTranslateMessage(MSG* msg) override {
        if (msg->message == WM_KEYDOWN && msg->wParam == static_cast<WPARAM>(VK_ESCAPE)) {
            mOwner->endEdit(false);
            return true;
        }
        return Edit::preTranslateMessage(msg);
    }

protected:
    void onFocus(bool gained) override {
        Edit::onFocus(gained);
        if (!gained && !isHidden()) mOwner->endEdit(true);
    }

private:
    EditableLabel* mOwner;
};

EditableLabel::EditableLabel(int id, const CString& text) : Container(true), mEdit(new Field(this)) {
    setId(id);
    mText = text;
    add(mEdit);
    mEdit->hide();
    refit();
}

EditableLabel* EditableLabel::create(int id, const CString& text, CommandListener* listener) {
    auto* label = new EditableLabel(id, text);
    if (listener) label->addCommandListener(listener);
    return label;
}

void EditableLabel::refit() {
    const CSize text = Platform::TextLayout(mText, getFont()->getDescription()).getSize();
    setMinSize(text.cx + 2 * kPadding, std::max(text.cy + 2 * kPadding, mEdit->getMinSize().cy));
}

void EditableLabel::setText(const CString& text) {
    if (isEditing()) endEdit(false);
    Container::setText(text);
    refit();
}

bool EditableLabel::isEditing() const {
    return !mEdit->isHidden();
}

void EditableLabel::beginEdit() {
    if (isEditing() || !isEnabled()) return;
    mEdit->setText(mText);
    layout();
    mEdit->show(true);
    mEdit->setFocus();
    mEdit->selectAll();
}

void EditableLabel::endEdit(bool keep) {
    if (!isEditing() || mEnding) return;
    // Moving the focus away from the field would end the edit again, keeping the text.
    mEnding = true;
    const bool hadFocus = mEdit->hasFocus();
    const CString text = mEdit->getText();
    if (hadFocus) setFocus();
    mEdit->hide();
    mEnding = false;
    if (keep && text.str() != mText.str()) {
        Container::setText(text);
        refit();
        fireCommand(CommandListener::kTextCommitted);
    }
    invalidate();
}

void EditableLabel::layout() {
    mEdit->setRect(getClientRect());
}

void EditableLabel::onCommand(Control* source, int command) {
    if (source == mEdit) {
        if (command == CommandListener::kTextCommitted) endEdit(true);
        return;
    }
    Container::onCommand(source, command);
}

bool EditableLabel::onMouse(UINT message, CPoint, WPARAM) {
    if (!isEnabled()) return false;
    if (message == WM_LBUTTONDOWN) {
        setFocus();
        return true;
    }
    if (message == WM_LBUTTONDBLCLK) {
        beginEdit();
        return true;
    }
    return false;
}

bool EditableLabel::onKeyDown(int virtualKey, LPARAM) {
    if (virtualKey != VK_F2 && virtualKey != VK_RETURN) return false;
    beginEdit();
    return true;
}

void EditableLabel::onFocus(bool) {
    invalidate();
}

void EditableLabel::paintContent(HDC dc) {
    Container::paintContent(dc);
    if (isEditing()) return;
    const CRect client = getClientRect();
    CRect text(client.left + kPadding, client.top, client.right - kPadding, client.bottom);
    dc->setTextColor(WidgetLook::textColor(isEnabled()));
    dc->drawText(mText, &text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX);
    if (hasFocus()) WidgetLook::drawFocusRect(dc, client);
}

}  // namespace Orvanta
