// Two recordings that were made side by side, shown as one: the channels of the first, then those
// of the second, at the higher of the two rates.
#include "kvsig/kvsig.h"

#include <cstdlib>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: recording_pair FIRST SECOND\n";
        return EXIT_FAILURE;
    }
    // openReader("a.edf*b.edf") does the same; here the program keeps the two members.
    std::string error;
    const kvsig::ReaderPtr first = kvsig::openReader(argv[1], 0, &error);
    const kvsig::ReaderPtr second = first ? kvsig::openReader(argv[2], 0, &error) : first;
    if (!second) {
        std::cerr << error << "\n";
        return EXIT_FAILURE;
    }
    const kvsig::ReaderPtr pair(new kvsig::SyncReader(first.get(), second.get()));
    if (!pair->open((std::string(argv[1]) + "*" + argv[2]).c_str())) {
        std::cerr << "the two cannot be paired\n";
        return EXIT_FAILURE;
    }
    const int channel = first->channelCount(); // the second recording's first one
    std::cout << pair->channelCount() << " channels at " << pair->samplingRate() << " Hz\n";

    // The second recorder was started three samples (of the common rate) after the first.
    constexpr int lagItem = 2;
    std::vector<float> values(10);
    for (const std::uintptr_t lag : {0U, 3U}) {
        pair->setItem(lagItem, 0, 0, lag);
        pair->getData(channel, 100, 109, values.data(), 1.0, 0);
        std::cout << "lag " << lag << ": sample 105 of " << pair->channelName(channel) << " is "
                  << values[5] << "\n";
    }
    return EXIT_SUCCESS;
}
