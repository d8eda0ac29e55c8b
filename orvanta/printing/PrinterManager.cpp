#include "orvanta/printing/PrinterManager.h"

#include <algorithm>

namespace Orvanta {

PrinterManager* PrinterManager::create() {
    auto* manager = new PrinterManager();
    manager->refresh();
    return manager;
}

Printer* PrinterManager::getPrinter(int index) {
    return index >= 0 && index < getPrinterCount() ? mPrinters[static_cast<size_t>(index)].get() : nullptr;
}

Printer* PrinterManager::getDefaultPrinter() {
    return getPrinter(findPrinter(getDefaultPrinterName()));
}

int PrinterManager::findPrinter(const CString& name) {
    const CString wanted = name.lowered();
    for (size_t i = 0; i < mPrinters.size(); ++i)
        if (mPrinters[i]->getName().lowered() == wanted) return static_cast<int>(i);
    return -1;
}

void PrinterManager::addRule(PrinterRule* rule) {
    if (rule) mRules.emplace_back(rule);
}

PrinterRule* PrinterManager::getRule(int index) {
    return index >= 0 && index < getRuleCount() ? mRules[static_cast<size_t>(index)].get() : nullptr;
}

void PrinterManager::refresh() {
    mPrinters.clear();
    for (const std::string& name : Platform::CupsPrinters::destinationNames())
        mPrinters.emplace_back(Printer::create(CString::fromUtf8(name), this));
    std::sort(mPrinters.begin(), mPrinters.end(), [](const OwnedPtr<Printer>& a, const OwnedPtr<Printer>& b) {
        return a->getName().str() < b->getName().str();
    });
}

CString PrinterManager::getDefaultPrinterName() {
    return CString::fromUtf8(Platform::CupsPrinters::defaultDestination());
}

}  // namespace Orvanta
