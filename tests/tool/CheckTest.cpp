#include "support/Command.h"
#include "support/EdfFile.h"
#include "support/RawFile.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace kvsig::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Json = nlohmann::ordered_json;

TEST(Types, ListEveryFormatAndWhetherItIsRead) {
    const TempDir dir;
    const CommandResult run = runCommand(dir, "types --json");
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const Json types = Json::parse(run.out);
    EXPECT_EQ(types.size(), 69U);
    for (const Json& type : types)
        if (type["type"] == 48) {
            EXPECT_EQ(type, (Json{{"type", 48},
                                  {"name", "BDF"},
                                  {"fullName", "BDF (*.bdf)"},
                                  {"pattern", "*.bdf"},
                                  {"readable", true}}));
        }
    EXPECT_THAT(runCommand(dir, "types").out, HasSubstr("28  Micromed"));
    EXPECT_THAT(runCommand(dir, "types --readable").out, Not(HasSubstr("Rembrandt")));
}

// The reason speaks of the first signal; that there is no other one is the fault.
TEST(Check, WhatWasReadOfARefusedHeaderIsToldToo) {
    const TempDir dir;
    const EdfFile file = EdfFile().signal("Fp1", 4).signal("F7", 4).poke(252, "1e3 ");
    EdfFile(file).writeTo(dir.file("a.edf"));
    const std::string taken = "number of signals (offset 252) is \"1e3\", read as 1\n";
    const CommandResult info = runCommand(dir, "info a.edf");
    EXPECT_EQ(info.exitCode, 1);
    EXPECT_THAT(info.err, AllOf(HasSubstr("at least 1 is needed\n"), HasSubstr("a.edf: " + taken)));
    EXPECT_THAT(runCommand(dir, "check a.edf").out, HasSubstr("a.edf: warning: " + taken));
    EdfFile(file).poke(252, "31 E").append(std::string(10000, ' ')).writeTo(dir.file("b.edf"));
    EXPECT_THAT(runCommand(dir, "info b.edf").err,
                AllOf(HasSubstr("read as 31\n"), HasSubstr(" more warnings\n"),
                      Not(HasSubstr("of signal 9"))));
    const CommandResult pair = runCommand(dir, "export 'a.edf*a.edf'");
    EXPECT_EQ(pair.exitCode, 1);
    EXPECT_THAT(pair.err, HasSubstr("a.edf: " + taken));
}

TEST(Check, IsQuietOnCleanFilesAndTellsOddOnes) {
    const TempDir dir;
    EdfFile clean = EdfFile().signal("Fp1", 4).signal("Temp", 2).units("DegC").physical("34", "40");
    clean.records(3).writeTo(dir.file("clean.edf"));
    EdfFile odd = EdfFile().signal("Fp1", 4).units("V").physical("-3000", "3000");
    odd.signal("x", 4).units("furlong").signal("x", 4).units("\xB5V").records(3).writeTo(
        dir.file("odd.edf"));
    dir.write("noise", "noise");
    const CommandResult quiet = runCommand(dir, "check clean.edf");
    EXPECT_EQ(quiet.exitCode, 0);
    EXPECT_THAT(quiet.out + quiet.err, IsEmpty());
    const CommandResult run = runCommand(dir, "check clean.edf odd.edf noise");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(
        run.out,
        AllOf(HasSubstr("odd.edf: warning: channel #0 Fp1: a physical range of -3000 to 3000 V"),
              HasSubstr("unit \"furlong\" is unknown"), HasSubstr("2 channels are named \"x\""),
              HasSubstr("read as Latin-1"),
              HasSubstr("noise: unusable: not a recording of a known format")));
    const Json report = Json::parse(runCommand(dir, "check odd.edf --json").out);
    EXPECT_EQ(report["opens"], true);
    EXPECT_EQ(report["findings"][0]["severity"], "warning");
}

TEST(Check, WarnsOfMicrovoltsThatTheKernelDoesNotKnow) {
    const TempDir dir;
    for (const char* units : {"UV", "uv", "\xCE\xBCV", "\xC2\xB5v", "\xB5v"}) {
        EdfFile().signal("Fp1", 4).units(units).records(3).writeTo(dir.file("a.edf"));
        EXPECT_THAT(runCommand(dir, "check a.edf").out,
                    HasSubstr("is microvolts to a reader, but the kernel takes it for another unit "
                              "(type 100)"))
            << units;
    }
    for (const char* units : {"uV", "\xB5V", "\xC2\xB5V", "mV"}) {
        EdfFile().signal("Fp1", 4).units(units).physical("-1", "1").records(3).writeTo(
            dir.file("a.edf"));
        EXPECT_THAT(runCommand(dir, "check a.edf").out, Not(HasSubstr("microvolts"))) << units;
    }
}

