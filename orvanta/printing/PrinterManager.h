#pragma once
// PrinterManager: the system's printers, sorted by name, and the default one; and the driver rules
// the application registers for printers that need to be handled with care.
//
// Contract: the list is read by refresh() (which create() does once); with no print system, or no
// printers, it is empty and getDefaultPrinterName() is the empty string. getDefaultPrinter may be
// null. Names compare without regard to case.

#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/printing/Printer.h"

namespace Orvanta {

// A rule the application registers: when it matches a printer, its flags (Printer::kNoPrintQuality,
// kNoPaperType, kNoBorderlessTest) apply to it, and the printer's settings are taken as they are.
class PrinterRule : public IOwned {
public:
    explicit PrinterRule(int flags) : mFlags(flags) {}
    virtual bool matches(Printer* printer) = 0;
    int getFlags() const { return mFlags; }

private:
    int mFlags;
};

class PrinterManager : public IOwned {
public:
    static PrinterManager* create();

    virtual int getPrinterCount() { return static_cast<int>(mPrinters.size()); }
    virtual Printer* getPrinter(int index);
    virtual Printer* getDefaultPrinter();
    // The index of the printer of that name, or −1.
    virtual int findPrinter(const CString& name);
    virtual void addRule(PrinterRule* rule);
    virtual int getRuleCount() { return static_cast<int>(mRules.size()); }
    virtual PrinterRule* getRule(int index);
    virtual void refresh();
    virtual CString getDefaultPrinterName();

private:
    PrinterManager() = default;

    std::vector<OwnedPtr<Printer>> mPrinters;
    std::vector<OwnedPtr<PrinterRule>> mRules;
};

}  // namespace Orvanta
