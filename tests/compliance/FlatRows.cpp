#include "compliance/ReaderRow.h"
#include "kvsig/readers/CyberkineticsReader.h"
#include "kvsig/readers/MicromedReader.h"
#include "kvsig/readers/NK2100Reader.h"
#include "kvsig/readers/NervusReader.h"
#include "kvsig/readers/NeuroscanReader.h"
#include "support/BlackrockFile.h"
#include "support/MicromedFile.h"
#include "support/NervusFile.h"
#include "support/NeuroscanFile.h"
#include "support/NihonKohdenFile.h"
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
    made.companions = {
        {"sample.nev",
         BlackrockEventFile().scale(1, 500).label(2, "left").digital(3000, 7).bytes()}};
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
    SampleRecording made = blackrock(file);
    made.companions = {{"sample.nev", BlackrockEventFile(true)
                                          .ticks(1'000'000'000)
                                          .comment(66'666'666, "half ")
                                          .comment(~std::uint64_t{0}, "and half")
                                          .bytes()}};
    return made;
}

SampleRecording nihonKohden(NihonKohdenFile file) {
    file.rate(30).codes({0, 1, 42});
    SampleRecording made;
    made.fileName = "sample.EEG";
    made.companions = {
        {"sample.21E", "[ELECTRODE]\r\n0000=C3\r\n0001=C4\r\n[REFERENCE]\r\n0042=$X\r\n"},
        {"sample.PNT", nihonKohdenPage()},
        {"sample.LOG", NihonKohdenLog()
                           .entry("A1+A2 OFF, of two parts", "000002", "(190403160018)", "500000")
                           .bytes()}};
    made.channels = 3;
    made.samplingRate = 30.0;
    made.sampleCount = made.storedSampleCount = frames;
    made.startClock = 16 * 3600 + 16;
    made.boundaries = file.boundaries();
    made.bytes = file.bytes();
    made.raw = [](int channel, long index) { return rampCount(channel, index); };
    return made;
}

SampleRecording nihonKohdenWhole() {
    return nihonKohden(NihonKohdenFile().block("20190403160016", frames, 255));
}

SampleRecording nihonKohdenPause() {
    SampleRecording made = nihonKohden(NihonKohdenFile()
                                           .block("20190403160016", 300, 100)
                                           .block("20190403160100", frames - 300, 155));
    made.pauseAt = 10.0;
    made.pause = 34.0;
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
    // 32 bits do not carry 4 unsigned bytes less a low ground: they are counted from the middle.
    const std::int64_t zero = bytes == 1 ? 128 : bytes == 2 ? 32768 : std::int64_t{1} << 31;
    made.raw = [file, zero](int channel, long index) {
        return static_cast<std::int32_t>(file.stored(channel, index) - zero);
    };
    made.companions = {{"sample.evt", "<EventFile><Events><Event><Begin>2026-07-04T23:05:09.5"
                                      "</Begin><End>2026-07-04T23:05:10</End><Text>a</Text>"
                                      "<ExtraText>left</ExtraText></Event></Events></EventFile>"}};
    return made;
}

SampleRecording micromed8() { return micromed(1); }
SampleRecording micromed16() { return micromed(2); }
SampleRecording micromed32() { return micromed(4); }

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
SampleRecording neuroscanBlocks() { return neuroscan(NeuroscanFile().blocks(60).smoothSignal()); }
SampleRecording neuroscan32() { return neuroscan(NeuroscanFile().sampleBytes(4).trailer(1)); }

} // namespace

std::vector<ReaderRow> flatRows() {
    return {
        row<MicromedReader>("Micromed8", 28, micromed8),
        row<MicromedReader>("Micromed16", 28, micromed16),
        row<MicromedReader>("Micromed32", 28, micromed32),
        row<NeuroscanReader>("Neuroscan16", 46, neuroscan16),
        row<NeuroscanReader>("Neuroscan32", 46, neuroscan32),
        row<NeuroscanReader>("NeuroscanBlocks", 46, neuroscanBlocks),
        row<CyberkineticsReader>("Blackrock21", 54, blackrockBare),
        row<CyberkineticsReader>("Blackrock23", 54, blackrockBlocks),
        row<CyberkineticsReader>("Blackrock30", 54, blackrockNetwork),
        row<NK2100Reader>("NihonKohden", 19, nihonKohdenWhole),
        row<NK2100Reader>("NihonKohdenPause", 19, nihonKohdenPause),
        row<NervusReader>("Nervus", 52, nervus),
    };
}

} // namespace kvsig::test
