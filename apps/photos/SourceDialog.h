#pragma once
// SourceDialog: asks which source to import from, in a list of the sources' names and kinds.
//
// Contract: showModal answers IDOK with getChoice() the index of the source taken (the first is
// taken at the start), or IDCANCEL. A double click or Enter on a row takes it.

#include <vector>

#include "apps/photos/ImportSources.h"
#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"
#include "orvanta/toolkit/ListView.h"

namespace OrvantaPhotos {

class SourceDialog : public Orvanta::Dialog, public Orvanta::CommandListener {
public:
    static SourceDialog* create(const std::vector<ImportSource>& sources) {
        return new SourceDialog(sources);
    }
    ~SourceDialog() override;

    int getChoice() const { return mChoice; }
    Orvanta::ListView* list() const { return mList; }
    void populateDialog() override;
    Orvanta::CString getInitialTitle() override { return u"Import from"; }
    void onCommand(Orvanta::Control* source, int command) override;

private:
    explicit SourceDialog(const std::vector<ImportSource>& sources) : mSources(sources) {}

    std::vector<ImportSource> mSources;
    Orvanta::ListView* mList = nullptr;
    int mChoice = -1;
};

}  // namespace OrvantaPhotos
