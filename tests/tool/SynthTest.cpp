#include "kvsig/registry/FrontDoor.h"
#include "support/Opened.h"
#include "support/Sine.h"
#include "tool/Command.h"
#include "tool/TimeOption.h"
#include "tool/synth/RecordBuffer.h"
#include "tool/synth/RecordingPlan.h"
#include "tool/synth/StableMath.h"
#include "tool/synth/SynthRecording.h"

#include <CLI/CLI.hpp>

namespace kvsig::tool {
namespace {

// A recording as it was planned and made, and as the library reads it.
struct Made {
    explicit Made(const SynthOptions& options) {
        std::string reason;
        plan = planRecording(options, reason).value();
        bytes = headerBytes(plan.header, reason);
        EXPECT_EQ(reason, "");
        SynthRecording recording(plan, options);
        for (std::int64_t i = 0; i < plan.header.records; ++i) {
            const auto record = recording.nextRecord();
            bytes.append(reinterpret_cast<const char*>(record.data()), record.size());
        }
        reader = openReader(dir.write("made", bytes).c_str(), 0, &reason);
        EXPECT_TRUE(reader) << reason;
        for (const OpenFinding& odd : dynamic_cast<DataReader&>(*reader).inspectFile())
            ADD_FAILURE() << odd.text;
    }
    // In physical units, at the rate of the fastest channel.
    std::vector<double> values(int channel) const {
        return test::physicalOf(dynamic_cast<DataReader&>(*reader), channel);
    }

