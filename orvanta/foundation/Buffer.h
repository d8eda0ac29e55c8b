#pragma once
// Buffer: a shared, immutable block of bytes.
//
// Contract: a Buffer always holds a block; the default one has length 0, so there is no null
// Buffer. The block is filled once, right after it is made, and never written after it is shared.
// Copies and assignments share the block by its reference count, which is a plain int: a Buffer and
// its copies belong to one thread at a time. The block's header (length, then count) sits
// immediately in front of the contents, and the block is made four times the length plus 32 bytes
// in all; only the stored length counts for the interface.

namespace Orvanta {

class Buffer {
public:
    Buffer() : Buffer(0) {}
    // A new block of length bytes (a negative length counts as 0), zeroed.
    explicit Buffer(int length);
    Buffer(const Buffer& other);
    ~Buffer();

    // Drops the held block and shares the other's.
    void assign(const Buffer& other);
    Buffer& operator=(const Buffer& other);
    // Same length and the same bytes.
    bool operator==(const Buffer& other) const;

    int getLength() const { return header()->length; }
    bool isEmpty() const { return getLength() == 0; }
    const unsigned char* getContents() const { return mContents; }
    unsigned char* getContents() { return mContents; }

private:
    struct Header {
        int length;
        int count;
    };
    Header* header() const { return reinterpret_cast<Header*>(mContents) - 1; }
    void drop();

    unsigned char* mContents;
};

}  // namespace Orvanta
