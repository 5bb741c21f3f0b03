// Opens a recording and says what is in it.
#include "kvsig/kvsig.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: print_header RECORDING\n";
        return EXIT_FAILURE;
    }
    std::string error;
    const kvsig::ReaderPtr reader = kvsig::openReader(argv[1], 0, &error);
    if (!reader) {
        std::cerr << error << "\n"; // one sentence that names the file, the field and the value
        return EXIT_FAILURE;
    }
    std::cout << kvsig::typeNameOf(reader->fileType()) << ": " << reader->channelCount()
              << " channels, " << reader->duration() << " s at " << reader->samplingRate()
              << " Hz\n";
    for (int channel = 0; channel < reader->channelCount(); ++channel)
        std::cout << channel << " " << reader->channelName(channel) << ", "
                  << reader->physioLow(channel) << " to " << reader->physioHigh(channel) << " "
                  << reader->channelUnits(channel) << "\n";
    return EXIT_SUCCESS;
}
