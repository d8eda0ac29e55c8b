#include "orvanta/foundation/Bytes.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace Orvanta {

namespace {

// A std::malloc copy of a range; a negative length counts as 0. At least one byte is asked for, so
// an empty range still gives a real block.
void* duplicate(const void* data, int length) {
    const std::size_t size = length > 0 ? static_cast<std::size_t>(length) : 0;
    void* copy = std::malloc(size ? size : 1);
    if (!copy) throw std::bad_alloc();
    if (size) std::memcpy(copy, data, size);
    return copy;
}

}  // namespace

Bytes::Bytes(const Bytes& other) {
    copyBytes(other.mData, other.mLength);
}

Bytes::Bytes(Bytes&& other) noexcept
    : mData(std::exchange(other.mData, nullptr)),
      mLength(std::exchange(other.mLength, 0)),
      mOwned(std::exchange(other.mOwned, false)) {}

Bytes& Bytes::operator=(const Bytes& other) {
    copyBytes(other.mData, other.mLength);
    return *this;
}

Bytes& Bytes::operator=(Bytes&& other) noexcept {
    if (this != &other) {
        release();
        mData = std::exchange(other.mData, nullptr);
        mLength = std::exchange(other.mLength, 0);
        mOwned = std::exchange(other.mOwned, false);
    }
    return *this;
}

Bytes::~Bytes() {
    release();
}

void Bytes::release() {
    if (mOwned) std::free(mData);
    mData = nullptr;
    mLength = 0;
    mOwned = false;
}

void Bytes::setBytes(void* data, int length, bool owned) {
    if (data != mData) release();
    mData = data;
    mLength = length;
    mOwned = owned;
}

void Bytes::copyBytes(const void* data, int length) {
    // The copy is made before the old data goes, which keeps self-assignment and copies of a part of
    // the held data sound.
    void* copy = data ? duplicate(data, length) : nullptr;
    release();
    mData = copy;
    mLength = copy ? (length > 0 ? length : 0) : 0;
    mOwned = copy != nullptr;
}

bool Bytes::operator==(const Bytes& other) const {
    if (mLength != other.mLength) return false;
    if (mLength <= 0 || mData == other.mData) return true;
    if (!mData || !other.mData) return false;
    return std::memcmp(mData, other.mData, static_cast<std::size_t>(mLength)) == 0;
}

}  // namespace Orvanta
