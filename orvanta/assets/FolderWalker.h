#pragma once
// FolderWalker: walks a folder tree depth first and hands every file whose extension is wanted to a
// listener. It is how a drive or a folder is searched for photos.
//
// Contract: run() walks synchronously on the calling thread, in the order the file system lists
// each folder, entering a folder as soon as it is met. Every name beginning with a dot is passed
// over (on Linux that is what hidden means). Symbolic links are the shortcuts: a shortcut is never
// handed on as a file; with kFollowShortcuts its target is handled as an entry of its own, and each
// folder is entered once, by its resolved path, so links that lead back into the tree end there. A
// folder that cannot be listed is passed over and the walk goes on; a folder whose listing pattern
// would reach MAX_PATH characters is not entered, and neither is a file whose full path does not fit
// in a WIN32_FIND_DATA handed on. Extensions are matched as stored, lower case, against the file's
// extension as it is: "B.JPG" is not a "jpg". The set empty, every file is wanted. Whatever is
// passed over (bar the dot names) is told to the listener's onSkip with the reason.
//
// A listener's false ends the whole walk. cancel() may come from any thread: the flag is read
// between entries, and run() clears it when it starts. The listener is not owned.

#include <atomic>
#include <set>

#include "orvanta/codecs/CodecExtensionSink.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/TextCompare.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class FolderWalkerListener;

class FolderWalker : public IOwned, public CodecExtensionSink {
public:
    enum Flags : int {
        kNoRecurse = 1,        // folders are not entered
        kFollowShortcuts = 2,  // symbolic links are followed to their targets
        kIncludeHidden = 4,    // hidden entries are not passed over
    };
    // Why an entry was passed over.
    enum SkipReason : int {
        kSkipUnwanted = 1,      // its extension is not wanted
        kSkipHidden,            // hidden, and kIncludeHidden is not set
        kSkipShortcut,          // a symbolic link, and kFollowShortcuts is not set
        kSkipBrokenShortcut,    // a symbolic link that leads nowhere
        kSkipNotAFile,          // a pipe, a socket or a device
        kSkipUnreadableFolder,  // a folder that could not be listed (error: why)
        kSkipPathTooLong,       // a path of MAX_PATH characters or more
        kSkipVanished,          // listed, then gone before it could be examined (error: why)
        kSkipBadName,           // a name that is not UTF-8, which no path of the library can hold
    };
    using ExtensionSet = std::set<CString, Platform::TextOrder>;

    static FolderWalker* create(FolderWalkerListener* listener, const char16_t* path, int flags);
    ~FolderWalker() override = default;

    // Clears the cancelled flag and walks the start path; false when the walk was cut short (by
    // cancel, a listener, or a start path that is too long).
    virtual bool run();
    virtual ExtensionSet getExtensions();
    // Adds the extension lower-cased, without its dot.
    virtual void addExtension(const char16_t* extension);
    // Adds the extensions of every registered codec of the types (CodecTypeAll for all).
    virtual void addCodecExtensions(int types);
    virtual bool walk(const char16_t* path);
    virtual void handleEntry(WIN32_FIND_DATA& data);
    // Fills out with the link's target, cFileName its full path; false for a link that leads nowhere.
    virtual bool resolveShortcut(const char16_t* path, WIN32_FIND_DATA& out);
    virtual bool isShortcut(const WIN32_FIND_DATA& data);
    virtual bool isFolder(const WIN32_FIND_DATA& data);
    virtual bool isHidden(const WIN32_FIND_DATA& data);
    virtual bool pathExists(const char16_t* path);
    virtual bool wantsFile(const WIN32_FIND_DATA& data);
    virtual CString getExtension(const WIN32_FIND_DATA& data);
    virtual void cancel();

    bool isCancelled() const { return mCancelled.load(std::memory_order_relaxed); }
    bool onExtension(const char16_t* extension, void* context) override;

protected:
    FolderWalker(FolderWalkerListener* listener, const char16_t* path, int flags);

private:
    void skip(const CString& path, SkipReason reason, int error = 0);

    // Resolved paths, compared code unit by code unit as the file system compares them.
    std::set<CString> mVisited;
    ExtensionSet mExtensions;
    int mFlags;
    CString mStartPath;
    FolderWalkerListener* mListener;
    std::atomic<bool> mCancelled{false};
};

class FolderWalkerListener {
public:
    virtual ~FolderWalkerListener() = default;
    // A wanted file; data.cFileName is its full path. False ends the walk.
    virtual bool onFile(WIN32_FIND_DATA& data) = 0;
    // An entry passed over: its full path, why, and for a failure of the system its errno (else 0).
    virtual void onSkip(const CString& path, FolderWalker::SkipReason reason, int error) {}
};

}  // namespace Orvanta
