// Writes one channel of a recording as text, a window at a time: memory does not grow with its
// length.
#include "kvsig/kvsig.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: export_channel RECORDING ELECTRODE\n";
        return EXIT_FAILURE;
    }
    std::string error;
    const kvsig::ReaderPtr reader = kvsig::openReader(argv[1], 0, &error);
    const int channel = reader ? reader->indexOfG1(argv[2]) : -1;
    if (channel < 0) {
        std::cerr << (reader ? std::string("no electrode ") + argv[2] : error) << "\n";
        return EXIT_FAILURE;
    }
    std::cout << "time\t" << reader->channelName(channel) << " in " << reader->channelUnits(channel)
              << "\n";
    constexpr long window = 4096;
    std::vector<float> values(window);
    for (long first = 0; first < reader->sampleCount(); first += window) {
        // Ranges name their first and last sample, both included.
        const long last = std::min(first + window, reader->sampleCount()) - 1;
        const int count = reader->getData(channel, first, last, values.data(), 1.0, 0);
        for (int i = 0; i < count; ++i)
            std::cout << static_cast<double>(first + i) / reader->samplingRate() << "\t"
                      << values[static_cast<std::size_t>(i)] << "\n";
    }
    return EXIT_SUCCESS;
}
