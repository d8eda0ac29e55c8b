#pragma once
// PixelHeap: the library's heap for pixel blocks whose ownership passes between objects
// (a StaticDib frees what it is given with release()).
//
// Contract: allocate returns zeroed memory, or null when the block cannot be had; release(null)
// does nothing.

#include <cstddef>
#include <cstdlib>

namespace Orvanta {

class PixelHeap {
public:
    static unsigned char* allocate(std::size_t size) {
        return static_cast<unsigned char*>(std::calloc(size ? size : 1, 1));
    }
    static void release(void* block) { std::free(block); }
};

}  // namespace Orvanta
