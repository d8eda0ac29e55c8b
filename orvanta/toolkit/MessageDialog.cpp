#include "orvanta/toolkit/MessageDialog.h"

#include "orvanta/platform/MessageQueue.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/TextButton.h"

namespace Orvanta {

MessageDialog::MessageDialog(const CString& title, const CString& text, bool withCancel)
    : mTitle(title), mText(text), mWithCancel(withCancel), mThread(Platform::currentThreadId()) {}

// The buttons tell this object what they do: the window goes before the object does.
MessageDialog::~MessageDialog() {
    Dialog::close(IDCANCEL);
}

MessageDialog* MessageDialog::create(const CString& title, const CString& text, bool withCancel) {
    return new MessageDialog(title, text, withCancel);
}

int MessageDialog::showModal(int width, int height, const StringOrResource& title, HWND parent) {
    if (Platform::currentThreadId() != mThread) return 0;
    return Dialog::showModal(width, height, title, parent);
}

void MessageDialog::populateDialog() {
    GridContainer* grid = GridContainer::create(2, 1);
    grid->setRowSpec(0, GridContainer::kFit);
    grid->setRowSpec(1, GridContainer::kFit);
    grid->setColSpec(0, GridContainer::kFit);
    grid->setMargin(kMargin, Style::kBorders);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->setBorderWidth(kMargin, Style::VerticalGap);
    Label* label = Label::create(mText, DT_LEFT | DT_WORDBREAK);
    label->setFixedWidth(kTextWidth);
    label->setAlignment(Control::AlignCenter, Control::AlignCenter);
    grid->add(label, 0, 0);
    GridContainer* buttons = GridContainer::create(1, mWithCancel ? 2 : 1);
    buttons->setAlignment(Control::AlignCenter, Control::AlignCenter);
    for (int col = 0; col < buttons->getCols(); ++col) buttons->setColSpec(col, GridContainer::kFit);
    buttons->setRowSpec(0, GridContainer::kFit);
    for (int id : {IDOK, IDCANCEL}) {
        if (id == IDCANCEL && !mWithCancel) break;
        TextButton* button = TextButton::create(id, id == IDOK ? u"OK" : u"Cancel", this);
        button->setMargin(kButtonMargin, Style::kBorders);
        buttons->add(button, 0, id - 1, true);
    }
    grid->add(buttons, 1, 0, true);
    getContainer()->add(grid, true);
}

void MessageDialog::onCommand(Control*, int command) {
    if (command == IDOK || command == IDCANCEL) close(command);
}

}  // namespace Orvanta
