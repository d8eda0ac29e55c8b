#pragma once
// AcquireCopyTaskHelper: lets the application choose where each copy goes (its policy on names).

#include "orvanta/platform/CString.h"

namespace Orvanta {

class AcquireCopyTaskHelper {
public:
    virtual ~AcquireCopyTaskHelper() = default;
    virtual CString makeTargetPath(const CString& folder, const CString& fileName) = 0;
};

}  // namespace Orvanta
