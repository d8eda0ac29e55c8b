#include "orvanta/foundation/Buffer.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace Orvanta {

Buffer::Buffer(int length) {
    const std::size_t n = length > 0 ? static_cast<std::size_t>(length) : 0;
    const std::size_t blockSize = n * 4 + 32;
    void* block = std::calloc(blockSize, 1);
    if (!block) throw std::bad_alloc();
    auto* head = static_cast<Header*>(block);
    head->length = static_cast<int>(n);
    head->count = 1;
    mContents = reinterpret_cast<unsigned char*>(head + 1);
}

Buffer::Buffer(const Buffer& other) : mContents(other.mContents) {
    ++header()->count;
}

Buffer::~Buffer() {
    drop();
}

void Buffer::drop() {
    Header* head = header();
    if (--head->count < 1) std::free(head);
}

void Buffer::assign(const Buffer& other) {
    // Take the new reference first, so that assigning a Buffer its own block cannot free it.
    ++other.header()->count;
    drop();
    mContents = other.mContents;
}

Buffer& Buffer::operator=(const Buffer& other) {
    assign(other);
    return *this;
}

bool Buffer::operator==(const Buffer& other) const {
    return getLength() == other.getLength() &&
           std::memcmp(mContents, other.mContents, static_cast<std::size_t>(getLength())) == 0;
}

}  // namespace Orvanta
