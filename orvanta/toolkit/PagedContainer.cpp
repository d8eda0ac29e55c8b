#include "orvanta/toolkit/PagedContainer.h"

namespace Orvanta {

PagedContainer::PagedContainer(bool tabStop) : Container(tabStop) {}

PagedContainer* PagedContainer::create(bool tabStop) {
    return new PagedContainer(tabStop);
}

void PagedContainer::addPage(int id, Control* page) {
    OwnedPtr<Control> keep(page);
    mPages[id] = page;
    if (id != mCurrentPage || page == mCurrentControl.get()) return;
    // The shown page was replaced: show the new one in its place.
    mCurrentPage = kNoPage;
    if (!setPage(id) && mCurrentControl) {
        remove(mCurrentControl);
        mCurrentControl = nullptr;
    }
}

Control* PagedContainer::getPage(int id) const {
    const auto it = mPages.find(id);
    return it == mPages.end() ? nullptr : it->second.get();
}

bool PagedContainer::setPage(int id) {
    Control* page = getPage(id);
    if (!page) return false;
    if (id == mCurrentPage) return true;
    if (mCurrentControl) remove(mCurrentControl);
    mCurrentControl = page;
    mCurrentPage = id;
    clearTabOrder();
    add(page, true);
    invalidate(true, nullptr, true);
    return true;
}

}  // namespace Orvanta
