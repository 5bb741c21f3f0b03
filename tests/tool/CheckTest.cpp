#include "support/BlackrockFile.h"
#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/MicromedFile.h"
#include "support/NervusFile.h"
#include "support/NihonKohdenFile.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using Json = nlohmann::ordered_json;

class Types : public CommandTest {};
class Check : public CommandTest {};

TEST_F(Types, ListEveryFormatAndWhetherItIsRead) {
    const CommandResult run = command("types --json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const Json types = Json::parse(run.out);
    EXPECT_EQ(types.size(), 69U);
    EXPECT_THAT(types, Contains(Json{{"type", 48},
                                     {"name", "BDF"},
                                     {"fullName", "BDF (*.bdf)"},
                                     {"pattern", "*.bdf"},
                                     {"readable", true}}));
    EXPECT_THAT(command("types").out, HasSubstr("28  Micromed"));
    EXPECT_THAT(command("types --readable").out, Not(HasSubstr("Rembrandt")));
}

// The reason speaks of the first signal; that there is no other one is the fault.
TEST_F(Check, WhatWasReadOfARefusedHeaderIsToldToo) {
    const EdfFile file = EdfFile().signal("Fp1", 4).signal("F7", 4).poke(252, "1e3 ");
    EdfFile(file).writeTo(dir.file("a.edf"));
    const std::string taken = "number of signals (offset 252) is \"1e3\", read as 1\n";
    const CommandResult info = command("info a.edf");
    EXPECT_EQ(info.exitCode, 1);
    EXPECT_THAT(info.err, AllOf(HasSubstr("at least 1 is needed\n"), HasSubstr("a.edf: " + taken)));
    EXPECT_THAT(command("check a.edf").out, HasSubstr("a.edf: warning: " + taken));
    EdfFile(file).poke(252, "31 E").append(std::string(10000, ' ')).writeTo(dir.file("b.edf"));
    EXPECT_THAT(command("info b.edf").err,
                AllOf(HasSubstr("read as 31\n"), HasSubstr(" more warnings\n"),
                      Not(HasSubstr("of signal 9"))));
    const CommandResult pair = command("export 'a.edf*a.edf'");
    EXPECT_EQ(pair.exitCode, 1);
    EXPECT_THAT(pair.err, HasSubstr("a.edf: " + taken));
}

TEST_F(Check, IsQuietOnCleanFilesAndTellsOddOnes) {
    EdfFile clean = EdfFile().signal("Fp1", 4).signal("Temp", 2).units("DegC").physical("34", "40");
    clean.records(3).writeTo(dir.file("clean.edf"));
    EdfFile odd = EdfFile().signal("Fp1", 4).units("V").physical("-3000", "3000");
    odd.signal("x", 4).units("furlong").signal("x", 4).units("\xB5V").records(3).writeTo(
        dir.file("odd.edf"));
    dir.write("noise", "noise");
    const CommandResult quiet = command("check clean.edf");
    EXPECT_EQ(quiet.exitCode, 0);
    EXPECT_THAT(quiet.out + quiet.err, IsEmpty());
    const CommandResult run = command("check clean.edf odd.edf noise");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(
        run.out,
        AllOf(HasSubstr("odd.edf: warning: channel #0 Fp1: a physical range of -3000 to 3000 V"),
              HasSubstr("unit \"furlong\" is unknown"), HasSubstr("2 channels are named \"x\""),
              HasSubstr("read as Latin-1"),
              HasSubstr("noise: unusable: not a recording of a known format")));
    const Json report = Json::parse(command("check odd.edf --json").out);
    EXPECT_EQ(report["opens"], true);
    EXPECT_EQ(report["findings"][0]["severity"], "warning");
}

TEST_F(Check, IsQuietOnCleanRealRecordings) {
    const char* folder = std::getenv("KVSIG_RECORDINGS");
    if (!folder)
        GTEST_SKIP() << "KVSIG_RECORDINGS is not set";
    for (const char* file :
         {"mixed_rates/short_psg.edf", "mixed_rates/test_uneven_samp.edf",
          "edf_plus_c/annotations_and_signals2.edf", "edf_plus_c/26.08.23-05.52.59_Oximetry.EDF",
          "edf_plus_c/test_stim_channel.edf", "bdf/mne_python_test.bdf"}) {
        const CommandResult run = command(std::string("check '") + folder + "/" + file + "'");
        EXPECT_THAT(run.out + run.err, IsEmpty()) << file;
    }
}

TEST_F(Check, WarnsOfMicrovoltsThatTheKernelDoesNotKnow) {
    for (const char* units : {"UV", "uv", "\xCE\xBCV", "\xC2\xB5v", "\xB5v"}) {
        EdfFile().signal("Fp1", 4).units(units).records(3).writeTo(dir.file("a.edf"));
        EXPECT_THAT(command("check a.edf").out,
                    HasSubstr("is microvolts to a reader, but the kernel takes it for another unit "
                              "(type 100)"))
            << units;
    }
    for (const char* units : {"uV", "\xB5V", "\xC2\xB5V", "mV"}) {
        EdfFile().signal("Fp1", 4).units(units).physical("-1", "1").records(3).writeTo(
            dir.file("a.edf"));
        EXPECT_THAT(command("check a.edf").out, Not(HasSubstr("microvolts"))) << units;
    }
}

// Starts that are counts of samples are exact; other clocks have their step and drift.
TEST_F(Check, TellsPausesAsFarAsTheRecordersClockDoes) {
    const auto micromed = [](std::uint32_t second) { // a sample is 10 ms
        return MicromedFile().channel({"a"}).rate(100).frames(300).piece(500, 0).piece(second, 100);
    };
    const auto blackrock = BlackrockFile("NEURALCD", 2, 3).channels(1).block(0, 4000); // 2 s
    const auto nihonKohden = NihonKohdenFile().block("20190403160016", 2000);          // 10 s
    const double start = oleDays(2020, 3, 4, 36000);
    const auto nervus = [&](double seconds) {
        return NervusFile().channel({}).segment(start, 10).segment(start + seconds / 86400, 2);
    };
    const struct {
        const char* file;
        std::string bytes;
        const char* gap; ///< empty: there is none
    } cases[] = {
        {"a.trc", micromed(600).bytes(), ""},
        {"a.trc", micromed(601).bytes(), "a gap of 0.01 s at 1 s, before sample 100\n"},
        {"a.trc", micromed(700).bytes(), "a gap of 1 s at 1 s, before sample 100\n"},
        {"a.ns3", BlackrockFile(blackrock).block(60000, 9).bytes(), ""},
        {"a.ns3", BlackrockFile(blackrock).block(62900, 9).bytes(), "gap of 0.096667 s at 2 s, b"},
        // 0.5 to 1 s lies inside.
        {"a.ns3", BlackrockFile(blackrock).block(15000, 1000).block(90000, 9).bytes(),
         "a gap of 1 s at 2 s, before sample 5000\n"},
        {"a.eeg", NihonKohdenFile(nihonKohden).block("20190403160027", 20).bytes(), ""},
        {"a.eeg", NihonKohdenFile(nihonKohden).block("20190403160028", 20).bytes(),
         "a gap of 2 s at 10 s, before sample 2000\n"},
        {"a.e", nervus(10.09).make().bytes, ""},
        {"a.e", nervus(10.2).make().bytes, "a gap of 0.2 s at 10 s, before sample 1000\n"},
    };
    for (const auto& c : cases) {
        dir.write(c.file, c.bytes);
        const std::string told = command(std::string("check ") + c.file).out;
        EXPECT_THAT(told, HasSubstr(c.gap)) << &c - cases;
        if (!*c.gap) {
            EXPECT_THAT(told, Not(HasSubstr("a gap of "))) << &c - cases;
        }
    }
}

TEST_F(Check, FindingsOfAPairNameTheirFile) {
    EdfFile().signal("Fp1", 4).records(3).append("!").writeTo(dir.file("a.edf"));
    EdfFile().signal("x", 4).units("furlong").records(3).writeTo(dir.file("b.edf"));
    EdfFile().signal("Fp1", 4).records(0).append("!").writeTo(dir.file("empty.edf"));
    const CommandResult both = command("check 'a.edf*b.edf'");
    EXPECT_EQ(both.exitCode, 0);
    EXPECT_EQ(both.out, "a.edf*b.edf: note: a.edf: 1 bytes follow the last data record\n"
                        "a.edf*b.edf: warning: b.edf: channel #1 x: unit \"furlong\" is unknown; "
                        "its values are shown as they are\n");
    const CommandResult refused = command("check 'empty.edf*a.edf' 'a.edf*none'");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.out, AllOf(HasSubstr("empty.edf*a.edf: unusable: empty.edf: "),
                                   HasSubstr("empty.edf*a.edf: note: empty.edf: 1 bytes follow"),
                                   HasSubstr("empty.edf*a.edf: note: a.edf: 1 bytes follow"),
                                   HasSubstr("a.edf*none: note: a.edf: 1 bytes follow"),
                                   HasSubstr("a.edf*none: unusable: none: no such file")));
}

} // namespace
} // namespace kvsig::test
