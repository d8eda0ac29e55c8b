#pragma once
// ParallelBands: one piece of work split into contiguous bands run side by side on the machine's cores.
//
// Contract: forEachBand(count, leastPerBand, work) calls work(band, begin, end) for band 0 to
// bandCount() - 1, whose ranges [begin, end) cover [0, count) exactly once, in order of band, and
// returns when all have run (the calls themselves run in no stated order). There are at most as many
// bands as cores (and never more than kMostBands), each at least leastPerBand long, so small work runs
// as a single call on the caller's thread. The caller's thread always takes the first band;
// where no thread can be started, it takes the others too. work must not throw, and bands must not
// write what another band reads or writes.

#include <cstddef>
#include <functional>

namespace Orvanta::Platform {

class ParallelBands {
public:
    static constexpr unsigned kMostBands = 4;

    static void forEachBand(
        std::size_t count, std::size_t leastPerBand,
        const std::function<void(std::size_t band, std::size_t begin, std::size_t end)>& work);
    // How many bands forEachBand makes of count, for callers that keep a result per band.
    static std::size_t bandCount(std::size_t count, std::size_t leastPerBand);
};

}  // namespace Orvanta::Platform
