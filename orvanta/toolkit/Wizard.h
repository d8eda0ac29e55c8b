#pragma once
// Wizard: a Dialog of numbered pages, each built the first time it is asked for and then kept.
//
// Contract:
//  - populateDialog puts a PagedContainer in the dialog as its only child and goes to the initial
//    page. goToPage shows a page, asking constructPage for it the first time (a null answer is
//    stored, and the page stays unreachable: goToPage answers false); onPageActivated follows every
//    successful change. A wizard has no list of pages: a subclass answers constructPage for any
//    number, and its buttons go to whatever number is next.
//  - createPage builds a page the usual way: the body above a row of buttons, Back (to `back`, left
//    out when back < 0), Next (to `next`) or, when next < 0, Finish (closes with IDOK), and Cancel
//    (cancels: the wizard's result is IDCANCEL on any page).
//  - The pages live until the wizard is shown again or goes away.

#include <map>
#include <utility>

#include "orvanta/toolkit/CommandListener.h"
#include "orvanta/toolkit/Dialog.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/PagedContainer.h"

namespace Orvanta {

class Wizard : public Dialog, public CommandListener {
public:
    static constexpr int kBackButton = 0x7E01;
    static constexpr int kNextButton = 0x7E02;
    static constexpr int kButtonMargin = 4;

    ~Wizard() override;

    void populateDialog() override;
    virtual bool goToPage(int page);
    virtual Container* constructPage(int page) { return nullptr; }
    virtual void onPageActivated(int page) {}
    void setInitialPage(int page) { mInitialPage = page; }
    // The page shown, PagedContainer::kNoPage before the first.
    int getCurrentPage() const;
    PagedContainer* getPages() const { return mPages.get(); }

    void onCommand(Control* source, int command) override;

protected:
    Wizard() = default;
    GridContainer* createPage(int page, Control* body, int back, int next);

private:
    int mInitialPage = 0;
    OwnedPtr<PagedContainer> mPages;
    std::map<int, std::pair<int, int>> mNavigation;  // page: (back, next)
};

}  // namespace Orvanta
