#pragma once
// PixelBlocks: the memory of pictures.
//
// Blocks of photograph size (4 MiB and more) are mapped from the kernel on 2 MiB boundaries, their
// whole 2 MiB pages asked to be huge pages: a fresh 24-megapixel picture then costs a few dozen page
// faults instead of tens of thousands, and walks across its rows (a quarter turn) miss the TLB far
// less. The pages past the last whole one stay small, so a block holds no more memory than its size.
//
// A picture's block (allocatePicture) is kept when released, for the next picture of its size: an
// edit that makes a picture the size of the one it replaces then takes the pages already there, and
// when it writes every byte (kUndefined) nothing clears them first. At most two are kept; a picture
// of another size unmaps them before it maps its own, so that kept blocks never stand beside a
// mapping that could have reused them. A kept block's pages are the kernel's to take back under
// memory pressure (MADV_FREE): taken back, they return zeroed.
//
// Contract: allocate and allocatePicture answer a block of at least size bytes, or null when it
// cannot be had (size 0 gives a block too). kZeroed blocks read as zero; kUndefined blocks hold
// anything until written. release takes back any block either gave, once; null does nothing.
// Smaller blocks come from the C heap. Every call is safe from any thread.

#include <cstddef>

namespace Orvanta::Platform {

class PixelBlocks {
public:
    enum Contents { kZeroed, kUndefined };

    // A zeroed block that is unmapped when released (a decoder's output, whose size rarely repeats).
    static unsigned char* allocate(std::size_t size);
    // A picture's block, kept for reuse when released.
    static unsigned char* allocatePicture(std::size_t size, Contents contents);
    static void release(unsigned char* block);
    // memcpy for pictures: a photograph's bytes are copied by several threads at once, since one
    // core alone moves far less than the memory can (the blocks must not overlap).
    static void copy(unsigned char* to, const unsigned char* from, std::size_t size);
};

}  // namespace Orvanta::Platform
