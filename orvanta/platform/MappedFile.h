#pragma once
// MappedFile: the whole contents of a file, mapped read-only for the time of one operation.
//
// Contract: open maps a file that others may read or write meanwhile (no lock is taken), so
// decoders and parsers see its bytes without copying them. An empty file opens with size 0 and a
// null data pointer. A file that cannot be opened, stat'ed or mapped, or that is larger than an int
// counts, fails to open and leaves nothing behind. All calls pass through Platform::FileSystem.

#include <cstddef>
#include <string>

namespace Orvanta::Platform {

class MappedFile {
public:
    MappedFile() = default;
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    bool open(const std::string& path);
    void close();

    bool isOpen() const { return mOpen; }
    const unsigned char* data() const { return mData; }
    int size() const { return mSize; }

private:
    const unsigned char* mData = nullptr;
    int mSize = 0;
    bool mOpen = false;
};

}  // namespace Orvanta::Platform
