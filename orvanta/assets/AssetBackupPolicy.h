#pragma once
// AssetBackupPolicy: the hook through which a host keeps the previous version of a user's file
// before the library overwrites it with an edited picture.
//
// Contract: one policy is current at a time; without a host's it is the default one, whose hooks
// all answer false: no previous version is kept, so none exists and none can be restored, and a
// save that would re-encode a user's file does not land (the library asks prepareForSave first and
// stops on false). A host that wants such saves to land makes a policy current whose
// handlePrepareForSave keeps what it wants and answers true. A policy destroyed while current stops
// being current. replaceFile is how every such save lands: the new version, complete in a file of
// its own, is written beside the user's file and renamed over it, so at any moment the user's file
// is either the old version whole or the new one whole. Current-policy calls are not thread-safe:
// set the policy at start-up.

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
    // Puts the contents of newVersion in the place of the file, keeping the file's permissions;
    // the file named newVersion is left where it is. False, with the user's file as it was, when
    // newVersion cannot be read or the new file cannot be written whole.
    static bool replaceFile(AssetFile* file, const CString& newVersion);

    static AssetBackupPolicy* getCurrentPolicy();
    static void clearCurrentPolicy();
    virtual void makePolicyCurrent();

protected:
    virtual bool handlePrepareForSave(AssetFile* file) { return false; }
    virtual bool handlePreviousVersionExists(AssetFile* file) { return false; }
    virtual bool handleRestorePrevious(bool flag) { return false; }
};

}  // namespace Orvanta
