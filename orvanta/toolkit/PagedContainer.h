#pragma once
// PagedContainer: pages by number, one of them shown at a time.
//
// Contract: addPage keeps a page (the container holds a reference; a later page of the same number
// takes its place, and the shown page is then replaced on screen). setPage shows a page: false, and
// nothing changes, for a number without a page (a null page counts as none); true at once when it is
// already shown; otherwise the shown page stops being a child, without being destroyed, the new one
// becomes the only child and the only tab stop, and the container repaints. So only one page is ever
// in the window; the others stay alive, off-screen.

#include <climits>
#include <map>

#include "orvanta/toolkit/Container.h"

namespace Orvanta {

class PagedContainer : public Container {
public:
    static constexpr int kNoPage = INT_MIN;

    static PagedContainer* create(bool tabStop = false);

    void addPage(int id, Control* page);
    bool setPage(int id);
    int getCurrentPage() const { return mCurrentPage; }
    Control* getCurrentControl() const { return mCurrentControl.get(); }
    Control* getPage(int id) const;
    int getPageCount() const { return static_cast<int>(mPages.size()); }

protected:
    explicit PagedContainer(bool tabStop);

private:
    int mCurrentPage = kNoPage;
    OwnedPtr<Control> mCurrentControl;
    std::map<int, OwnedPtr<Control>> mPages;
};

}  // namespace Orvanta
