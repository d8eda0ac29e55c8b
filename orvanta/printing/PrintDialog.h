#pragma once
// PrintDialog: where and how a document prints, asked of the user before it goes: the printer (the
// system's default chosen first), its paper and the number of copies. The desktop has no print
// dialog of its own to show, so the toolkit draws this one.
//
// Contract: showModal answers IDOK when the user pressed "Print", IDCANCEL otherwise. After IDOK,
// getPrinter is the chosen printer and its settings (getDevMode) carry the chosen paper and copies;
// before, or after a cancel, it is null and no printer's settings changed. The printer list is
// read once, when the dialog is made. With no printer at all the lists are empty and "Print" is
// disabled, and the dialog says so.

#include "orvanta/printing/PrinterManager.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"

namespace Orvanta {

class CounterControl;
class DropDown;
class Label;
class TextButton;

class PrintDialog : public Dialog, public CommandListener {
public:
    // Printers come from manager (a new PrinterManager when null).
    static PrintDialog* create(PrinterManager* manager = nullptr);
    ~PrintDialog() override;

    void populateDialog() override;
    CString getInitialTitle() override { return u"Print"; }
    void onCommand(Control* source, int command) override;

    Printer* getPrinter() const { return mChosen; }

    enum ControlId { kPrinterList = 100, kPaperList, kCopies };
    static constexpr int kMaxCopies = 999;

private:
    explicit PrintDialog(PrinterManager* manager);
    Printer* selectedPrinter() const;
    void listPapers();
    void choose();

    OwnedPtr<PrinterManager> mManager;
    OwnedPtr<Printer> mChosen;
    DropDown* mPrinters = nullptr;
    DropDown* mPapers = nullptr;
    CounterControl* mCopies = nullptr;
    TextButton* mPrint = nullptr;
};

}  // namespace Orvanta
