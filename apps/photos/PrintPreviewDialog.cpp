#include "apps/photos/PrintPreviewDialog.h"

#include <string>

#include "orvanta/printing/Layout.h"
#include "orvanta/printing/PrintPreview.h"
#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/TextButton.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

// Gaps and a contact sheet's cells in hundredths of an inch.
constexpr int kGap = 25;
constexpr int kSheetCell = 150;

Layout* layoutAt(int choice) {
    switch (choice) {
        case 1:
            return Layout::create(u"Two a page", 2, kGap);
        case 2:
            return Layout::create(u"Four a page", 4, kGap);
        case 3:
            return Layout::create(u"Contact sheet", Size(kSheetCell, kSheetCell), kGap, Layout::ContactSheet);
        default:
            return Layout::create(u"One a page", 1, 0);
    }
}

}  // namespace

PrintPreviewDialog::PrintPreviewDialog(AssetList* photos, Printer* printer)
    : mJob(SimpleLayoutPrintJob::create(photos, u"Orvanta Photos")), mPrinter(printer) {}

// The controls and the preview's worker tell this object what they do: the window goes first.
PrintPreviewDialog::~PrintPreviewDialog() {
    Dialog::close(IDCANCEL);
}

PrintPreviewDialog* PrintPreviewDialog::create(AssetList* photos, Printer* printer) {
    return new PrintPreviewDialog(photos, printer);
}

void PrintPreviewDialog::populateDialog() {
    GridContainer* grid = GridContainer::create(3, 1);
    grid->setRowSpec(0, GridContainer::kFit);
    grid->setRowSpec(1, GridContainer::kFlexible);
    grid->setRowSpec(2, GridContainer::kFit);
    grid->setColSpec(0, GridContainer::kFlexible);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->setMargin(8, Style::kBorders);
    grid->setBorderWidth(8, Style::HorizontalGap);

    PackedContainer* top = PackedContainer::create(true);
    top->setPackDirection(Control::AlignLeft);
    Label* label = Label::create(u"&Layout:");
    label->setMinSize(60, 24);
    top->add(label);
    mLayouts = DropDown::create(kLayoutChoice, this);
    for (const char16_t* name : {u"One photo a page", u"Two a page", u"Four a page", u"Contact sheet"})
        mLayouts->addString(name);
    mLayouts->setCurSel(0);
    mLayouts->setMinSize(180, 24);
    top->add(mLayouts, true);
    grid->add(top, 0, 0, true);

    mPreview = PrintPreview::create(u"Drawing the page…", u"This page is blank.",
                                    u"This page cannot be drawn.", this);
    mPreview->setBackgroundColor(RGB(200, 200, 200));
    mPreview->setAlignment(Control::AlignFill, Control::AlignFill);
    grid->add(mPreview, 1, 0);

    PackedContainer* bottom = PackedContainer::create(true);
    bottom->setPackDirection(Control::AlignLeft);
    bottom->add(TextButton::create(kPreviousPage, u"◀", this), true);
    mPageNumber = Label::create(CString(), DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    mPageNumber->setMinSize(120, 24);
    bottom->add(mPageNumber);
    bottom->add(TextButton::create(kNextPage, u"▶", this), true);
    TextButton* print = TextButton::create(IDOK, u"&Print", this);
    print->setMargin(40, Style::Left);
    bottom->add(print, true);
    TextButton* cancel = TextButton::create(IDCANCEL, u"Cancel", this);
    cancel->setMargin(4, Style::Left);
    bottom->add(cancel, true);
    grid->add(bottom, 2, 0, true);
    getContainer()->add(grid, true);
    applyLayout();
}

void PrintPreviewDialog::applyLayout() {
    OwnedPtr<Layout> layout = layoutAt(mLayouts->getCurSel());
    mJob->setLayout(layout);
    mPreview->setJob(mJob, mPrinter);
    mPreview->showPage(0);
    showPageNumber();
}

void PrintPreviewDialog::showPageNumber() {
    const int count = mPreview->getPageCount();
    mPageNumber->setText(count > 0 ? CString::fromUtf8("Page " + std::to_string(mPreview->getPage() + 1) +
                                                       " of " + std::to_string(count))
                                   : CString());
}

void PrintPreviewDialog::onEvent(Event*) {
    showPageNumber();
}

void PrintPreviewDialog::onCommand(Control* source, int command) {
    if (source == mLayouts && command == CommandListener::kSelectionChanged) applyLayout();
    if (command == kPreviousPage || command == kNextPage) {
        if (command == kPreviousPage)
            mPreview->previousPage();
        else
            mPreview->nextPage();
        showPageNumber();
    }
    if (command == IDOK || command == IDCANCEL) close(command);
}

}  // namespace OrvantaPhotos
