#pragma once
// FolderImport: brings the pictures and videos of a folder (and the folders in it) into the catalogue,
// then pre-builds their thumbnails in the background so that the grid finds them made.
//
// Contract: run walks the folder on the calling (user-interface) thread, adding one file at a time
// and calling the host's pump between files so that the window stays alive; files already catalogued
// are left alone. Then the thumbnail builder starts on worker tasks; its progress reaches
// onProgress on the user-interface thread, and onFinished once every asset is done. Files of kinds
// no codec knows are passed over; pictures that cannot be read are counted as skipped, never fatal. The
// import can be stopped (stop) at any time; what was added stays.

#include <functional>
#include <map>
#include <string>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/FolderWalker.h"
#include "orvanta/assets/ThumbnailBuilder.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/foundation/EventListener.h"

namespace OrvantaPhotos {

class FolderImport : public Orvanta::FolderWalkerListener, public Orvanta::EventListener {
public:
    struct Callbacks {
        std::function<void()> pump;
        std::function<void(int done, int total)> onProgress;
        std::function<void(int added, int skipped)> onFinished;
    };

    FolderImport(Orvanta::AssetDb* catalogue, Orvanta::ThumbnailDb* thumbnails, Callbacks callbacks);
    ~FolderImport() override;

    // False when the folder cannot be read.
    bool run(const Orvanta::CString& folder);
    void stop();
    bool isRunning() const { return mBuilder && mDone < mTotal; }

    bool onFile(Orvanta::WIN32_FIND_DATA& data) override;
    void onEvent(Orvanta::Event* event) override;

private:
    Orvanta::AssetDb* mCatalogue;
    Orvanta::ThumbnailDb* mThumbnails;
    Callbacks mCallbacks;
    std::map<Orvanta::CString, bool> mKnown;
    Orvanta::OwnedPtr<Orvanta::ThumbnailBuilder> mBuilder;
    int mAdded = 0;
    int mSkipped = 0;
    int mDone = 0;
    int mTotal = 0;
    bool mStopped = false;
};

}  // namespace OrvantaPhotos
