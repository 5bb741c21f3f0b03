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
ReaderRow row(const char* name, int type, std::function<SampleRecording()> sample) {
    return {name,
            type,
            0,
            std::move(sample),
            [] { return std::make_unique<Reader>(); },
            [] { return std::make_unique<FramesOnly<Reader>>(); }};
}

constexpr long frames = 765; // 25.5 s at 30 Hz: several pages of five seconds, the last one short

SampleRecording recordingOf(const char* fileName, int channels, double samplingRate, long count,
                            double startClock) {
    SampleRecording made;
    made.fileName = fileName;
    made.channels = channels;
    made.samplingRate = samplingRate;
    made.sampleCount = made.storedSampleCount = count;
    made.startClock = startClock;
    made.raw = [](int channel, long index) { return rampCount(channel, index); };
    return made;
}

template <typename File>
void put(SampleRecording& made, const File& file) {
    made.bytes = file.bytes();
    made.boundaries = file.boundaries();
}

SampleRecording blackrock(BlackrockFile file) {
    SampleRecording made = recordingOf("sample.ns1", 3, 30.0, frames, 14 * 3600 + 7 * 60 + 9.25);
    put(made, file.period(1000).channels(3).append("stray"));
    return made;
}

SampleRecording blackrockBare() {
    SampleRecording made = blackrock(BlackrockFile("NEURALSG", 0, 0).block(0, frames));
    made.companions = {
        {"sample.nev",
         BlackrockEventFile().scale(1, 500).label(2, "left").digital(3000, 7).bytes()}};
    return made;
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
    SampleRecording made = recordingOf("sample.EEG", 3, 30.0, frames, 16 * 3600 + 16);
    put(made, file.rate(30).codes({0, 1, 42}));
    made.companions = {
        {"sample.21E", "[ELECTRODE]\r\n0000=C3\r\n0001=C4\r\n[REFERENCE]\r\n0042=$X\r\n"},
        {"sample.PNT", nihonKohdenPage()},
        {"sample.LOG", NihonKohdenLog()
                           .entry("A1+A2 OFF, of two parts", "000002", "(190403160018)", "500000")
                           .bytes()}};
    made.otherDoor = "sample.PNT";
    return made;
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
    const double start = oleDays(2014, 3, 26, 50829.25);
    const NervusFile::Made file = NervusFile()
                                      .channel({.label = "Fp1", .rate = 30})
                                      .channel({.label = "Fp2", .rate = 30})
                                      .channel({.label = "SpO2", .rate = 10})
                                      .segment(start, 25.5)
                                      .event(NervusFile::seizure, start, 1.5, 0.5, "left")
                                      .make();
    SampleRecording made = recordingOf("sample.e", 3, 30.0, frames, 50829.25);
    made.boundaries = file.boundaries;
    made.bytes = file.bytes;
    made.raw = [](int channel, long index) {
        return rampCount(channel, channel == 2 ? index / 3 : index);
    };
    return made;
}

SampleRecording micromed(int bytes) {
    MicromedFile file;
    const int ground = bytes == 1 ? 128 : 32768;
    for (const char* name : {"Fp1", "Fp2", "O1"})
        file.channel({.positive = name, .ground = ground});
    file.channel({.positive = "SpO2", .ground = ground, .unit = 100});
    file.rate(32).sampleBytes(bytes).frames(752).note(5, "note").trigger(7, 9);
    SampleRecording made = recordingOf("sample.trc", 4, 32, 752, 23 * 3600 + 5 * 60 + 7);
    put(made, file);
    // 32 bits do not carry 4 unsigned bytes less a low ground: they are counted from the middle.
    const std::int64_t zero = bytes == 4 ? std::int64_t{1} << 31 : ground;
    made.raw = [file, zero](int channel, long index) {
        return static_cast<std::int32_t>(file.stored(channel, index) - zero);
    };
    made.companions = {{"sample.evt", "<EventFile><Events><Event><Begin>2026-07-04T23:05:09.5"
                                      "</Begin><End>2026-07-04T23:05:10</End><Text>a</Text>"
                                      "<ExtraText>left</ExtraText></Event></Events></EventFile>"}};
    return made;
}

SampleRecording neuroscan(NeuroscanFile file) {
    SampleRecording made = recordingOf("sample.cnt", 3, 200, 4700, 23 * 3600 + 5 * 60 + 7);
    put(made, file.frames(4700).channels(3).event(3, 7, 0, 0).event(100, 0, 0, 0xE0));
    made.raw = [file](int channel, long index) { return file.value(channel, index); };
    return made;
}

} // namespace

std::vector<ReaderRow> flatRows() {
    return {
        row<MicromedReader>("Micromed8", 28, [] { return micromed(1); }),
        row<MicromedReader>("Micromed16", 28, [] { return micromed(2); }),
        row<MicromedReader>("Micromed32", 28, [] { return micromed(4); }),
        row<NeuroscanReader>("Neuroscan16", 46, [] { return neuroscan({}); }),
        row<NeuroscanReader>("Neuroscan32", 46,
                             [] { return neuroscan(NeuroscanFile().sampleBytes(4).trailer(1)); }),
        row<NeuroscanReader>("NeuroscanBlocks", 46,
                             [] { return neuroscan(NeuroscanFile().blocks(60).smoothSignal()); }),
        row<CyberkineticsReader>("Blackrock21", 54, blackrockBare),
        row<CyberkineticsReader>(
            "Blackrock23", 54,
            [] { return blackrock(BlackrockFile("NEURALCD", 2, 3).block(0, frames)); }),
        row<CyberkineticsReader>("Blackrock30", 54, blackrockNetwork),
        row<NK2100Reader>(
            "NihonKohden", 19,
            [] { return nihonKohden(NihonKohdenFile().block("20190403160016", frames, 255)); }),
        row<NK2100Reader>("NihonKohdenPause", 19, nihonKohdenPause),
        row<NervusReader>("Nervus", 52, nervus),
    };
}

} // namespace kvsig::test
