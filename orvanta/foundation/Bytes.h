#pragma once
// Bytes: a byte array with an explicit ownership flag.
//
// Contract: an owning Bytes frees its data with std::free when it is destroyed or given new data,
// so data handed over as owned must come from std::malloc (the library's heap). A non-owning Bytes
// only points. Copies are deep and owning; a copy of null is null and not owning; a copy of a
// non-null array of length 0 is an owned block of length 0, not null. Moves hand the data and the
// flag over and leave the source null.

namespace Orvanta {

class Bytes {
public:
    Bytes() = default;
    // Adopts the pointer as it is; nothing is copied.
    Bytes(void* data, int length, bool owned) : mData(data), mLength(length), mOwned(owned) {}
    Bytes(const Bytes& other);
    Bytes(Bytes&& other) noexcept;
    Bytes& operator=(const Bytes& other);
    Bytes& operator=(Bytes&& other) noexcept;
    ~Bytes();

    // Frees what is held if owned, then adopts.
    void setBytes(void* data, int length, bool owned);
    // Frees what is held if owned, then holds a copy of the range (null for a null source). The range
    // may lie inside the data held now.
    void copyBytes(const void* data, int length);

    // Equal lengths, then equal bytes; two arrays of length 0 are equal wherever they point.
    bool operator==(const Bytes& other) const;
    bool operator!=(const Bytes& other) const { return !(*this == other); }

    bool isNull() const { return mData == nullptr; }
    bool isOwned() const { return mOwned; }
    const void* getBytes() const { return mData; }
    void* getBytes() { return mData; }
    int getLength() const { return mLength; }

private:
    void release();

    void* mData = nullptr;
    int mLength = 0;
    bool mOwned = false;
};

}  // namespace Orvanta
