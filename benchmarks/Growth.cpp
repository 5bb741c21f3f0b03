// How the cost of a value grows with channels, sampling rate, duration and window: one line a
// measurement, "question size nanoseconds".
#include "kvsig/kvsig.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace kvsig::bench {
namespace {

// The whole file, all channels, window after window; the best of some passes, in ns per value.
double readingCost(const char* path, double windowSeconds) {
    constexpr int passes = 7;
    std::string error;
    const ReaderPtr reader = openReader(path, 0, &error);
    if (!reader) {
        std::fprintf(stderr, "kvsig_growth: %s\n", error.c_str());
        std::exit(EXIT_FAILURE);
    }
    const int channels = reader->channelCount();
    const long samples = reader->sampleCount();
    const long window =
        std::clamp(static_cast<long>(windowSeconds * reader->samplingRate()), 1L, samples);
    std::vector<std::vector<float>> rows(static_cast<std::size_t>(channels),
                                         std::vector<float>(static_cast<std::size_t>(window)));
    double best = 0.0;
    for (int pass = 0; pass < passes; ++pass) {
        const auto start = std::chrono::steady_clock::now();
        long read = 0;
        for (long first = 0; first + window <= samples; first += window, read += window)
            for (int c = 0; c < channels; ++c)
                reader->getData(c, first, first + window - 1,
                                rows[static_cast<std::size_t>(c)].data(), 1.0, 0);
        const std::chrono::duration<double, std::nano> time =
            std::chrono::steady_clock::now() - start;
        const double cost = time.count() / (static_cast<double>(read) * channels);
        best = pass == 0 ? cost : std::min(best, cost);
    }
    return best;
}

} // namespace
} // namespace kvsig::bench

// Arguments in fours: question, size, window in seconds, file.
int main(int argc, char** argv) {
    for (int i = 1; i + 3 < argc; i += 4)
        std::printf("%s %s %.3f\n", argv[i], argv[i + 1],
                    kvsig::bench::readingCost(argv[i + 3], std::atof(argv[i + 2])));
}
