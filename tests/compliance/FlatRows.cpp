#include "compliance/ReaderRow.h"
#include "kvsig/readers/CyberkineticsReader.h"
#include "kvsig/readers/NK2100Reader.h"
#include "kvsig/readers/NervusReader.h"
#include "support/BlackrockFile.h"
#include "support/NervusFile.h"
#include "support/NihonKohdenFile.h"

namespace kvsig::test {
namespace {

template <typename Reader>
ReaderRow row(const char* name, int type, SampleRecording (*sample)()) {
    return {name, type, 0, sample, [] { return std::make_unique<Reader>(); }};
}

constexpr long frames = 765; // 25.5 s: several pages of five seconds, the last one short

SampleRecording blackrock(BlackrockFile file) {
    file.period(1000).channels(3);
    SampleRecording made;
    made.fileName = "sample.ns1";
    made.channels = 3;
    made.samplingRate = 30.0;
    made.sampleCount = made.storedSampleCount = frames;
    made.startClock = 14 * 3600 + 7 * 60 + 9.25;
    made.boundaries = file.boundaries();
    made.bytes = file.append("stray").bytes();
    made.raw = [](int channel, long index) { return rampCount(channel, index); };
    return made;
}

SampleRecording blackrockBare() {
    SampleRecording made = blackrock(BlackrockFile("NEURALSG", 0, 0).block(0, frames));
    made.startClock = 0;
    return made;
}

SampleRecording blackrockBlocks() {
    return blackrock(BlackrockFile("NEURALCD", 2, 3).block(0, frames));
}

// A network clock: every sample is a block of its own.
SampleRecording blackrockNetwork() {
    BlackrockFile file("BRSMPGRP", 3, 0);
    file.ticks(1'000'000'000);
    for (std::uint64_t i = 0; i < frames; ++i)
        file.block(i * 33'333'333, 1);
    return blackrock(file);
}

SampleRecording nihonKohden() {
    const NihonKohdenFile file =
        NihonKohdenFile().rate(30).codes({0, 1, 42}).block("20190403160016", frames);
    SampleRecording made;
    made.fileName = "sample.EEG";
    made.channels = 3;
    made.samplingRate = 30.0;
    made.sampleCount = made.storedSampleCount = frames;
    made.startClock = 16 * 3600 + 16;
    made.boundaries = file.boundaries();
    made.bytes = file.bytes();
    made.raw = [](int channel, long index) { return rampCount(channel, index); };
    return made;
}

// The third channel has a third of the others' rate.
SampleRecording nervus() {
    const NervusFile::Made file = NervusFile()
                                      .channel({.label = "Fp1", .rate = 30})
                                      .channel({.label = "Fp2", .rate = 30})
                                      .channel({.label = "SpO2", .rate = 10})
                                      .segment(oleDays(2014, 3, 26, 50829.25), 25.5)
                                      .make();
    SampleRecording made;
    made.fileName = "sample.e";
    made.channels = 3;
    made.samplingRate = 30.0;
    made.sampleCount = made.storedSampleCount = frames;
    made.startClock = 50829.25;
    made.boundaries = file.boundaries;
    made.bytes = file.bytes;
    made.raw = [](int channel, long index) {
        return rampCount(channel, channel == 2 ? index / 3 : index);
    };
    return made;
}

} // namespace

std::vector<ReaderRow> flatRows() {
    return {
        row<CyberkineticsReader>("Blackrock21", 54, blackrockBare),
        row<CyberkineticsReader>("Blackrock23", 54, blackrockBlocks),
        row<CyberkineticsReader>("Blackrock30", 54, blackrockNetwork),
        row<NK2100Reader>("NihonKohden", 19, nihonKohden),
        row<NervusReader>("Nervus", 52, nervus),
    };
}

} // namespace kvsig::test
