#pragma once
// PrintPreviewDialog: the photos to print shown page by page as the printer will print them, with the
// choice of how many go on a page (one, two, four, or a contact sheet of small pictures with their
// names). "Print" sends them.
//
// Contract: showModal answers IDOK when the user pressed "Print"; getJob is then the job laid out as
// chosen, for the printer given. The pages are drawn by the job's own code on the preview's worker, so
// what is shown is what prints.

#include "orvanta/assets/AssetList.h"
#include "orvanta/foundation/EventListener.h"
#include "orvanta/printing/Printer.h"
#include "orvanta/printing/SimpleLayoutPrintJob.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"

namespace Orvanta {
class DropDown;
class Label;
class PrintPreview;
}  // namespace Orvanta

namespace OrvantaPhotos {

class PrintPreviewDialog : public Orvanta::Dialog,
                           public Orvanta::CommandListener,
                           public Orvanta::EventListener {
public:
    static PrintPreviewDialog* create(Orvanta::AssetList* photos, Orvanta::Printer* printer);
    ~PrintPreviewDialog() override;

    void populateDialog() override;
    Orvanta::CSize getInitialSize() override { return Orvanta::CSize(560, 600); }
    void onCommand(Orvanta::Control* source, int command) override;
    // A page drawn: its number is shown.
    void onEvent(Orvanta::Event* event) override;

    Orvanta::SimpleLayoutPrintJob* getJob() const { return mJob; }

    enum ControlId { kLayoutChoice = 300, kPreviousPage, kNextPage };

private:
    PrintPreviewDialog(Orvanta::AssetList* photos, Orvanta::Printer* printer);
    void applyLayout();
    void showPageNumber();

    Orvanta::OwnedPtr<Orvanta::SimpleLayoutPrintJob> mJob;
    Orvanta::OwnedPtr<Orvanta::Printer> mPrinter;
    Orvanta::PrintPreview* mPreview = nullptr;
    Orvanta::DropDown* mLayouts = nullptr;
    Orvanta::Label* mPageNumber = nullptr;
};

}  // namespace OrvantaPhotos
