#include "orvanta/toolkit/Wizard.h"

#include "orvanta/toolkit/TextButton.h"

namespace Orvanta {

// The buttons tell this object what they do: the window goes before the object does.
Wizard::~Wizard() {
    Dialog::close(IDCANCEL);
}

void Wizard::populateDialog() {
    mPages = PagedContainer::create(false);
    mNavigation.clear();
    mPages->setAlignment(Control::AlignFill, Control::AlignFill);
    getContainer()->add(mPages, true);
    goToPage(mInitialPage);
}

bool Wizard::goToPage(int page) {
    if (!mPages) return false;
    bool ok = mPages->setPage(page);
    if (!ok && !mPages->getPage(page)) {
        mPages->addPage(page, constructPage(page));
        ok = mPages->setPage(page);
    }
    if (ok) onPageActivated(page);
    return ok;
}

int Wizard::getCurrentPage() const {
    return mPages ? mPages->getCurrentPage() : PagedContainer::kNoPage;
}

GridContainer* Wizard::createPage(int page, Control* body, int back, int next) {
    GridContainer* grid = GridContainer::create(2, 1);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->setRowSpec(1, GridContainer::kFit);
    if (body) grid->add(body, 0, 0, true);
    GridContainer* buttons = GridContainer::create(1, 4);
    buttons->setRowSpec(0, GridContainer::kFit);
    for (int col = 1; col < 4; ++col) buttons->setColSpec(col, GridContainer::kFit);
    TextButton* row[] = {back >= 0 ? TextButton::create(kBackButton, u"< Back", this) : nullptr,
                         next >= 0 ? TextButton::create(kNextButton, u"Next >", this)
                                   : TextButton::create(IDOK, u"Finish", this),
                         TextButton::create(IDCANCEL, u"Cancel", this)};
    for (int i = 0; i < 3; ++i) {
        if (!row[i]) continue;
        // Margins, not cell padding: a fitting cell is as large as its child and margins only.
        row[i]->setMargin(kButtonMargin, Style::kBorders);
        buttons->add(row[i], 0, i + 1, true);
    }
    grid->add(buttons, 1, 0, true);
    mNavigation[page] = {back, next};
    return grid;
}

void Wizard::onCommand(Control*, int command) {
    const auto it = mNavigation.find(getCurrentPage());
    switch (command) {
        case kBackButton:
            if (it != mNavigation.end()) goToPage(it->second.first);
            break;
        case kNextButton:
            if (it != mNavigation.end()) goToPage(it->second.second);
            break;
        case IDOK:
            close(IDOK);
            break;
        case IDCANCEL:
            cancel();
            break;
        default:
            break;
    }
}

}  // namespace Orvanta
