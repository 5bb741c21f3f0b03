#include "support/Sine.h"
#include "support/TempDir.h"
#include "tool/Command.h"
#include "tool/TimeOption.h"
#include "tool/synth/RecordBuffer.h"
#include "tool/synth/RecordingPlan.h"
#include "tool/synth/StableMath.h"
#include "tool/synth/SynthRecording.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace kvsig::tool {
namespace {

using testing::HasSubstr;

/// The bytes of a recording, read back by the format's book.
struct Made {
    std::string bytes;

    std::string field(std::size_t offset, std::size_t width) const {
        std::string text = bytes.substr(offset, width);
        text.resize(text.find_last_not_of(' ') + 1);
        return text;
    }
    std::size_t number(std::size_t offset, std::size_t width) const {
        return std::stoul(field(offset, width));
    }
    std::size_t signals() const { return number(252, 4); }
    std::size_t records() const { return number(236, 8); }
    std::size_t width() const { return bytes[0] == '0' ? 2 : 3; }
    std::string label(std::size_t i) const { return field(256 + 16 * i, 16); }
    /// A column of 8-character fields: 96 units, 104 physical minimum ... 216 samples per record.
    std::string column(std::size_t offset, std::size_t i) const {
        return field(256 + offset * signals() + 8 * i, 8);
    }
    std::size_t samples(std::size_t i) const { return std::stoul(column(216, i)); }
    std::size_t recordSamples() const {
        std::size_t sum = 0;
        for (std::size_t i = 0; i < signals(); ++i)
            sum += samples(i);
        return sum;
    }
    std::size_t position(std::size_t record, std::size_t signal) const {
        std::size_t before = record * recordSamples();
        for (std::size_t i = 0; i < signal; ++i)
            before += samples(i);
        return number(184, 8) + before * width();
    }
    std::vector<double> values(std::size_t i) const {
        const double low = std::stod(column(104, i));
        const double digitalLow = std::stod(column(120, i));
        const double step =
            (std::stod(column(112, i)) - low) / (std::stod(column(128, i)) - digitalLow);
        std::vector<double> values;
        for (std::size_t r = 0; r < records(); ++r) {
            std::size_t at = position(r, i);
            for (std::size_t k = 0; k < samples(i); ++k, at += width()) {
                double digital = static_cast<signed char>(bytes[at + width() - 1]);
                for (std::size_t b = width() - 1; b-- > 0;)
                    digital = digital * 256 + static_cast<unsigned char>(bytes[at + b]);
                values.push_back((digital - digitalLow) * step + low);
            }
        }
        return values;
    }
};

Made make(const SynthOptions& options) {
    std::string reason;
    const auto plan = planRecording(options, reason);
    EXPECT_TRUE(plan) << reason;
    Made made{headerBytes(plan->header, reason)};
    EXPECT_EQ(reason, "");
    SynthRecording recording(*plan, options);
    for (std::int64_t i = 0; i < plan->header.records; ++i) {
        const auto bytes = recording.nextRecord();
        made.bytes.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return made;
}

SynthOptions lasting(double seconds) {
    SynthOptions options;
    options.duration = seconds;
    return options;
}

TEST(Synth, TheSeedAloneDecides) {
    SynthOptions options = lasting(3);
    const std::string first = make(options).bytes;
    EXPECT_TRUE(make(options).bytes == first);
    const std::string longer = make(lasting(5)).bytes;
    constexpr std::size_t header = 6144;
    EXPECT_TRUE(longer.compare(header, first.size() - header, first, header) == 0)
        << "a longer recording begins like a shorter one";
    options.seed = 2;
    EXPECT_FALSE(make(options).bytes == first);
}

TEST(Synth, EdfPlusHeaderAndLength) {
    const Made made = make(lasting(2.5));
    EXPECT_EQ(made.field(0, 168),
              "0       X X X X" + std::string(73, ' ') + "Startdate 15-MAR-2024 X X synthetic");
    EXPECT_EQ(made.field(168, 24), "15.03.2422.30.006144");
    EXPECT_EQ(made.field(192, 44), "EDF+C");
    EXPECT_EQ(made.field(236, 20), "3       1       23") << "rounded up to whole records";
    EXPECT_EQ(made.label(0), "EEG Fp1-Ref");
    EXPECT_EQ(made.label(21), "ECG");
    EXPECT_EQ(made.label(22), "EDF Annotations");
    const std::pair<std::size_t, const char*> columns[] = {{96, "uV"},      {104, "-3276.8"},
                                                           {112, "3276.7"}, {120, "-32768"},
                                                           {128, "32767"},  {216, "256"}};
    for (const auto& [column, text] : columns)
        EXPECT_EQ(made.column(column, 0), text);
    EXPECT_EQ(made.bytes.size(), 6144U + 6U * made.recordSamples());
}

TEST(Synth, PlainEdfAndBdfHaveNoAnnotations) {
    SynthOptions options = lasting(2);
    options.kind = EdfKind::edf;
    options.channels = 100;
    const Made edf = make(options);
    EXPECT_EQ(edf.field(192, 44), "");
    EXPECT_EQ(edf.label(72), "EEG E73-Ref");
    options.kind = EdfKind::bdf;
    const Made bdf = make(options);
    EXPECT_EQ(bdf.bytes.substr(0, 8), "\xFF"
                                      "BIOSEMI");
    EXPECT_EQ(bdf.field(192, 44), "24BIT");
    EXPECT_EQ(bdf.column(120, 0), "-8388608");
    EXPECT_EQ(bdf.bytes.size(), 256U * 101 + 2 * 3 * 100 * 256);
    const auto from16 = edf.values(12);
    const auto from24 = bdf.values(12);
    for (std::size_t k = 0; k < from16.size(); ++k)
        ASSERT_NEAR(from16[k], from24[k], 0.05 + 0.016 + 1e-6) << "half a step of each";
}

TEST(Synth, EveryRecordHoldsItsTimeAndTheEyes) {
    SynthOptions options = lasting(60);
    options.recordDuration = 0.1;
    options.rate = 200;
    const Made made = make(options);
    ASSERT_EQ(made.records(), 600U);
    std::vector<std::string> texts;
    for (std::size_t r = 0; r < 600; ++r) {
        const std::string lists = made.bytes.substr(made.position(r, 22), 2 * made.samples(22));
        const std::string onset = std::to_string(r / 10) + "." + std::to_string(r % 10);
        const std::string keeper = "+" + onset + "\x14\x14" + '\0';
        ASSERT_EQ(lists.substr(0, keeper.size()), keeper);
        std::size_t at = keeper.size();
        for (; at < lists.size() && lists[at] == '+'; at = lists.find('\0', at) + 1) {
            const std::size_t mark = lists.find('\x14', at);
            const double time = std::stod(lists.substr(at, mark - at));
            EXPECT_NEAR(time, std::stod(onset) + 0.05, 0.0501);
            const std::size_t end = lists.find('\x14', mark + 1);
            ASSERT_EQ(lists[end + 1], '\0');
            texts.push_back(lists.substr(mark + 1, end - mark - 1));
        }
        EXPECT_EQ(lists.find_first_not_of('\0', at), std::string::npos) << "zeros to the end";
    }
    ASSERT_GE(texts.size(), 5U) << "a change at least every 12 s";
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(texts[i], i % 2 == 0 ? "Eyes open" : "Eyes closed");
}

TEST(Synth, MainsHumStandsAtItsFrequencyOnly) {
    SynthOptions options = lasting(8);
    for (const double mains : {60.0, 50.0, 0.0}) {
        options.mains = mains;
        const auto x = make(options).values(9); // Cz
        for (const double frequency : {50.0, 60.0}) {
            const double size = amplitudeAt(frequency / 256, x, 0, 2048);
            if (frequency == mains)
                EXPECT_THAT(size, testing::AllOf(testing::Gt(3.8), testing::Lt(7.7)));
            else
                EXPECT_LT(size, 0.5) << mains;
        }
    }
}

TEST(Synth, AlphaComesWithClosedEyesAndBlinksWithOpenOnes) {
    const Made made = make(lasting(30));
    std::vector<double> changes;
    for (const char* text : {"Eyes closed", "Eyes open"}) {
        const std::size_t from = changes.empty() ? 0 : made.bytes.find("Eyes closed");
        const std::size_t at = made.bytes.find(text, from);
        ASSERT_NE(at, std::string::npos);
        changes.push_back(std::stod(made.bytes.substr(made.bytes.rfind('+', at) + 1)));
    }
    const auto alpha = [&](std::size_t channel, double from, double to) {
        const auto x = made.values(channel);
        const auto first = static_cast<std::size_t>(from * 256);
        const std::size_t count = static_cast<std::size_t>(to * 256) - first;
        double power = 0;
        for (int tenth = 85; tenth <= 115; ++tenth)
            power += std::pow(amplitudeAt(tenth * 0.1 / 256, x, first, count), 2);
        return power;
    };
    const double close = changes[0];
    const double open = changes[1];
    EXPECT_GT(alpha(17, close + 1, open), 8 * alpha(0, close + 1, open)) << "O1 and Fp1";
    EXPECT_GT(alpha(17, close + 1, open), 8 * alpha(17, 1, close)) << "closed and open";

    const auto highest = [&](std::size_t channel) {
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
    const Made made = make(options);
    EXPECT_EQ(made.recordSamples(), 8U * 512 + 8 * 256 + 6 * 64 + 4);
    EXPECT_EQ(made.samples(8), 256U);
    EXPECT_EQ(made.column(96, 16), "mV");
    EXPECT_EQ(made.label(25), "SpO2 2");
    for (const double oxygen : made.values(22))
        EXPECT_NEAR(oxygen, 96, 4);

    options.rates = {{16, 512}};
    const auto fine = make(options).values(8);
    const auto coarse = made.values(8);
    for (std::size_t k = 0; k < coarse.size(); ++k)
        ASSERT_NEAR(coarse[k], (fine[2 * k] + fine[2 * k + 1]) / 2, 0.1001)
            << "a slower channel averages what it cannot hold";
}

TEST(Synth, StandardMixKeepsSlowSignalsWhole) {
    SynthOptions options = lasting(4);
    options.mixed = true;
    options.recordDuration = 2;
    const Made made = make(options);
    ASSERT_EQ(made.signals(), 22U + 4 + 1);
    EXPECT_EQ(made.samples(22), 64U) << "breathing";
    EXPECT_EQ(made.samples(25), 2U) << "temperature, 1 Hz";
    EXPECT_EQ(made.column(96, 25), "degC");
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
        SynthOptions options;
        options.rate = rate;
        options.recordDuration = 2;
        options.duration = rate < 100 ? 600 : 2;
        const Made made = make(options);
        for (const std::size_t channel : {0U, 17U, 21U})
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
    EXPECT_EQ(std::filesystem::file_size(file), 256U * 4 + 60 * 2 * 257);
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
