#include "orvanta/printing/PrintDialog.h"

#include "orvanta/toolkit/CounterControl.h"
#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/TextButton.h"

namespace Orvanta {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 8;

Label* caption(const CString& text) {
    Label* label = Label::create(text, DT_LEFT | DT_VCENTER | DT_SINGLELINE);
    label->setAlignment(Control::AlignLeft, Control::AlignCenter);
    return label;
}

}  // namespace

PrintDialog::PrintDialog(PrinterManager* manager) : mManager(manager ? manager : PrinterManager::create()) {}

// The controls tell this object what they do: the window goes before the object does.
PrintDialog::~PrintDialog() {
    Dialog::close(IDCANCEL);
}

PrintDialog* PrintDialog::create(PrinterManager* manager) {
    return new PrintDialog(manager);
}

void PrintDialog::populateDialog() {
    mChosen = nullptr;
    const bool anyPrinter = mManager->getPrinterCount() > 0;
    GridContainer* grid = GridContainer::create(5, 2);
    for (int row = 0; row < 5; ++row) grid->setRowSpec(row, GridContainer::kFit);
    grid->setColSpec(0, GridContainer::kFit);
    grid->setMargin(kMargin, Style::kBorders);
    grid->setBorderWidth(kGap, Style::VerticalGap);
    grid->setBorderWidth(kGap, Style::HorizontalGap);
    grid->setAlignment(Control::AlignFill, Control::AlignFill);

    mPrinters = DropDown::create(kPrinterList, this);
    mPrinters->setMinSize(260, mPrinters->getMinSize().cy);
    const CString defaultName = mManager->getDefaultPrinterName();
    for (int i = 0; i < mManager->getPrinterCount(); ++i) {
        const CString name = mManager->getPrinter(i)->getName();
        mPrinters->addString(name, i);
        if (name == defaultName || i == 0) mPrinters->setCurSel(i);
    }
    mPapers = DropDown::create(kPaperList, this);
    mCopies = CounterControl::create(kCopies, 1, 1, kMaxCopies);
    grid->add(caption(u"P&rinter:"), 0, 0);
    grid->add(mPrinters, 0, 1);
    grid->add(caption(u"P&aper:"), 1, 0);
    grid->add(mPapers, 1, 1);
    grid->add(caption(u"&Copies:"), 2, 0);
    grid->add(mCopies, 2, 1);
    mCopies->setAlignment(Control::AlignLeft, Control::AlignCenter);
    if (!anyPrinter) grid->add(caption(u"No printer is set up on this computer."), 3, 1);

    GridContainer* buttons = GridContainer::create(1, 2);
    buttons->setAlignment(Control::AlignRight, Control::AlignCenter);
    buttons->setBorderWidth(kGap, Style::HorizontalGap);
    for (int col = 0; col < 2; ++col) buttons->setColSpec(col, GridContainer::kFit);
    buttons->setRowSpec(0, GridContainer::kFit);
    mPrint = TextButton::create(IDOK, u"&Print", this);
    buttons->add(mPrint, 0, 0);
    buttons->add(TextButton::create(IDCANCEL, u"Cancel", this), 0, 1);
    grid->add(buttons, 4, 1);
    getContainer()->add(grid, true);

    mPrinters->setEnabled(anyPrinter);
    mPrint->setEnabled(anyPrinter);
    listPapers();
}

Printer* PrintDialog::selectedPrinter() const {
    const int index = mPrinters ? mPrinters->getCurSel() : -1;
    return index < 0 ? nullptr : mManager->getPrinter(static_cast<int>(mPrinters->getItemData(index)));
}

// The papers of the printer chosen, its current one selected.
void PrintDialog::listPapers() {
    mPapers->resetContent();
    Printer* printer = selectedPrinter();
    if (printer) {
        const int current = printer->getPaperSize();
        for (int i = 0; i < printer->getPaperCount(); ++i) {
            Printer::Paper* paper = printer->getPaper(i);
            mPapers->addString(paper->getName(), paper->getId());
            if (paper->getId() == current || i == 0) mPapers->setCurSel(i);
        }
    }
    mPapers->setEnabled(mPapers->getCount() > 0);
}

void PrintDialog::choose() {
    Printer* printer = selectedPrinter();
    if (!printer || !printer->getDevMode()) return;
    const int paper = mPapers->getCurSel();
    if (paper >= 0) printer->setPaperSize(static_cast<int>(mPapers->getItemData(paper)));
    printer->getDevMode()->dmCopies = static_cast<short>(mCopies->getValue());
    mChosen = printer;
    close(IDOK);
}

void PrintDialog::onCommand(Control* source, int command) {
    if (source == mPrinters && command == CommandListener::kSelectionChanged) listPapers();
    if (command == IDOK && source == mPrint) choose();
    if (command == IDCANCEL) close(IDCANCEL);
}

}  // namespace Orvanta
