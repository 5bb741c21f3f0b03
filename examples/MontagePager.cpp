// A host in small: lists what can be read, opens a recording, shows it in a montage with filters
// and pages through it.
#include "kvsig/kvsig.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <vector>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: montage_pager RECORDING [MONTAGE]\n";
        for (const char** text = kvsig::KrnlGetFileTypeStrings(); *text; text += 2)
            std::cerr << text[0] << "\n";
        return EXIT_FAILURE;
    }
    std::string error;
    const kvsig::ReaderPtr reader = kvsig::openReader(argv[1], 0, &error);
    if (!reader) {
        std::cerr << error << "\n";
        return EXIT_FAILURE;
    }

    kvsig::SourceMontage montage;
    montage.setReader(reader.get());
    montage.setHighPass({.use = true, .cutoff = 1.0}); // hertz
    montage.setLowPass({.use = true, .cutoff = 70.0});
    if (!montage.createMontage(argc > 2 ? argv[2] : "Recorded")) {
        std::cerr << "no such montage; there are:\n  Recorded\n";
        for (const std::string& name : kvsig::MontageNames())
            std::cerr << "  " << name << "\n";
        return EXIT_FAILURE;
    }
    for (const std::string& missing : montage.unresolved())
        std::cerr << "left out: " << missing << "\n";

    const double rate = reader->samplingRate();
    const auto pageLength = static_cast<long>(std::clamp(10.0 * rate, 1.0, 1e7)); // samples
    std::vector<float> page(static_cast<std::size_t>(pageLength));
    for (long first = 0; first < reader->sampleCount(); first += pageLength) {
        const long last = std::min(first + pageLength, reader->sampleCount()) - 1;
        std::cout << "from " << static_cast<double>(first) / rate << " s\n";
        for (int row = 0; row < montage.sourceCount(); ++row) {
            kvsig::DataSource& source = *montage.source(row);
            const int count = source.getData(first, last, page.data(), 1.0);
            const auto [low, high] = std::minmax_element(page.begin(), page.begin() + count);
            if (count > 0 && !source.isGap())
                std::cout << "  " << source.name() << ": " << *low << " to " << *high << "\n";
        }
    }
    return EXIT_SUCCESS;
}
