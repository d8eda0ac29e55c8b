#pragma once
// AcquireScanTask: looks at a source and turns what it finds into assets of a memory list, each
// with a thumbnail in a store, without copying anything.
//
// Contract: created paused; setSource before each start (the same object may run again). On its
// own thread: a drive is walked as a folder tree for files a codec knows; a camera is walked, and
// each file a codec knows becomes an asset whose folder is the file's path on the camera and whose
// thumbnail is the camera's preview; a scanner's pictures are fetched into temporary JPEG files,
// which become assets of their own. Events to the listener: started, one kItem per asset, then
// finished, or stopped when cancelled (killTask), when the walk failed, when a drive can no longer
// be read at the end (a card pulled out), or when a scanner driver crashed. Without a thumbnail
// store no thumbnails are made (a copy with no one to look at them).

#include <string>
#include <vector>

#include "orvanta/acquire/TwainCameraUnloaderListener.h"
#include "orvanta/acquire/WiaCameraWalkerListener.h"
#include "orvanta/assets/FolderWalker.h"
#include "orvanta/foundation/Task.h"
#include "orvanta/foundation/UniqueID.h"

namespace Orvanta {

class AssetList;
class EventListener;
class ThumbnailDb;

class AcquireScanTask : public Task,
                        public FolderWalkerListener,
                        public WiaCameraWalkerListener,
                        public TwainCameraUnloaderListener {
public:
    static AcquireScanTask* create(AssetList* list, ThumbnailDb* thumbnails, EventListener* listener);
    ~AcquireScanTask() override;

    void setSource(int type, const CString& deviceId);
    void setScanOptions(const std::vector<std::string>& options) { mScanOptions = options; }
    int getFound() const { return mFound; }

    void doTask() override;
    bool onFile(WIN32_FIND_DATA& data) override;
    bool onItem(WiaCameraItem* item) override;
    bool onImage(TwainImageItem* item) override;

private:
    AcquireScanTask(AssetList* list, ThumbnailDb* thumbnails, EventListener* listener);
    bool scan();
    bool addFile(const CString& path);
    void send(int code, const UniqueID& id = UniqueID());

    EventListener* mListener;
    AssetList* mList;
    ThumbnailDb* mThumbnails;
    int mFound = 0;
    int mSourceType = 0;
    CString mDeviceId;
    std::vector<std::string> mScanOptions;
};

}  // namespace Orvanta
