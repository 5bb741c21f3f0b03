#include "compliance/ReaderRow.h"
#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "support/EdfFile.h"
#include "support/SameSamples.h"

#include <algorithm>

namespace kvsig::test {
namespace {

struct Signal {
    const char* label;
    int perRecord;
    const char* units = "uV";
};

constexpr int recordCount = 47; // of half a second: several pages of five seconds, the last short

std::vector<std::size_t> fieldBoundaries(std::size_t signals) {
    std::vector<std::size_t> offsets = {0, 8, 88, 168, 176, 184, 192, 236, 244, 252, 256};
    for (const std::size_t width : {16U, 80U, 8U, 8U, 8U, 8U, 8U, 80U, 8U, 32U})
        for (std::size_t i = 0; i < signals; ++i)
            offsets.push_back(offsets.back() + width);
    return offsets;
}

SampleRecording sampleOf(EdfFile file, const std::vector<Signal>& signals, bool bdf) {
    for (const Signal& signal : signals)
        file.signal(signal.label, signal.perRecord).units(signal.units).physical("-150.5", "1200");
    file.duration("0.5").records(recordCount).start("04.07.89", "23.59.50");

    std::vector<int> visible;
    int fastest = 0;
    for (std::size_t i = 0; i < signals.size(); ++i)
        if (std::string(signals[i].label) != "EDF Annotations") {
            visible.push_back(static_cast<int>(i));
            fastest = std::max(fastest, signals[i].perRecord);
        }
    SampleRecording made;
    made.bytes = file.bytes();
    made.fileName = bdf ? "sample.bdf" : "sample.edf";
    made.boundaries = fieldBoundaries(signals.size());
    made.channels = static_cast<int>(visible.size());
    made.samplingRate = 2.0 * fastest;
    made.storedSampleCount = recordCount * fastest;
    made.sampleCount = (bdf ? recordCount * 3 / 2 : recordCount) * fastest;
    made.startClock = 86390;
    made.raw = [=](int channel, long index) {
        const int signal = visible[static_cast<std::size_t>(channel)];
        const int perRecord = signals[static_cast<std::size_t>(signal)].perRecord;
        const long within = index % fastest * perRecord / fastest;
        return file.sample(signal, index / fastest * perRecord + within);
    };
    return made;
}

template <typename Reader>
ReaderRow row(const char* name, int type, const EdfFile& kind, const std::vector<Signal>& signals) {
    const bool bdf = type == 48;
    return {name,
            type,
            8,
            [=] { return sampleOf(kind, signals, bdf); },
            [] { return std::make_unique<Reader>(); },
            [] { return std::make_unique<FramesOnly<Reader>>(); }};
}

} // namespace

std::vector<ReaderRow> edfRows() {
    const std::vector<Signal> even = {{"EEG Fp1-Ref", 16}, {"EEG Fp2-Ref", 16}, {"Resp", 16, "mV"}};
    const std::vector<Signal> mixed = {
        {"EEG C3", 20}, {"Resp", 3, ""}, {"ECG", 50}, {"Temp", 1, "C"}};
    const std::vector<Signal> annotated = {
        {"EDF Annotations", 11, ""}, {"EEG O1", 16}, {"EDF Annotations", 5, ""}, {"DC", 8, "V"}};
    return {
        row<EDF90Reader>("EDF90", 6, EdfFile(), even),
        row<EDF90Reader>("EDF90MixedRates", 6, EdfFile(), mixed),
        row<EDF90Reader>("EDF90Annotated", 6, EdfFile().reserved("EDF+C"), annotated),
        row<LifelinesReader>("Lifelines", 41, EdfFile(), even),
        row<TelefactorEDFReader>("TelefactorEDF", 47, EdfFile(), even),
        row<BDFReader>("BDF", 48, EdfFile().bdf(), even),
    };
}

} // namespace kvsig::test
