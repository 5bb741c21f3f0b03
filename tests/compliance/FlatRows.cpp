#include "compliance/ReaderRow.h"
#include "kvsig/readers/CyberkineticsReader.h"
#include "kvsig/readers/MicromedReader.h"
#include "kvsig/readers/NeuroscanReader.h"
#include "support/BlackrockFile.h"
#include "support/MicromedFile.h"
#include "support/NeuroscanFile.h"
#include "support/SameSamples.h"

namespace kvsig::test {
namespace {

template <typename Reader>
ReaderRow row(const char* name, int type, SampleRecording (*sample)()) {
    return {name,
            type,
            0,
            sample,
            [] { return std::make_unique<Reader>(); },
            [] { return std::make_unique<FramesOnly<Reader>>(); }};
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

SampleRecording micromed(int bytes) {
    MicromedFile file;
    file.rate(32).sampleBytes(bytes).frames(752);
    for (const char* name : {"Fp1", "Fp2", "O1"})
        file.channel({.positive = name, .ground = bytes == 1 ? 128 : 32768});
    file.channel({.positive = "SpO2", .ground = bytes == 1 ? 128 : 32768, .unit = 100});
    file.note(5, "note").trigger(7, 9);
    SampleRecording made;
    made.fileName = "sample.trc";
    made.channels = 4;
    made.samplingRate = 32;
    made.sampleCount = made.storedSampleCount = 752;
    made.startClock = 23 * 3600 + 5 * 60 + 7;
    made.boundaries = MicromedFile::boundaries();
    made.bytes = file.bytes();
    made.raw = [file, bytes](int channel, long index) {
        return static_cast<std::int32_t>(file.stored(channel, index) - (bytes == 1 ? 128 : 32768));
    };
    return made;
}

SampleRecording micromed16() { return micromed(2); }
SampleRecording micromed8() { return micromed(1); }

SampleRecording neuroscan(NeuroscanFile file) {
    file.frames(4700).channels(3).event(3, 7, 0, 0).event(100, 0, 0, 0xE0);
    SampleRecording made;
    made.fileName = "sample.cnt";
    made.channels = 3;
    made.samplingRate = 200;
    made.sampleCount = made.storedSampleCount = 4700;
    made.startClock = 23 * 3600 + 5 * 60 + 7;
    made.boundaries = file.boundaries();
    made.bytes = file.bytes();
    made.raw = [file](int channel, long index) { return file.value(channel, index); };
    return made;
}

SampleRecording neuroscan16() { return neuroscan(NeuroscanFile()); }
SampleRecording neuroscan32() { return neuroscan(NeuroscanFile().sampleBytes(4).trailer(1)); }

} // namespace

std::vector<ReaderRow> flatRows() {
    return {
        row<MicromedReader>("Micromed8", 28, micromed8),
        row<MicromedReader>("Micromed16", 28, micromed16),
        row<NeuroscanReader>("Neuroscan16", 46, neuroscan16),
        row<NeuroscanReader>("Neuroscan32", 46, neuroscan32),
        row<CyberkineticsReader>("Blackrock21", 54, blackrockBare),
        row<CyberkineticsReader>("Blackrock23", 54, blackrockBlocks),
        row<CyberkineticsReader>("Blackrock30", 54, blackrockNetwork),
    };
}

} // namespace kvsig::test