TEST(Check, FindingsOfAPairNameTheirFile) {
    const TempDir dir;
    EdfFile().signal("Fp1", 4).records(3).append("!").writeTo(dir.file("a.edf"));
    EdfFile().signal("x", 4).units("furlong").records(3).writeTo(dir.file("b.edf"));
    EdfFile().signal("Fp1", 4).records(0).append("!").writeTo(dir.file("empty.edf"));
    const CommandResult both = runCommand(dir, "check 'a.edf*b.edf'");
    EXPECT_EQ(both.exitCode, 0);
    EXPECT_EQ(both.out, "a.edf*b.edf: note: a.edf: 1 bytes follow the last data record\n"
                        "a.edf*b.edf: warning: b.edf: channel #1 x: unit \"furlong\" is unknown; "
                        "its values are shown as they are\n");
    const CommandResult refused = runCommand(dir, "check 'empty.edf*a.edf' 'a.edf*none'");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.out, AllOf(HasSubstr("empty.edf*a.edf: unusable: empty.edf: "),
                                   HasSubstr("empty.edf*a.edf: note: empty.edf: 1 bytes follow"),
                                   HasSubstr("empty.edf*a.edf: note: a.edf: 1 bytes follow"),
                                   HasSubstr("a.edf*none: note: a.edf: 1 bytes follow"),
                                   HasSubstr("a.edf*none: unusable: none: no such file")));
}

TEST(Check, NotesBytesBehindTheLastRawFrame) {
    const TempDir dir;
    const auto check = [&dir](RawFile file, const std::string& behind) {
        dir.write("stored.raw", file.bytes() + behind);
        dir.write("a.lay", file.sections("FileType=Interleaved\n").attributes());
        return runCommand(dir, "check a.lay").out;
    };
    EXPECT_EQ(check(RawFile(), "12345"),
              "a.lay: note: its last 5 bytes are no whole sample of 3 channels\n");
    EXPECT_EQ(check(RawFile(), ""), "");
    EXPECT_THAT(check(RawFile().dataType(6).frames(751), ""), Not(HasSubstr("whole sample")));
}

// What the collection's index says of each file.
TEST(Check, TellsWhatIsOddAboutRealRecordings) {
    const char* folder = std::getenv("KVSIG_RECORDINGS");
    if (!folder)
        GTEST_SKIP() << "KVSIG_RECORDINGS is not set";
    const TempDir dir;
    const struct {
        const char* file;
        const char* words; ///< null: clean
    } cases[] = {
        {"mixed_rates/short_psg.edf", nullptr},
        {"mixed_rates/test_uneven_samp.edf", nullptr},
        {"edf_plus_c/annotations_and_signals2.edf", nullptr},
        {"edf_plus_c/26.08.23-05.52.59_Oximetry.EDF", nullptr},
        {"edf_plus_c/test_stim_channel.edf", nullptr},
        {"bdf/mne_python_test.bdf", nullptr},
        {"plain_edf/bdf_test.edf", "there is no annotation signal"},
        {"bdf/bdf_test.bdf", "\"EDF+C\" in a file of 24-bit samples"},
        {"bdf/short_psg.bdf", "flat zeros"},
        {"bdf/SC4001EC-Hypnogram.bdf", "all signals (1) hold annotations"},
        {"edf_plus_c/test_utf8.edf", "annotation bytes are not ASCII"},
        {"edf_plus_d/Discontinuous2.edf", "a gap of 2907 s at 2724 s, before data record 682"},
        {"edf_plus_d/EDF+ normal.edf", "data record 2 overlaps by 1 s with what ends at 1 s"},
        {"edf_plus_d/EDF+ normal.edf", "of 2 signals lie outside their digital range"},
        {"odd/test_subsecond.edf", "begins 0.394531 s after the start time"},
        {"odd/test_edf_stim_channel.edf", "holds a file path"},
        {"odd/mne_python_test.edf", "of 138 signals lie outside their digital range"},
        {"odd/Invalid DataRecord Count.edf", "is \"-1\": the recording was not closed"},
        {"odd/EDFjl_test_uneven_samp.edf", "1 bytes follow the last data record"},
        {"odd/EDFjl_test_uneven_samp.edf", "warning: start date (offset 168) is \"42.00.00\""},
        {"odd/EDFjl_test_uneven_samp.edf", "warning: start time (offset 176) is \"26.00.99\""},
        {"odd/sub-01_task-pullstand_eeg.edf", "stand one byte early"},
        {"odd/sub-01_task-pullstand_emg.edf", "header length 2816 and 10 signals agree"},
        {"odd/sub-COF008_task-HN_acq-T2301_eeg.edf", "is \"2872\", but the data holds 0"},
        {"odd/sub-COF008_task-BL_acq-T224800_eeg.edf", "the file ends after 5000 bytes"},
    };
    for (const auto& c : cases) {
        const CommandResult run =
            runCommand(dir, std::string("check '") + folder + "/" + c.file + "'");
        if (c.words) {
            EXPECT_THAT(run.out, HasSubstr(c.words)) << c.file;
        } else {
            EXPECT_THAT(run.out + run.err, IsEmpty()) << c.file;
        }
    }
}

} // namespace
} // namespace kvsig::test
