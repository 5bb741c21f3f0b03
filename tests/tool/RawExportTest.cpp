#include "kvsig/kvsig.h"
#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/Opened.h"

namespace kvsig::test {
namespace {

std::vector<std::int32_t> countsOf(IDataReader& reader, int channel) {
    return rawOf(dynamic_cast<DataReader&>(reader), channel, 0, reader.sampleCount() - 1);
}

class RawExport : public CommandTest {
  protected:
    CommandResult run(const std::string& arguments) const { return command("export " + arguments); }
    ReaderPtr open(const char* name) {
        std::string error;
        ReaderPtr reader = openReader(dir.file(name).c_str(), 0, &error);
        EXPECT_TRUE(reader) << error;
        return reader;
    }
};

TEST_F(RawExport, SixteenBitCountsSurviveExactly) {
    EdfFile file = EdfFile().patient("X F 04-JUL-1989 Doe_Jane").reserved("EDF+C");
    file.signal("EEG T7-A1", 4).signal("ECG", 4).signal("EDF Annotations", 8).records(5);
    file.writeTo(dir.file("a.edf"));
    const CommandResult made = run("a.edf -o a.raw");
    ASSERT_EQ(made.exitCode, 0) << made.err;
    EXPECT_THAT(made.err, IsEmpty());
    const ReaderPtr from = open("a.edf");
    const ReaderPtr to = open("a.lay");
    EXPECT_EQ(to->channelCount(), 2);
    EXPECT_EQ(to->samplingRate(), from->samplingRate());
    EXPECT_EQ(to->getClockTime(1.0), from->getClockTime(1.0));
    EXPECT_STREQ(to->channelName(0), "T7-A1");
    EXPECT_STREQ(to->channelName(1), "ECG-Ref");
    EXPECT_TRUE(to->isMap1010());
    for (const int channel : {0, 1})
        EXPECT_EQ(countsOf(*to, channel), countsOf(*from, channel));
    EXPECT_EQ(to->calibration(1), from->calibration(1));
    // Who was recorded goes out only when asked for.
    EXPECT_FALSE(to->hasPatientInfo() && *to->patientRec()->name().c_str());
    ASSERT_EQ(run("a.edf --format raw --show-patient -o b.raw").exitCode, 0);
    EXPECT_STREQ(open("b.lay")->patientRec()->name().c_str(), "Doe_Jane");
}

TEST_F(RawExport, RealRecordingsReadBackTheirCounts) {
    const char* folder = std::getenv("KVSIG_RECORDINGS");
    if (!folder)
        GTEST_SKIP() << "KVSIG_RECORDINGS is not set";
    for (const char* name : {"edf_plus_c/test_stim_channel.edf", "edf_plus_c/test_utf8.edf"}) {
        const std::string path = std::string(folder) + "/" + name;
        ASSERT_EQ(run("'" + path + "' -o copy.raw").exitCode, 0);
        const ReaderPtr from = openReader(path.c_str());
        const ReaderPtr to = open("copy.lay");
        ASSERT_TRUE(from && to);
        EXPECT_EQ(to->samplingRate(), from->samplingRate());
        EXPECT_EQ(to->channelCount(), from->channelCount());
        for (int i = 0; i < from->channelCount(); ++i) {
            EXPECT_EQ(countsOf(*to, i), countsOf(*from, i)) << name << " " << i;
            EXPECT_EQ(to->calibration(i), from->calibration(i));
        }
    }
}

TEST_F(RawExport, CalibrationsInWholeStepsKeepTheirValues) {
    EdfFile file = EdfFile().signal("A-R", 4).physical("-100", "100").digital("-1000", "1000");
    file.signal("B-R", 4).physical("300", "-300").digital("-1000", "1000").records(4);
    file.samples([](int signal, std::int64_t i) {
        return static_cast<std::int32_t>(i * 100 - 700 + signal);
    });
    file.writeTo(dir.file("a.edf"));
    ASSERT_EQ(run("a.edf -o a.raw").exitCode, 0);
    const auto from = countsOf(*open("a.edf"), 1);
    const auto to = countsOf(*open("a.lay"), 1);
    for (std::size_t i = 0; i < from.size(); ++i)
        ASSERT_EQ(to[i], -3 * from[i]);
}

TEST_F(RawExport, SaysWhatItLoses) {
    EdfFile file = EdfFile().signal("A", 4).physical("-100", "100");
    file.signal("Temp", 4).units("DegC").physical("34", "40").records(3).writeTo(dir.file("a.edf"));
    const CommandResult made = run("a.edf -o out.raw --from 1");
    ASSERT_EQ(made.exitCode, 0);
    EXPECT_THAT(made.err, AllOf(HasSubstr("values are rounded to steps of"),
                                HasSubstr("the unit of Temp (DegC) is not kept")));
    const ReaderPtr from = open("a.edf");
    const ReaderPtr to = open("out.lay");
    EXPECT_EQ(to->sampleCount(), 8);
    EXPECT_EQ(to->getClockTime(0.0), from->getClockTime(1.0));
    float ours[8];
    float theirs[8];
    from->getData(0, 4, 11, theirs, 1.0, 0);
    to->getData(0, 0, 7, ours, 1.0, 0);
    for (int i = 0; i < 8; ++i)
        EXPECT_NEAR(ours[i], theirs[i], to->calibration(0) / 2 + 0.01);
    const CommandResult filtered = run("a.edf -o f.raw --channels A --high-filter 1");
    EXPECT_THAT(filtered.err, HasSubstr("rounded"));
}

TEST_F(RawExport, NeverReplacesWhatItReads) {
    EdfFile().signal("A", 4).records(3).writeTo(dir.file("a.edf"));
    ASSERT_EQ(run("a.edf -o a.raw").exitCode, 0);
    for (const char* target : {"a.raw", "a.txt -q"}) {
        const CommandResult again = run(std::string("a.lay --format raw -o ") + target);
        EXPECT_EQ(again.exitCode, 1);
        EXPECT_THAT(again.err, HasSubstr("would replace the recording itself"));
    }
    EXPECT_FALSE(fs::exists(dir.file("a.txt")));
    EXPECT_EQ(run("a.edf --format raw").exitCode, 2);
    EXPECT_THAT(run("a.edf -o c.raw --to 0.5").err,
                HasSubstr("2 samples; raw data needs at least 3"));
    EXPECT_THAT(run("a.edf -o 'b\\c.raw'").err, HasSubstr("a layout cannot name it"));
    fs::copy(dir.file("a.lay"), dir.file("c.lay"));
    EXPECT_THAT(run("a.edf -o c.raw").err, HasSubstr("c.lay is there and does not describe"));
    dir.write("d.lay", "[FileInfo]\nFile=/far/d.raw\n");
    EXPECT_THAT(run("a.edf -o d.raw").err, HasSubstr("d.lay is there and does not describe"));
    EXPECT_THAT(run("a.edf --format raw -o " + std::string(253, 'x')).err,
                HasSubstr(".lay: File name too long"));
    EXPECT_FALSE(fs::exists(dir.file("c.raw")));
    EXPECT_EQ(run("a.edf -o a.raw").exitCode, 0) << "once more";
    EXPECT_EQ(run("a.edf --values raw -o b.raw").exitCode, 2);
}

TEST_F(RawExport, NamesThatAMapCannotHoldAreChanged) {
    EdfFile file = EdfFile().signal("x=y", 4).signal("[z]", 4).signal("x=y", 4).records(3);
    file.writeTo(dir.file("a.edf"));
    const CommandResult made = run("a.edf -o a.raw");
    EXPECT_THAT(made.err, AllOf(HasSubstr("a.edf: the name x=y is written as x_y-Ref\n"),
                                HasSubstr("the name x=y is written as 2_x_y-Ref\n")));
    const ReaderPtr to = open("a.lay");
    EXPECT_STREQ(to->channelName(0), "x_y-Ref");
    EXPECT_STREQ(to->channelName(1), "_z]-Ref");
    EXPECT_STREQ(to->channelName(2), "2_x_y-Ref");
    EdfFile other = EdfFile().signal("C3-", 4).signal("Left1", 4).signal("Right1", 4);
    other.signal("Middle", 4).records(3).writeTo(dir.file("b.edf"));
    EXPECT_THAT(run("b.edf -o b.raw --channels '#0,Left1-Middle+Right1+Left1'").err,
                HasSubstr("is written as Left1-Middle+Right1+L\n"));
    EXPECT_STREQ(open("b.lay")->channelName(0), "C3-Ref");
}

} // namespace
} // namespace kvsig::test
