#include "Trial.h"

#include <algorithm>
#include <biosig.h>
#include <cmath>
#include <edflib.h>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

// The same mutants for EDFlib and libbiosig.
namespace {

constexpr int mostBlocks = 200;

bool readByEdflib(const std::string& path) {
    const auto header = std::make_unique<edf_hdr_struct>();
    if (edfopen_file_readonly(path.c_str(), header.get(), EDFLIB_READ_ALL_ANNOTATIONS) != 0)
        return false;
    constexpr long long mostSamples = 65536;
    for (int signal = 0; signal < header->edfsignals; ++signal) {
        const auto& facts = header->signalparam[signal];
        const auto step =
            static_cast<int>(std::clamp<long long>(facts.smp_in_datarecord, 1, mostSamples));
        std::vector<double> block(static_cast<std::size_t>(step));
        for (int i = 0; i < mostBlocks; ++i)
            if (edfread_physical_samples(header->handle, signal, step, block.data()) < step)
                break;
    }
    edf_annotation_struct annotation{};
    for (int i = 0; i < static_cast<int>(std::min(header->annotations_in_file, 1000LL)); ++i)
        edf_get_annotation(header->handle, i, &annotation);
    edfclose_file(header->handle);
    return true;
}

bool readByBiosig(const std::string& path) {
    HDRTYPE* header = sopen(path.c_str(), "r", nullptr);
    if (!header || serror2(header) != 0) {
        if (header)
            destructHDR(header);
        return false;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(mostBlocks); ++i) {
        header->AS.first = i;
        if (sread(nullptr, i, 1, header) != 1)
            break;
    }
    destructHDR(header);
    return true;
}

} // namespace

int main(int count, char** arguments) {
    const int first = kvsig::mutants::runMutants({"EDFlib", readByEdflib}, count, arguments);
    const int second = kvsig::mutants::runMutants({"libbiosig", readByBiosig}, count, arguments);
    return std::max(first, second);
}
