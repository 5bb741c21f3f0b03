// Samples that an amplifier delivers while it records. The attribute file says what they are; the
// program hands each page over before it is read, and shows it filtered.
#include "kvsig/kvsig.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

constexpr int rate = 200;             // hertz
constexpr int pageSamples = 5 * rate; // a page is five seconds
constexpr long pages = 6;             // as long as this recording may become
constexpr const char* attributes =
    "[FileInfo]\nFile=live.raw\nFileType=PushableData\nSamplingRate=200\n"
    "HeaderLength=0\nCalibration=0.1\nWaveformCount=2\nDataType=0\n"
    "[ChannelMap]\nC3-Ref=1\nC4-Ref=2\n";

// In place of an amplifier: 10 Hz in both channels, and an offset that a filter takes off.
std::vector<short> deliver(long page) {
    std::vector<short> frames;
    for (long i = page * pageSamples; i < (page + 1) * pageSamples; ++i)
        for (const double size : {500.0, 300.0})
            frames.push_back(static_cast<short>(
                5000 + size * std::sin(2 * std::acos(-1.0) * 10 * static_cast<double>(i) / rate)));
    return frames;
}

int main() {
    // The file gives the recording its length; its samples come from the program.
    const std::string name = "kvsig_live_" + std::to_string(std::random_device{}()) + ".raw";
    const std::string file = std::filesystem::temp_directory_path() / name;
    std::ofstream(file).close();
    std::filesystem::resize_file(file, std::uintmax_t{4} * pages * pageSamples);

    kvsig::PushableReader reader;
    std::istringstream stream(attributes);
    if (!reader.readAttributeFile(stream) || !reader.open(file.c_str())) {
        std::cerr << reader.lastErrorText() << "\n";
        return EXIT_FAILURE;
    }
    kvsig::SourceMontage montage;
    montage.setReader(&reader);
    montage.setHighPass({.use = true, .cutoff = 0.5}); // hertz
    montage.createMontage("Recorded");
    std::vector<float> values(pageSamples);
    for (long page = 0; page < pages; ++page) {
        const std::vector<short> frames = deliver(page);
        reader.pushBuffer(frames.data(), static_cast<int>(2 * frames.size()));
        const long first = page * pageSamples;
        montage.source(0)->getData(first, first + pageSamples - 1, values.data(), 1.0);
        std::cout << "page " << page << ": " << montage.source(0)->name() << " ends at "
                  << values.back() << " uV\n";
    }
    reader.close();
    std::filesystem::remove(file);
    return EXIT_SUCCESS;
}