    test::TempDir dir;
    RecordingPlan plan;
    std::string bytes;
    ReaderPtr reader;
};

SynthOptions lasting(double seconds) {
    SynthOptions options;
    options.duration = seconds;
    return options;
}

TEST(Synth, TheSeedAloneDecides) {
    SynthOptions options = lasting(3);
    const std::string first = Made(options).bytes;
    EXPECT_TRUE(Made(options).bytes == first);
    const std::string longer = Made(lasting(5)).bytes;
    constexpr std::size_t header = 6144;
    EXPECT_TRUE(longer.compare(header, first.size() - header, first, header) == 0)
        << "a longer recording begins like a shorter one";
    options.seed = 2;
    EXPECT_FALSE(Made(options).bytes == first);
}

TEST(Synth, EdfPlusHeaderAndLength) {
    const Made made(lasting(2.5));
    const auto has = [&](std::size_t offset, const std::string& text) {
        EXPECT_EQ(made.bytes.substr(offset, text.size() + 1), text + " ") << offset;
    };
    has(0, "0       X X X X" + std::string(73, ' ') + "Startdate 15-MAR-2024 X X synthetic");
    has(168, "15.03.2422.30.006144    EDF+C");
    has(236, "3       1       23"); // rounded up to whole records
    has(256, "EEG Fp1-Ref");
    has(256 + 16 * 21, "ECG");
    has(256 + 16 * 22, "EDF Annotations");
    for (const auto& [column, text] :
         {std::pair{96, "uV"}, {104, "-3276.8"}, {112, "3276.7"}, {120, "-32768"}, {216, "256"}})
        has(256 + static_cast<std::size_t>(column) * 23, text);
    EXPECT_EQ(made.bytes.size(), 6144U + 3U * made.plan.header.recordBytes());
}

TEST(Synth, PlainEdfAndBdfHaveNoAnnotations) {
    SynthOptions options = lasting(2);
    options.kind = EdfKind::edf;
    options.channels = 100;
    const Made edf(options);
    EXPECT_EQ(edf.bytes.substr(192, 44), std::string(44, ' '));
    EXPECT_STREQ(edf.reader->channelName(72), "E73-Ref");
    options.kind = EdfKind::bdf;
    const Made bdf(options);
    EXPECT_EQ(bdf.bytes.substr(192, 6), "24BIT ");
    EXPECT_EQ(bdf.reader->digitalLow(0), -8388608);
    EXPECT_EQ(bdf.bytes.size(), 256U * 101 + 2 * 3 * 100 * 256);
    const auto from16 = edf.values(12);
    const auto from24 = bdf.values(12);
    for (std::size_t k = 0; k < from16.size(); ++k)
        ASSERT_NEAR(from16[k], from24[k], 0.05 + 0.016 + 1e-6) << "half a step of each";
}

// The library looks for the time of every record: a gap or another byte would be told.
TEST(Synth, EveryRecordHoldsItsTimeAndTheEyes) {
    SynthOptions options = lasting(60);
    options.recordDuration = 0.1;
    options.rate = 200;
    const Made made(options);
    ASSERT_EQ(made.plan.header.records, 600);
    std::vector<std::string> texts;
    for (std::size_t at = made.bytes.find("Eyes "); at != std::string::npos;
         at = made.bytes.find("Eyes ", at + 1)) {
        texts.push_back(made.bytes.substr(at, made.bytes.find('\x14', at) - at));
        const double onset = std::stod(made.bytes.substr(made.bytes.rfind('+', at)));
        const auto record = (at - 6144) / made.plan.header.recordBytes();
        EXPECT_NEAR(onset, 0.1 * static_cast<double>(record) + 0.05, 0.0501);
    }
    ASSERT_GE(texts.size(), 5U) << "a change at least every 12 s";
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(texts[i], i % 2 == 0 ? "Eyes open" : "Eyes closed");
}

TEST(Synth, MainsHumStandsAtItsFrequencyOnly) {
    SynthOptions options = lasting(8);
    for (const double mains : {60.0, 50.0, 0.0}) {
        options.mains = mains;
        const auto x = Made(options).values(9); // Cz
        for (const double frequency : {50.0, 60.0}) {
            const double size = amplitudeAt(frequency / 256, x, 0, 2048);
            if (frequency == mains)
                EXPECT_THAT(size, AllOf(testing::Gt(3.8), testing::Lt(7.7)));
            else
                EXPECT_LT(size, 0.5) << mains;
        }
    }
}

TEST(Synth, AlphaComesWithClosedEyesAndBlinksWithOpenOnes) {
    const Made made(lasting(30));
    const auto timeOf = [&](const char* text, std::size_t from) {
        return std::stod(made.bytes.substr(made.bytes.rfind('+', made.bytes.find(text, from)) + 1));
    };
    const double close = timeOf("Eyes closed", 0);
    const double open = timeOf("Eyes open", made.bytes.find("Eyes closed"));
    const auto alpha = [&](int channel, double from, double to) {
        const auto x = made.values(channel);
        const auto first = static_cast<std::size_t>(from * 256);
        const std::size_t count = static_cast<std::size_t>(to * 256) - first;
        double power = 0;
        for (int tenth = 85; tenth <= 115; ++tenth)
            power += std::pow(amplitudeAt(tenth * 0.1 / 256, x, first, count), 2);
        return power;
    };
    EXPECT_GT(alpha(17, close + 1, open), 8 * alpha(0, close + 1, open)) << "O1 and Fp1";
    EXPECT_GT(alpha(17, close + 1, open), 8 * alpha(17, 1, close)) << "closed and open";

    const auto highest = [&](int channel) {
        const auto x = made.values(channel);
        return *std::max_element(x.begin() + 256, x.begin() + static_cast<long>(close * 256) - 256);
    };
    EXPECT_GT(highest(0), 80) << "positive at Fp1";
    EXPECT_LT(highest(13), 50) << "not at P3";
}

TEST(Synth, MixedRatesLayOutEachGroup) {
    SynthOptions options = lasting(2);
    options.kind = EdfKind::edf;
    options.rates = {{8, 512}, {8, 256}, {6, 64}, {4, 1}};
    const Made made(options);
    EXPECT_EQ(made.bytes.size(), 256U * 27 + 2 * 2 * (8 * 512 + 8 * 256 + 6 * 64 + 4));
    EXPECT_STREQ(made.reader->channelUnits(16), "mV");
    EXPECT_STREQ(made.reader->channelName(25), "SpO2 2");
    for (const double oxygen : made.values(22))
        EXPECT_NEAR(oxygen, 96, 4);
    const auto coarse = made.values(8);
    options.rates = {{16, 512}};
    const auto fine = Made(options).values(8);
    for (std::size_t k = 0; k < coarse.size(); k += 2)
        ASSERT_NEAR(coarse[k], (fine[k] + fine[k + 1]) / 2, 0.1001)
            << "a slower channel averages what it cannot hold";

    options = lasting(4);
    options.mixed = true;
    options.recordDuration = 2;
    const Made standard(options);
    ASSERT_EQ(standard.plan.header.signals.size(), 22U + 4 + 1);
    EXPECT_EQ(standard.plan.header.signals[22].samplesPerRecord, 64) << "breathing";
    EXPECT_EQ(standard.plan.header.signals[25].samplesPerRecord, 2) << "temperature, 1 Hz";
    EXPECT_STREQ(standard.reader->channelUnits(25), "degC");
}

TEST(Synth, ValuesAreRoundedClippedAndStoredLowByteFirst) {
    EdfHeader header;
    EdfSignal signal{"x", "", "uV", -100, 100, -1000, 1000, 5};
    header.signals = {signal};
    const std::vector<float> values{-0.1F, 0.26F, 1e9F, -1e9F, 100.0F};
    const auto stored = [&](EdfKind kind) {
        header.kind = kind;
        RecordBuffer buffer(header);
        buffer.put(0, 0, values);
        std::string text;
        for (const std::byte b : buffer.bytes())
            text += static_cast<char>(b);
        return text;
    };
    // -1, 3, 1000, -1000, 1000
    EXPECT_EQ(stored(EdfKind::edf), std::string("\xFF\xFF\x03\0\xE8\x03\x18\xFC\xE8\x03", 10));
    EXPECT_EQ(stored(EdfKind::bdf),
              std::string("\xFF\xFF\xFF\x03\0\0\xE8\x03\0\x18\xFC\xFF\xE8\x03\0", 15));
}

TEST(Synth, RefusesWhatCannotBeWritten) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const auto refusal = [](auto change) {
        SynthOptions options;
        change(options);
        std::string reason;
        EXPECT_FALSE(planRecording(options, reason));
        return reason;
    };
    for (const double bad : {0.0, -1.0, nan, inf, 1e300}) {
        EXPECT_THAT(refusal([=](auto& o) { o.duration = bad; }), HasSubstr("--duration"));
        EXPECT_THAT(refusal([=](auto& o) { o.rate = bad; }), HasSubstr("--rate"));
        EXPECT_THAT(refusal([=](auto& o) { o.recordDuration = bad; }), HasSubstr("--record-dur"));
        EXPECT_THAT(refusal([=](auto& o) { o.channels = bad; }), HasSubstr("--channels"));
        EXPECT_THAT(refusal([=](auto& o) { o.rates = {{1, bad}}; }), HasSubstr("--rates"));
        EXPECT_THAT(refusal([=](auto& o) { o.rates = {{bad, 1}}; }), HasSubstr("--rates"));
    }
    EXPECT_EQ(refusal([](auto& o) { o.rate = 256.5; }),
              "--rate 256.5: a record of 1 s would hold 256.5 samples, which is no whole number "
              "above 0");
    EXPECT_THAT(refusal([=](auto& o) { o.mains = nan; }), HasSubstr("--mains"));
    EXPECT_THAT(refusal([](auto& o) { o.channels = 9999; }), HasSubstr("9998"));
    EXPECT_THAT(refusal([](auto& o) { o.rates = {{5000, 1}, {5000, 2}}; }), HasSubstr("10000"));
    EXPECT_THAT(refusal([](auto& o) { o.recordDuration = 1.0 / 3; }), HasSubstr("8 characters"));
    EXPECT_THAT(refusal([](auto& o) { o.recordDuration = 1e-5, o.rate = 1e5, o.duration = 1e4; }),
                HasSubstr("99999999 records"));
    EXPECT_THAT(refusal([](auto& o) { o.recordDuration = 1e5; }), HasSubstr("MiB"));
}

TEST(Synth, OddRatesStayFinite) {
    for (const double rate : {0.5, 1.0, 60.0, 20000.0}) {
        SynthOptions options = lasting(rate < 100 ? 600 : 2);
        options.rate = rate;
        options.recordDuration = 2;
        const Made made(options);
        for (const int channel : {0, 17, 21})
            for (const double x : made.values(channel))
                ASSERT_LT(std::fabs(x), 2000) << rate;
    }
}

TEST(Synth, ReadsStartTimes) {
    const auto start = readStartTime("29.02.24 23.59.58");
    ASSERT_TRUE(start);
    EXPECT_EQ(start->year, 2024);
    EXPECT_EQ(start->second, 58);
    EXPECT_EQ(readStartTime("01.01.85 00.00.00")->year, 1985);
    for (const char* bad : {"", "29.02.23 10.00.00", "1.1.24", "01.01.24 24.00.00"})
        EXPECT_FALSE(readStartTime(bad)) << bad;
}

TEST(Synth, StableFunctionsAgreeWithTheSystems) {
    for (int step = -100; step <= 100; ++step) {
        const double x = step * 0.37;
        EXPECT_NEAR(stableSin(x), std::sin(x), 1e-12);
        EXPECT_NEAR(stableCos(x), std::cos(x), 1e-12);
        EXPECT_NEAR(stableExp(x) / std::exp(x), 1, 1e-11);
    }
}

TEST(TimeOption, TakesClockTextsOnly) {
    double t = 0;
    EXPECT_TRUE(readTime("1:02:03:04.5", t));
    EXPECT_EQ(t, 93784.5);
    EXPECT_TRUE(readTime("90", t));
    EXPECT_EQ(t, 90);
    for (const char* bad :
         {"", "abc", "10x", "-1", "1:", ":5", "1.2.3", "1.5:30", "5.", "1:2:3:4:5", "nan", "1e3"})
        EXPECT_FALSE(readTime(bad, t)) << bad;
}

TEST(SynthCommand, WritesOrSaysWhyNot) {
    const test::TempDir dir;
    const auto run = [](const std::string& arguments) {
        CLI::App app;
        int exitCode = -1;
        addSynthCommand(app, exitCode);
        app.parse("synth -q " + arguments);
        return exitCode;
    };
    const std::string file = dir.file("x.edf");
    EXPECT_EQ(run("--duration 1:00 --seed 18446744073709551615 --rates 2x128,1x1 --format EDF -o " +
                  file),
              exitWell);
    EXPECT_EQ(fs::file_size(file), 256U * 4 + 60 * 2 * 257);
    const std::string wide = dir.file("x.BDF");
    EXPECT_EQ(run("--duration 1 -o " + wide), exitWell);
    EXPECT_EQ(dir.read("x.BDF").substr(0, 8), "\xFF"
                                              "BIOSEMI")
        << "by the ending";
    testing::internal::CaptureStderr();
    EXPECT_EQ(run("--duration 1 -o " + dir.file("none/x.edf")), exitFailed);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("x.edf: no such directory\n"));
    for (const char* wrong :
         {"", "-o x --rate many", "-o x --rate 0", "-o x --duration soon", "-o x --start now",
          "-o x --rates 8*512", "-o x --rates 1x1 --channels 2", "-o x --format wav",
          "-o x --seed 18446744073709551616"})
        EXPECT_THROW(run(wrong), CLI::ParseError) << wrong;
}

} // namespace
} // namespace kvsig::tool
