#pragma once
// PixelHeap: the library's heap for pixel blocks whose ownership passes between objects
// (a StaticDib frees what it is given with release()).
//
// Contract: allocate returns zeroed memory, or null when the block cannot be had; release(null)
// does nothing. Blocks of photograph size lie on huge pages (platform/PixelBlocks).

#include <cstddef>

#include "orvanta/platform/PixelBlocks.h"

namespace Orvanta {

class PixelHeap {
public:
    static unsigned char* allocate(std::size_t size) { return Platform::PixelBlocks::allocate(size); }
    static void release(void* block) { Platform::PixelBlocks::release(static_cast<unsigned char*>(block)); }
};

}  // namespace Orvanta
