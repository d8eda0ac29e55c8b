#pragma once
// ImportDialog: asks for the folder to import, as a path the user may type or paste, starting at the
// user's Pictures folder.
//
// Contract: showModal answers IDOK with getFolder() set, or IDCANCEL; Enter in the field is OK.

#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"
#include "orvanta/toolkit/Edit.h"

namespace OrvantaPhotos {

class ImportDialog : public Orvanta::Dialog, public Orvanta::CommandListener {
public:
    static ImportDialog* create(const Orvanta::CString& folder) { return new ImportDialog(folder); }
    ~ImportDialog() override;

    Orvanta::CString getFolder() const { return mFolder; }
    void populateDialog() override;
    Orvanta::CString getInitialTitle() override { return u"Import a folder"; }
    void onCommand(Orvanta::Control* source, int command) override;

private:
    explicit ImportDialog(const Orvanta::CString& folder) : mFolder(folder) {}

    Orvanta::CString mFolder;
    Orvanta::Edit* mField = nullptr;
};

}  // namespace OrvantaPhotos
