#pragma once
// Resource: names a text, bitmap or cursor of a resource module by its integer id.
//
// Contract: a plain value. A null module stands for the process's current resource module,
// looked up at each use. Lookups of an id the module lacks give the empty string or null.

#include "orvanta/platform/Bitmap.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/ResourceModule.h"

class StringOrResource;

class Resource {
public:
    Resource() = default;
    Resource(int id, Orvanta::HINSTANCE module = nullptr) : mId(id), mModule(module) {}
    // Sets the id alone; the module stays.
    Resource& operator=(int id) {
        mId = id;
        return *this;
    }

    int getID() const { return mId; }
    // The module, or the current resource module when none was given.
    Orvanta::HINSTANCE getModule() const;

    // A new bitmap of the picture, which the caller deletes with Bitmap::deleteObject. Bitmaps
    // here always keep addressable pixels, so both forms are DIB sections.
    Orvanta::HBITMAP getBitmap(bool asDibSection) const;
    // The cursor, owned by its module.
    Orvanta::HCURSOR getCursor() const;
    // The text, read from this resource's module; the current module is never changed, so any
    // thread may read strings while others do.
    Orvanta::CString getString() const;

private:
    friend class StringOrResource;

    int mId = 0;
    Orvanta::HINSTANCE mModule = nullptr;
};
