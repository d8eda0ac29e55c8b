#include "orvanta/platform/ParallelBands.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace Orvanta::Platform {

std::size_t ParallelBands::bandCount(std::size_t count, std::size_t leastPerBand) {
    static const unsigned cores = std::max(1u, std::min(std::thread::hardware_concurrency(), kMostBands));
    return std::max<std::size_t>(
        1, std::min<std::size_t>(cores, count / std::max<std::size_t>(leastPerBand, 1)));
}

void ParallelBands::forEachBand(std::size_t count, std::size_t leastPerBand,
                                const std::function<void(std::size_t, std::size_t, std::size_t)>& work) {
    const std::size_t bands = bandCount(count, leastPerBand);
    const auto start = [&](std::size_t band) { return count * band / bands; };
    std::vector<std::thread> helpers;
    helpers.reserve(bands - 1);
    for (std::size_t band = 1; band < bands; ++band) {
        const std::size_t begin = start(band), end = start(band + 1);
        try {
            helpers.emplace_back([&work, band, begin, end] { work(band, begin, end); });
        } catch (const std::system_error&) {
            work(band, begin, end);  // no thread to be had: this one does it
        }
    }
    work(0, 0, start(1));
    for (std::thread& helper : helpers) helper.join();
}

}  // namespace Orvanta::Platform
