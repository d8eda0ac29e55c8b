#pragma once
// FileContents: the bytes of a file, or of its beginning, read into memory for one operation.
//
// Contract: open reads a regular file only (see openRegularFile): a folder, a pipe or a device is
// refused before a byte is read, so a pipe never blocks the caller. It reads the first `limit`
// bytes, or all of them, with plain reads rather than a mapping, so a file that another program
// truncates meanwhile gives fewer bytes, never a fault. While only a beginning has been read the
// file stays open and extend reads on from the same file, even if a new version has since been
// renamed into its place. No lock is taken. An empty file opens with size 0 and a null data
// pointer. A file larger than an int counts fails with EFBIG. Failures record the reason as the
// last error and leave nothing open. All calls pass through Platform::FileSystem.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Orvanta::Platform {

class FileContents {
public:
    static constexpr std::size_t kWhole = SIZE_MAX;

    FileContents() = default;
    ~FileContents();
    FileContents(const FileContents&) = delete;
    FileContents& operator=(const FileContents&) = delete;

    bool open(const std::string& path, std::size_t limit = kWhole);
    // Reads on until limit bytes, or the whole file, are in memory. data() may move.
    bool extend(std::size_t limit = kWhole);
    void close();

    bool isOpen() const { return mOpen; }
    // True when every byte the file had at open is in memory (or the file turned out shorter).
    bool isComplete() const { return mSize == mFileSize; }
    const unsigned char* data() const { return mSize ? mData.get() : nullptr; }
    int size() const { return static_cast<int>(mSize); }

private:
    std::unique_ptr<unsigned char[]> mData;
    std::size_t mSize = 0;
    std::size_t mFileSize = 0;
    int mHandle = -1;
    bool mOpen = false;
};

}  // namespace Orvanta::Platform
