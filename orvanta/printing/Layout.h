#pragma once
// Layout: how a simple layout print job lays its pictures out: a fixed picture size, a number per
// page, a contact sheet of captioned thumbnails, or the whole list on one sheet. Sizes and the gap
// are in hundredths of an inch; for AllOnOnePage the size is an aspect ratio.

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Size.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Layout : public IOwned {
public:
    enum Category : int { None = 0, PrintSize = 1, PerPage = 2, ContactSheet = 3, AllOnOnePage = 4 };

    static Layout* create() { return new Layout(CString(), 0, Size(0, 0), 0, None); }
    static Layout* create(const CString& name, Size size, int gap, Category category) {
        return new Layout(name, 0, size, gap, category);
    }
    // PerPage: count pictures on each page (1, 2, 4, 6, 8 or 16).
    static Layout* create(const CString& name, int count, int gap) {
        return new Layout(name, count, Size(0, 0), gap, PerPage);
    }

    virtual CString getName() const { return mName; }
    virtual void setName(const CString& name) { mName = name; }
    virtual int getCount() const { return mCount; }
    virtual void setCount(int count) { mCount = count; }
    virtual Size getSize() const { return mSize; }
    virtual void setSize(Size size) { mSize = size; }
    virtual Size getAspect() const { return mSize; }
    virtual void setAspect(Size aspect) { mSize = aspect; }
    virtual int getGap() const { return mGap; }
    virtual void setGap(int gap) { mGap = gap; }
    virtual Category getCategory() const { return mCategory; }
    virtual void setCategory(Category category) { mCategory = category; }
    // Held for the application; the job never reads it.
    virtual int getUserData() const { return mUserData; }
    virtual void setUserData(int data) { mUserData = data; }

private:
    Layout(const CString& name, int count, Size size, int gap, Category category)
        : mName(name), mCount(count), mSize(size), mGap(gap), mCategory(category) {}

    CString mName;
    int mCount;
    Size mSize;
    int mGap;
    Category mCategory;
    int mUserData = 0;
};

}  // namespace Orvanta
