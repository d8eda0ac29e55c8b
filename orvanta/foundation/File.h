#pragma once
// File: one file of the file system, opened without sharing, read and written whole or mapped.
//
// Contract: File::create(path) opens nothing. open and create take an exclusive lock, so a second
// opener of the same file fails, as a file opened without sharing does. open opens regular files
// only: a folder, a pipe or a device is refused at once. While the file is mapped, read, write and
// setSize refuse (false). Nothing throws: failures are false, null or −1, and a failing map() leaves
// nothing mapped; a failure of the system records its reason as the last error (LastError.h).
// Every call reaches the kernel through Platform::FileSystem.

#include <ctime>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta {

class File : public IOwned {
public:
    static File* create(const char16_t* path);
    ~File() override;

    virtual bool open(bool readOnly);
    virtual bool create(bool readOnly);
    virtual void close();
    virtual void* map();
    virtual void unmap();
    virtual void* getView();
    virtual bool isOpen();
    virtual bool isMapped();
    virtual bool isReadOnly();
    virtual bool read(void* buffer, int size);
    // A new block of the file's size, read from the current position; free it with delete[].
    virtual unsigned char* readAll();
    // Writes length + 1 bytes of the text: the byte count is taken from the character count. A null
    // text writes nothing and answers false.
    virtual bool writeString(const char16_t* text);
    virtual bool write(const void* data, int size);
    virtual int handle();
    virtual int getHandle();
    // position ≥ 0 counts from the start; a negative one counts back from the end.
    virtual bool seek(int position);
    virtual int tell();
    virtual int getSize();
    virtual bool setSize(int size);
    virtual bool getTimes(FILETIME* creation, FILETIME* access, FILETIME* write);
    virtual bool setTimes(const FILETIME* creation, const FILETIME* access, const FILETIME* write);

    // Sets the size like setSize, but writes zeros into any new part, so that its disk space is taken
    // at once and writing through a mapping of it cannot fail later for want of space (a full disk
    // fails here instead). On failure the size is left as it was. Each whole kLargePiece-aligned
    // piece of the new part is written at once, which the page cache keeps as one large page.
    bool allocate(int size);
    static constexpr int kLargePiece = 2 * 1024 * 1024;
    const CString& getPath() const { return mPath; }

    static int getSize(const char16_t* path);
    // Moves a file; a name that exists is not replaced. Across file systems the file is copied
    // (contents and times, flushed to the device) and only then is the source deleted.
    static bool move(const char16_t* from, const char16_t* to);
    // Puts from in the place of to in one step, replacing to if it exists; both on one file system.
    // Readers see either the old file or the new one, never a mixture.
    static bool replace(const char16_t* from, const char16_t* to);
    // Deletes a file by name.
    static bool remove(const char16_t* path);

private:
    explicit File(const char16_t* path);
    bool openWith(int flags, bool readOnly);
    static bool copyNew(const char* from, const char* to);

    void* mView = nullptr;
    int mHandle = -1;
    std::size_t mMappingSize = 0;
    CString mPath;
    bool mReadOnly = true;
};

}  // namespace Orvanta
