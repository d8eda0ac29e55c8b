#pragma once
// AssetBackupPolicy: the hook through which a host keeps the previous version of a user's file
// before the library overwrites it with an edited picture.
//
// Contract: one policy is current at a time; without a host's it is the default one, whose hooks
// all answer false: no previous version is kept, so none exists and none can be restored, and a
// save that would re-encode a user's file does not land (the library asks prepareForSave first and
// stops on false). A host that wants such saves to land makes a policy current whose
// handlePrepareForSave keeps what it wants and answers true. A policy destroyed while current stops
// being current. Current-policy calls are not thread-safe: set the policy at start-up.
//
// replaceFile is the one way a new version takes the place of a user's file. It goes through
// ReplacementFile, whose RewriteLock it takes before anything else, so the lock is held from the
// first read of the old version (the new one may keep its metadata) to the rename: no other rewrite
// of the file runs meanwhile, and none is lost. The new version is written whole into a file of its
// own, the policy is asked while the user's file is still the old version, and only then is the new
// version written beside the file the path resolves to (a symbolic link stays a link) and renamed
// over it, keeping its owner, permissions and extended attributes. A file with other hard links is
// refused before anything is written. At every moment the user's file is the old version whole or
// the new one whole; a failure leaves the reason as the thread's last error. The policy must not
// rewrite the file itself.

#include <functional>

#include "orvanta/platform/CString.h"

namespace Orvanta {

class AssetFile;

class AssetBackupPolicy {
public:
    AssetBackupPolicy() = default;
    AssetBackupPolicy(const AssetBackupPolicy&) = delete;
    AssetBackupPolicy& operator=(const AssetBackupPolicy&) = delete;
    virtual ~AssetBackupPolicy();

    // Each asks the current policy.
    static bool prepareForSave(AssetFile* file);
    static bool previousVersionExists(AssetFile* file);
    static bool restorePrevious(bool flag);
    enum ReplaceResult : int { kReplaced, kRefused, kNotReplaced };
    // write gets a temporary path and puts the complete new version there, answering false when it
    // could not (the policy is then not asked). The temporary file is gone afterwards in every case.
    static ReplaceResult replaceFile(AssetFile* file,
                                     const std::function<bool(const CString& newVersion)>& write);

    static AssetBackupPolicy* getCurrentPolicy();
    static void clearCurrentPolicy();
    virtual void makePolicyCurrent();

protected:
    virtual bool handlePrepareForSave(AssetFile* file) { return false; }
    virtual bool handlePreviousVersionExists(AssetFile* file) { return false; }
    virtual bool handleRestorePrevious(bool flag) { return false; }
};

}  // namespace Orvanta
