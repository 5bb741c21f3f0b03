// Does one small piece of work, always the same, for script/instructions to count its instructions.
#include "KvsigPager.h"
#include "Reading.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <map>
#include <string>

namespace kvsig::bench {

/// What is counted: everything from entry to return, by this name.
extern "C" [[gnu::noinline]] void countedWork(const std::function<void()>& work) { work(); }

namespace {

constexpr double window = 10.0; // seconds
constexpr std::size_t firTaps = 45;
constexpr std::size_t firSamples = 100'000;

void openTwentyTimes(const std::string& path) {
    countedWork([&] {
        for (int i = 0; i < 20; ++i)
            openKvsig(path);
    });
}

void readWhole(const std::string& path) {
    const auto reading = openKvsig(path);
    countedWork([&] {
        for (double start = 0.0; start < reading->duration(); start += window)
            reading->window(start, window);
    });
}

void readHereAndThere(const std::string& path) {
    const auto reading = openKvsig(path);
    const auto last = static_cast<long>(reading->duration() - window);
    countedWork([&] {
        for (long i = 0; i < 20; ++i)
            reading->window(static_cast<double>(i * 7919 % last), window);
    });
}

void readOneChannel(const std::string& path) {
    const auto reading = openKvsig(path);
    countedWork([&] {
        for (double start = 0.0; start < reading->duration(); start += window)
            reading->channelWindow(1, start, window);
    });
}

void showPages(const std::string& path, void (KvsigPager::*page)(std::int64_t)) {
    KvsigPager pager(path);
    countedWork([&] {
        for (std::int64_t i = 0; i < pager.pages(); ++i)
            (pager.*page)(i);
    });
}

void filterBlock(const std::string& /*path*/) {
    FIRLowPass filter;
    filter.design(0.12, 52.0 / (14.357 * (firTaps + 0.5)), 60.0);
    std::vector<float> samples(firSamples);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(i * 7919 % 1009);
    countedWork([&] { filter.apply(samples.data(), static_cast<int>(samples.size())); });
}

const std::map<std::string, std::function<void(const std::string&)>> works{
    {"open", openTwentyTimes},
    {"whole", readWhole},
    {"random", readHereAndThere},
    {"channel", readOneChannel},
    {"rows", [](const std::string& path) { showPages(path, &KvsigPager::page); }},
    {"all-rows", [](const std::string& path) { showPages(path, &KvsigPager::allRows); }},
    {"fir", filterBlock},
};

} // namespace
} // namespace kvsig::bench

int main(int argc, char** argv) {
    const auto work = argc == 3 ? kvsig::bench::works.find(argv[1]) : kvsig::bench::works.end();
    if (work == kvsig::bench::works.end()) {
        std::fputs("usage: kvsig_instructions WORK RECORDING, with WORK one of:", stderr);
        for (const auto& [name, run] : kvsig::bench::works)
            std::fprintf(stderr, " %s", name.c_str());
        std::fputs("\n", stderr);
        return EXIT_FAILURE;
    }
    try {
        work->second(argv[2]);
        return EXIT_SUCCESS;
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "kvsig_instructions: %s\n", fault.what());
        return EXIT_FAILURE;
    }
}
