#pragma once
// FileCopy: a file copied so that nothing is ever overwritten and no partial copy is ever left.
//
// Contract: copy() writes the source's bytes to a temporary file in the target's folder, gives it
// the source's access and write times and permission bits, and renames it to the target only if no
// file has that name (renameNoReplace): kExists then, with nothing written. Any failure of reading
// or writing (a card pulled out, a full disk) removes the temporary file: kFailed, with errno's
// reason in *error. sameContents() reads both files again and compares them byte for byte, so that
// a source is deleted only after its copy was seen to be whole. moveOrCopy() is for a source that
// is no longer wanted where it is (a temporary file of ours): it is renamed to the target, under
// the same rule, when both are on one file system, and copied as copy() does otherwise (and left
// for its owner to remove). Through Platform::FileSystem.

#include <string>

namespace Orvanta::Platform {

class FileCopy {
public:
    enum Result { kCopied, kExists, kFailed };

    static Result copy(const std::string& source, const std::string& target, int* error);
    static Result moveOrCopy(const std::string& source, const std::string& target, int* error);
    static bool sameContents(const std::string& a, const std::string& b);
};

}  // namespace Orvanta::Platform
