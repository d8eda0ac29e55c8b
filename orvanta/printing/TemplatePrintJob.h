#pragma once
// TemplatePrintJob: a list of filled template pages, one printed page each, every page on the paper
// orientation its template has. A template is placed on the paper itself, so margins are never made
// symmetric, and empty slots print as nothing.

#include <vector>

#include "orvanta/printing/PrintJob.h"
#include "orvanta/printing/PrintTemplatePageRenderer.h"

namespace Orvanta {

class TemplatePrintJob : public PrintJob {
public:
    static TemplatePrintJob* create(const CString& title);

    bool drawPage(int page, HDC dc, bool isPreview) override;
    int getPageCount() override { return static_cast<int>(mPages.size()); }
    int getFirstAssetOfPage(int page) override { return -1; }
    int getPageOfAsset(int assetIndex) override { return -1; }
    bool isPageBlank(int page) override { return false; }
    const DEVMODEW* getDevModeForPage(int page) override;
    bool prepare() override;
    void setEffect(EditingOp* effect) override;

    virtual int addPage(PrintTemplatePage* page);
    virtual void insertPage(PrintTemplatePage* page, int index);
    // An index past the end leaves the job as it is.
    virtual void removePage(int index);

private:
    explicit TemplatePrintJob(const CString& title);

    std::vector<OwnedPtr<PrintTemplatePage>> mPages;
    OwnedPtr<PrintTemplatePageRenderer> mRenderer;
};

}  // namespace Orvanta
