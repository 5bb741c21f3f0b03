#include "Agreement.h"

#include "KvsigFilters.h"
#include "KvsigPager.h"
#include "Paging.h"
#include "Questions.h"
#include "Reading.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kvsig::bench {
namespace {

constexpr float epsilon = std::numeric_limits<float>::epsilon();

// The rounding of scale, offset, product and sum, each half a step.
bool sameValues(std::span<const float> a, std::span<const float> b, float offset) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [offset](float x, float y) {
        return std::fabs(x - y) <= 2.0F * epsilon * (std::fabs(y) + std::fabs(offset));
    });
}

// A high-pass keeps the rounding of its input for a while.
bool sameRows(std::span<const float> a, std::span<const float> b) {
    float largest = 0.0F;
    for (const float value : b)
        largest = std::max(largest, std::fabs(value));
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [largest](float x, float y) {
        return std::fabs(x - y) <= 100.0F * epsilon * (1.0F + largest);
    });
}

// A long recording is compared in this many windows at most, spread over its length.
constexpr int mostWindows = 60;

std::vector<double> comparedStarts(double duration) {
    const auto windows = static_cast<int>(duration / windowSeconds);
    const int compared = std::min(windows, mostWindows);
    std::vector<double> starts;
    for (int i = 0; i < compared; ++i)
        starts.push_back(windowSeconds * std::floor(static_cast<double>(i) * (windows - 1) /
                                                    std::max(compared - 1, 1)));
    return starts;
}

void compareReading(const Workload& workload, std::vector<std::string>& found) {
    const StraightFile file(workload.path);
    const auto straight = openStraight(workload.path);
    const auto kvsig = openKvsig(workload.path);
    if (kvsig->channels() != straight->channels() ||
        std::fabs(kvsig->duration() - straight->duration()) > 1e-6) {
        found.push_back(workload.path + ": other channels or another duration");
        return;
    }
    const auto compare = [&](std::size_t channel, double start, const char* what) {
        if (!sameValues(kvsig->floats(channel), straight->floats(channel), file.zeroValue(channel)))
            found.push_back(workload.path + ": other values in channel " + std::to_string(channel) +
                            " from " + std::to_string(start) + " s, " + what);
    };
    for (const double start : comparedStarts(straight->duration())) {
        kvsig->window(start, windowSeconds);
        straight->window(start, windowSeconds);
        for (std::size_t c = 0; c < straight->channels(); ++c)
            compare(c, start, "all channels read");
    }
    for (std::size_t c = 0; c < straight->channels(); ++c) {
        kvsig->channelWindow(c, 0.0, windowSeconds);
        straight->channelWindow(c, 0.0, windowSeconds);
        compare(c, 0.0, "one channel read");
    }
}

void comparePaging(const Workload& workload, std::vector<std::string>& found) {
    KvsigPager kvsig(workload.path);
    StraightPager straight(workload.path, kvsig.chain());
    for (std::int64_t page = 0; page < std::min<std::int64_t>(straight.pages(), mostWindows);
         ++page) {
        const auto compare = [&](const char* what) {
            for (std::size_t r = 0; r < pagingRows.size(); ++r)
                if (!sameRows(kvsig.row(r), straight.row(r)))
                    found.push_back(workload.path + ": other values in row " + std::to_string(r) +
                                    " of page " + std::to_string(page) + ", " + what);
        };
        kvsig.page(page);
        straight.page(page);
        compare("row by row");
        straight.sideBySide(page);
        compare("straight loops side by side");
        kvsig.flushCaches();
        kvsig.allRows(page);
        compare("all rows in one call");
    }
}

void compareFilters(std::vector<std::string>& found) {
    for (const MeasuredFilter& measured : measuredFilters()) {
        std::vector<float> kvsig = filterSignal();
        std::vector<float> straight = filterSignal();
        measured.filter->apply(kvsig.data(), static_cast<int>(kvsig.size()));
        runStraight(measured.facts, filterSignal(), straight);
        if (kvsig != straight)
            found.push_back(measured.facts.name + ": other values");
    }
}

} // namespace

std::vector<std::string> disagreements(const std::vector<Workload>& workloads) {
    std::vector<std::string> found;
    for (const Workload& workload : workloads)
        compareReading(workload, found);
    comparePaging(workloads.front(), found);
    compareFilters(found);
    return found;
}

} // namespace kvsig::bench
