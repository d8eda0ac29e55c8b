#include "orvanta/platform/PixelBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

#include "orvanta/platform/Bitmap.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using Orvanta::Platform::PixelBlocks;
using OrvantaTest::bitmapHeader;

namespace {

constexpr std::size_t kPhotograph = std::size_t(6) << 20;

bool allBytesAre(const unsigned char* block, std::size_t size, unsigned char value) {
    return std::all_of(block, block + size, [value](unsigned char b) { return b == value; });
}

}  // namespace

// A picture's block, released, is what the next picture of its size gets: cleared when it asks for
// zeros, as it was when it will write every byte. A decoder's block is not kept.
TEST(PixelBlocks, AReleasedPictureBlockServesTheNextPictureOfItsSize) {
    unsigned char* first = PixelBlocks::allocatePicture(kPhotograph, PixelBlocks::kZeroed);
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(allBytesAre(first, kPhotograph, 0));
    std::memset(first, 0xAB, kPhotograph);
    PixelBlocks::release(first);
    unsigned char* again = PixelBlocks::allocatePicture(kPhotograph - 4096, PixelBlocks::kZeroed);
    EXPECT_EQ(first, again);
    EXPECT_TRUE(allBytesAre(again, kPhotograph - 4096, 0));
    std::memset(again, 0xCD, kPhotograph);
    PixelBlocks::release(again);
    unsigned char* undefined = PixelBlocks::allocatePicture(kPhotograph, PixelBlocks::kUndefined);
    EXPECT_EQ(first, undefined);
    PixelBlocks::release(undefined);

    unsigned char* decoded = PixelBlocks::allocate(kPhotograph);
    EXPECT_TRUE(allBytesAre(decoded, kPhotograph, 0)) << "a new mapping is zeroed by the kernel";
    PixelBlocks::release(decoded);
    unsigned char* picture = PixelBlocks::allocatePicture(kPhotograph, PixelBlocks::kZeroed);
    EXPECT_TRUE(allBytesAre(picture, kPhotograph, 0));
    PixelBlocks::release(picture);
}

// A kept block goes only to a picture whose block rounds to the same 2 MiB pages, and never to two
// pictures at once, nor to one while the picture it came from is still alive.
TEST(PixelBlocks, AKeptBlockServesOnlyItsSizeAndOnePictureAtATime) {
    const struct {
        std::size_t kept, asked;
        bool reused;
    } cases[] = {
        {kPhotograph, kPhotograph, true},
        {kPhotograph, kPhotograph - (std::size_t(2) << 20) + 1, true},  // the same whole pages
        {kPhotograph, kPhotograph - (std::size_t(2) << 20), false},     // one page fewer
        {kPhotograph, kPhotograph + 1, false},
        {kPhotograph, std::size_t(3) << 20, false},  // small enough for the C heap
        {2 * kPhotograph, kPhotograph, false},
    };
    for (const auto& c : cases) {
        unsigned char* kept = PixelBlocks::allocatePicture(c.kept, PixelBlocks::kUndefined);
        unsigned char* live = PixelBlocks::allocatePicture(c.kept, PixelBlocks::kUndefined);
        ASSERT_NE(kept, live);
        std::memset(kept, 0x5A, c.kept);
        std::memset(live, 0xA5, c.kept);
        PixelBlocks::release(kept);
        unsigned char* asked = PixelBlocks::allocatePicture(c.asked, PixelBlocks::kUndefined);
        EXPECT_NE(asked, live) << c.asked;
        EXPECT_TRUE(allBytesAre(live, c.kept, 0xA5)) << c.asked;
        if (c.reused) {
            EXPECT_EQ(asked, kept) << c.asked;
        } else {
            EXPECT_FALSE(allBytesAre(asked, 4096, 0x5A)) << c.asked << " holds the kept block's bytes";
        }
        // A second picture of the kept block's size while the first holds it gets another block.
        unsigned char* second = PixelBlocks::allocatePicture(c.asked, PixelBlocks::kUndefined);
        EXPECT_NE(second, asked);
        EXPECT_NE(second, live);
        for (unsigned char* block : {asked, live, second}) PixelBlocks::release(block);
    }
}

// A DIB section of undefined pixels has zero row padding even in a block full of other bytes, so a
// picture's bytes (padding included) are what the operation wrote.
TEST(PixelBlocks, AnUndefinedDibSectionHasItsRowPaddingCleared) {
    const BITMAPINFO info = bitmapHeader(1001, -2000, 24);  // rows of 3003 bytes on 3004
    HBITMAP full = Platform::Bitmap::createDibSection(info);
    ASSERT_NE(full, nullptr);
    std::memset(full->bits(), 0xFF, 3004 * 2000);
    unsigned char* const block = full->bits();
    Platform::Bitmap::deleteObject(full);
    HBITMAP reused = Platform::Bitmap::createDibSection(info, PixelBlocks::kUndefined);
    ASSERT_EQ(reused->bits(), block);
    for (int row = 0; row < 2000; ++row) ASSERT_EQ(reused->bits()[row * 3004 + 3003], 0) << row;
    Platform::Bitmap::deleteObject(reused);
}

// Threads taking and giving back blocks of two sizes at once each get a block of their own: what
// one writes is there when it reads it back, and a zeroed block is zero.
TEST(PixelBlocks, ThreadsTakingBlocksAtOnceNeverShareOne) {
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &failures] {
            for (int round = 0; round < 40; ++round) {
                const std::size_t size = round % 2 ? kPhotograph : 2 * kPhotograph;
                const auto contents = round % 3 ? PixelBlocks::kUndefined : PixelBlocks::kZeroed;
                unsigned char* block = PixelBlocks::allocatePicture(size, contents);
                if (!block) {
                    ++failures[t];
                    continue;
                }
                const std::size_t step = 65536;
                if (contents == PixelBlocks::kZeroed)
                    for (std::size_t at = 0; at < size; at += step) failures[t] += block[at] != 0;
                for (std::size_t at = 0; at < size; at += step) block[at] = static_cast<unsigned char>(t + 1);
                std::this_thread::yield();
                for (std::size_t at = 0; at < size; at += step) failures[t] += block[at] != t + 1;
                PixelBlocks::release(block);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::vector<int>(4, 0), failures);
}

// Copies shared between threads meet exactly: every byte at its place, none past the end, at sizes
// that split into whole and ragged shares.
TEST(PixelBlocks, ACopySharedBetweenThreadsIsByteForByte) {
    const std::size_t mib = std::size_t(1) << 20;
    for (const std::size_t size : {std::size_t(100), 8 * mib - 1, 16 * mib, 24 * mib + 4097, 72 * mib + 3}) {
        std::vector<unsigned char> from(size), to(size + 1, 0xA5);
        for (std::size_t i = 0; i < size; ++i) from[i] = static_cast<unsigned char>(i * 2654435761u >> 13);
        PixelBlocks::copy(to.data(), from.data(), size);
        EXPECT_TRUE(std::equal(from.begin(), from.end(), to.begin())) << size;
        EXPECT_EQ(0xA5, to[size]) << size;
    }
}
