#pragma once
// AcquireCopyTask: brings the assets a scan found, and the user kept, into a folder on disk.
//
// Contract: created paused; the setters, then a start through Task. On its own thread, for each
// asset of the list (for a camera: each file of the camera that an asset of the list names by its
// path on the camera), the copy goes to the helper's path, or to the file's name (baseName and the
// file's extension, when a baseName is set) in the target folder, which is made if needed. A copy
// never overwrites: a target that exists is left alone and counted as skipped. A copy is whole or
// absent: it is written to a temporary file that is renamed into place, so a device that goes away
// mid-copy leaves no partial file. A copy keeps its source's times (a camera's file, the time the
// camera gives it). With deleteAfterCopy, a source (a card's file, a camera's file) is deleted only
// after its copy was read back and found equal to it; a mismatch keeps the source and counts as
// failed. Sources of a scanner are the scan's temporary files: each is moved into place when the
// target is on the same file system, else copied and left to its owner to remove. Events:
// started, one kItem per copy (its asset's id and its path), then finished, or stopped when
// cancelled, when a drive can no longer be read, or when the camera stopped answering. The counts
// are read once the task has ended.

#include <map>
#include <string>

#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Task.h"
#include "orvanta/foundation/UniqueID.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class AcquireCopyTaskHelper;
class Asset;
class AssetList;
class EventListener;

class AcquireCopyTask : public Task, public WiaCameraWalkerListener {
public:
    static AcquireCopyTask* create(AssetList* list, EventListener* listener);
    ~AcquireCopyTask() override;

    void setSource(int type, const CString& deviceId);
    void setTarget(const CString& folder, const CString& baseName);
    void setDeleteAfterCopy(bool deleteAfterCopy) { mDeleteAfterCopy = deleteAfterCopy; }
    void setHelper(AcquireCopyTaskHelper* helper) { mHelper = helper; }
    int getCopied() const { return mCopied; }
    int getSkipped() const { return mSkipped; }
    int getFailed() const { return mFailed; }

    void doTask() override;
    bool onItem(WiaCameraItem* item) override;

    // The folder copies go to unless told: "acquired photos" in the user's pictures.
    static CString getDefaultTarget();

private:
    AcquireCopyTask(AssetList* list, EventListener* listener);
    bool copyList();
    CString makeTarget(const CString& fileName);
    // Copies one file of a drive; false when the drive has gone.
    bool copyFile(Asset* asset, const CString& source);
    void copied(Asset* asset, const CString& target);
    void send(int code, const UniqueID& id, const CString& path);

    EventListener* mListener;
    AssetList* mList;
    AcquireCopyTaskHelper* mHelper = nullptr;
    int mSourceType = 0;
    CString mDeviceId;
    CString mTargetFolder;
    CString mBaseName;
    bool mDeleteAfterCopy = false;
    int mCopied = 0;
    int mSkipped = 0;
    int mFailed = 0;
    bool mCameraFailed = false;
    CString mMadeFolder;                         // the last target folder made
    std::map<CString, OwnedPtr<Asset>> mPicked;  // a camera's picked files by their path on it
};

}  // namespace Orvanta
