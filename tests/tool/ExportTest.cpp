#include "kvsig/util/NumberText.h"
#include "support/Command.h"
#include "support/EdfFile.h"

#include <cmath>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <numbers>
#include <sstream>
#include <vector>

namespace kvsig::test {
namespace {

using testing::HasSubstr;

// Samples 1, 2, 3 ... in the first signal and ten times that in the others.
std::int32_t counting(int signal, std::int64_t index) {
    return static_cast<std::int32_t>(index + 1) * (signal == 0 ? 1 : 10);
}

EdfFile threeSignals() {
    return EdfFile()
        .signal("EEG C3-Ref", 4)
        .physical("-1638.4", "1638.35") // 0.05 uV a count, and no constant
        .signal("A, \"odd\" one", 4)
        .physical("0", "6553.5") // 0.1 uV a count, and a constant of 3276.8 uV
        .signal("Temp", 2)
        .units("DegC")
        .physical("30", "40")
        .digital("0", "1000")
        .samples(counting)
        .records(2);
}

TEST(Export, CsvHoldsTimesNamesAndPhysicalValues) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    EXPECT_EQ(runCommand(dir, "export a.edf --to 1").out,
              "time,C3-Ref,\"A, \"\"odd\"\" one\",Temp\n"
              "0,0.05,3277.8,30.1\n"
              "0.25,0.1,3278.8,30.1\n"
              "0.5,0.15,3279.8,30.2\n"
              "0.75,0.2,3280.8,30.2\n");
}

// The kernel leaves the constant out and multiplies other units by the calibration once more.
TEST(Export, KernelAndRawValues) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    EXPECT_EQ(
        runCommand(dir, "export a.edf --format tsv --to 0.5 --values kernel").out,
        "time\tC3-Ref\t\"A, \"\"odd\"\" one\"\tTemp\n0\t0.05\t1\t0.301\n0.25\t0.1\t2\t0.301\n");
    EXPECT_EQ(runCommand(dir, "export a.edf --from 1.5 --values raw --format tsv").out,
              "time\tC3-Ref\t\"A, \"\"odd\"\" one\"\tTemp\n1.5\t7\t70\t40\n1.75\t8\t80\t40\n");
    EXPECT_EQ(runCommand(dir, "export a.edf --values raw --high-filter 1").exitCode, 2);
    EXPECT_EQ(runCommand(dir, "export a.edf --values raw --channels C3-Temp").exitCode, 1);
    EXPECT_THAT(runCommand(dir, "export a.edf --channels C3-Temp").err,
                HasSubstr("differ in units or scale"));
}

TEST(Export, DerivationsAndSelections) {
    const TempDir dir;
    EdfFile()
        .signal("EEG C3-Ref", 4)
        .physical("-1638.4", "1638.35")
        .signal("EEG A1-Ref", 4)
        .physical("-1638.4", "1638.35")
        .signal("EEG A2-Ref", 4)
        .physical("-1638.4", "1638.35")
        .samples([](int signal, std::int64_t) { return 100 * (signal + 1); })
        .writeTo(dir.file("a.edf"));
    // C3 = 5, A1 = 10, A2 = 15 uV.
    EXPECT_EQ(runCommand(dir, "export a.edf --to 0.25 --channels "
                              "c3,C3-A1,C3-A1+A2,C3-A1A2,A1+A2,A1:0.1+A2:0.2,#2,C3-Ref-A2-Ref,"
                              "A1-Ref+A2-Ref,C3-Ref-A1-Ref:2+A2:-1")
                  .out,
              "time,C3-Ref,C3-A1,C3-A1+A2,C3-A1A2,A1+A2,A1:0.1+A2:0.2,A2-Ref,C3-Ref-A2-Ref,"
              "A1-Ref+A2-Ref,C3-Ref-A1-Ref:2+A2:-1\n"
              "0,5,-5,-7.5,-7.5,12.5,4,15,-10,12.5,0\n");
}

TEST(Export, UnreadableSelectionsNameTheirFault) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    for (const auto& [channels, fault] : {
             std::pair("C4", "C4: no such channel; the nearest are C3"),
             std::pair("C3-Tenp", "C3-Tenp: no such channel Tenp; the nearest are Temp"),
             std::pair("Tenp-C3", "Tenp-C3: no such channel Tenp;"),
             std::pair("C3-C3+C9", "C3-C3+C9: no such channel C9; the nearest are C3"),
             std::pair("C3-Ref+C9", "C3-Ref+C9: no such channel C9;"),
             std::pair("C3-Av17", "C3-Av17: no such channel F7;"),
             std::pair("C3-", "C3-: a channel name is missing"),
             std::pair("C3-+", "C3-+: a channel name is missing"),
             std::pair("#3", "#3: no such channel; the last is #2"),
             std::pair("C3:2+Temp", "C3 has a weight and Temp has none"),
             std::pair("Temp-Temp+C3:2", "C3 has a weight and Temp has none"),
             std::pair("C3:half+Temp:0.5", "the weight of C3 is no number"),
         }) {
        const CommandResult run =
            runCommand(dir, std::string("export a.edf --channels ") + "'" + channels + "'");
        EXPECT_EQ(run.exitCode, 1) << channels;
        EXPECT_THAT(run.err, HasSubstr(std::string("a.edf: --channels ") + channels + ": "));
        EXPECT_THAT(run.err, HasSubstr(fault));
        EXPECT_EQ(run.out, "");
    }
}

TEST(Export, SharedAndMissingNamesAreTold) {
    const TempDir dir;
    EdfFile().signal("Cz", 4).signal("", 4).signal("Cz", 4).signal("Pz", 4).writeTo(
        dir.file("a.edf"));
    const std::string remark = "kvsig: a.edf: channels #0 and #2 are both named cz; #0 is taken\n";
    const CommandResult run =
        runCommand(dir, "export a.edf --to 0.25 --channels 'pz-cz, cz-pz,#2'");
    EXPECT_EQ(run.err, remark) << "once, inside derivations too, and not for an index";
    EXPECT_THAT(run.out, testing::StartsWith("time,pz-cz,cz-pz,Cz\n"));
    EXPECT_THAT(runCommand(dir, "export a.edf").out, testing::StartsWith("time,Cz,#1,Cz,Pz\n"));
    EXPECT_THAT(runCommand(dir, "export a.edf --channels '#1-Pz'").out,
                testing::StartsWith("time,#1-Pz\n"));
}

TEST(Export, RangesAreClippedAndTold) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    const CommandResult beyond = runCommand(dir, "export a.edf --channels C3 --from 1.75 --to 9");
    EXPECT_EQ(beyond.exitCode, 0);
    EXPECT_EQ(beyond.out, "time,C3-Ref\n1.75,0.4\n");
    EXPECT_EQ(beyond.err, "kvsig: a.edf: the range 1.75 to 9 s is clipped to the recording, 0 to 2 "
                          "s\n");
    EXPECT_EQ(runCommand(dir, "export a.edf -q --to 0:09").err, "");
    const CommandResult outside = runCommand(dir, "export a.edf --from 5");
    EXPECT_EQ(outside.exitCode, 1);
    EXPECT_THAT(outside.err, HasSubstr("no samples from 5 s on; the recording lasts 2 s"));
    EXPECT_EQ(runCommand(dir, "export a.edf --from 5 --to 9").err,
              "kvsig: a.edf: no samples from 5 s on; the recording lasts 2 s\n");
    EXPECT_THAT(runCommand(dir, "export a.edf --from 1 --to 0.5").err,
                HasSubstr("no samples from 1 s on and before 0.5 s;"));
    EXPECT_EQ(runCommand(dir, "export a.edf --from 1:x").exitCode, 2);
}

// The kernel counts a BDF half again as long as it is; exports end where the data does.
TEST(Export, BdfEndsAtItsStoredLength) {
    const TempDir dir;
    EdfFile()
        .bdf()
        .signal("Cz", 4)
        .records(4)
        .samples([](int, std::int64_t i) { return static_cast<std::int32_t>(-8388608 + i); })
        .writeTo(dir.file("a.bdf"));
    const std::string out = runCommand(dir, "export a.bdf --values raw").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1 + 16);
    EXPECT_THAT(out, HasSubstr("\n3.75,-8388593\n"));
}

TEST(Export, NpyIsChannelsBySamples) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    ASSERT_EQ(runCommand(dir, "export a.edf --format npy -o a.npy").exitCode, 0);
    const std::string file = dir.read("a.npy");
    ASSERT_EQ(file.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
    const auto byte = [&file](std::size_t at) {
        return std::size_t{static_cast<unsigned char>(file[at])};
    };
    const std::size_t head = 10 + byte(8) + 256 * byte(9);
    EXPECT_EQ(head % 64, 0U);
    EXPECT_THAT(file.substr(10, head - 10),
                HasSubstr("'descr': '<f4', 'fortran_order': False, 'shape': (3, 8)"));
    ASSERT_EQ(file.size(), head + 3 * 8 * 4);
    std::vector<float> values(24);
    std::memcpy(values.data(), file.data() + head, 96);
    EXPECT_FLOAT_EQ(values[7], 0.4F);
    EXPECT_FLOAT_EQ(values[8 + 3], 3280.8F);
    EXPECT_FLOAT_EQ(values[16 + 5], 30.3F);
    EXPECT_EQ(runCommand(dir, "export a.edf --format npy").out, file) << "standard output";
}

TEST(Export, AFailedExportLeavesTheOldFile) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    dir.write("a.csv", "old");
    EXPECT_EQ(runCommand(dir, "export a.edf -o a.csv --channels nosuch").exitCode, 1);
    EXPECT_EQ(dir.read("a.csv"), "old");
    // Once the export took its own recording's place.
    const std::string recording = dir.read("a.edf");
    EXPECT_EQ(runCommand(dir, "export a.edf -o ./a.edf").exitCode, 1);
    EXPECT_EQ(dir.read("a.edf"), recording);
    const CommandResult run = runCommand(dir, "export a.edf -o nosuchdir/a.csv");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, testing::StartsWith("kvsig: nosuchdir/a.csv: "));
}

TEST(Export, AFullDiskLeavesNothingBehind) {
    const TempDir dir;
    EdfFile().signal("Cz", 256).records(200).writeTo(dir.file("a.edf"));
    const std::string noLargeFiles = "trap '' XFSZ && ulimit -f 600";
    for (const char* format : {"csv", "npy"}) {
        const CommandResult run = runCommand(
            dir, std::string("export a.edf --channels Cz,Cz,Cz,Cz -o x.") + format, noLargeFiles);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, std::string("kvsig: x.") + format + ": File too large\n");
    }
    const std::filesystem::directory_iterator left(dir.path());
    EXPECT_EQ(std::distance(begin(left), end(left)), 3) << "the recording and what was printed";
    if (std::filesystem::exists("/dev/full")) {
        const CommandResult run = runCommand(dir, "export a.edf -o /dev/full");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "kvsig: /dev/full: no space left on the disk\n");
    }
}

TEST(Export, SeveralFilesGoToOneFolder) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    EdfFile().signal("Cz", 4).writeTo(dir.file("b.EDF"));
    std::filesystem::create_directory(dir.file("out"));
    std::filesystem::copy(dir.file("a.edf"), dir.file("out/a.edf"));
    const CommandResult run = runCommand(dir, "export a.edf missing.edf b.EDF --format npy -o out");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: missing.edf: no such file\n");
    EXPECT_THAT(dir.read("out/a.npy"), HasSubstr("(3, 8)"));
    EXPECT_THAT(dir.read("out/b.npy"), HasSubstr("(1, 4)")) << "the others are still done";

    EXPECT_EQ(runCommand(dir, "export b.EDF -o out/").exitCode, 0);
    const std::string table = dir.read("out/b.csv");
    EXPECT_THAT(table, testing::StartsWith("time,Cz\n0,"));
    EXPECT_EQ(runCommand(dir, "export b.EDF b.EDF").out, table + table) << "standard output";
    EXPECT_EQ(runCommand(dir, "export b.EDF -o x.tsv").exitCode, 0);
    EXPECT_THAT(dir.read("x.tsv"), testing::StartsWith("time\tCz\n")) << "by the ending";
    for (const char* wrong : {"a.edf b.EDF -o x.csv", "a.edf out/a.edf -o out"})
        EXPECT_EQ(runCommand(dir, std::string("export ") + wrong).exitCode, 2) << wrong;
    EXPECT_EQ(dir.read("x.csv") + dir.read("out/a.csv"), "");
}

TEST(Export, AFolderIsMadeForTheFirstOutput) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    EXPECT_EQ(runCommand(dir, "export missing.edf -o new/").exitCode, 1);
    EXPECT_FALSE(std::filesystem::exists(dir.file("new"))) << "there was nothing to write";
    EXPECT_EQ(runCommand(dir, "export missing.edf a.edf -o new/deep/ --format raw").exitCode, 1);
    EXPECT_NE(dir.read("new/deep/a.raw"), "");
    EXPECT_NE(dir.read("new/deep/a.lay"), "");
    const CommandResult run = runCommand(dir, "export a.edf -o a.edf/");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, testing::StartsWith("kvsig: a.edf/: cannot be made: "));
}

// Root mean square of a sine at `hertz` after the command's filters, over a second in mid-file.
double filteredRms(const std::string& options, double hertz) {
    const TempDir dir;
    EdfFile()
        .signal("Cz", 256)
        .records(12)
        .samples([hertz](int, std::int64_t i) {
            return static_cast<std::int32_t>(std::lround(
                10000 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / 256)));
        })
        .writeTo(dir.file("a.edf"));
    std::istringstream lines(runCommand(dir, "export a.edf --from 10 --to 11 " + options).out);
    double sum = 0.0;
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        const double value = leadingDouble(line.substr(line.find(',') + 1)) / 1000;
        sum += value * value;
    }
    return std::sqrt(sum / 256);
}

TEST(Export, FiltersActAsTheyAreNamed) {
    const double unfiltered = std::numbers::sqrt2 / 2;
    EXPECT_NEAR(filteredRms("", 10), unfiltered, 0.001);
    EXPECT_LT(filteredRms("--notch 60", 60), 0.01);
    EXPECT_NEAR(filteredRms("--notch 60", 10), unfiltered, 0.01);
    // The notch is 2 Hz wide at -3 dB.
    EXPECT_NEAR(filteredRms("--notch 60", 59), 0.5, 0.02);
    EXPECT_NEAR(filteredRms("--notch 60", 61), 0.5, 0.02);
    EXPECT_NEAR(filteredRms("--low-filter 10", 10), 0.5, 0.01);
    EXPECT_NEAR(filteredRms("--high-filter 10", 10), 0.5, 0.01);
    EXPECT_LT(filteredRms("--low-filter 10", 1), 0.08);
    EXPECT_LT(filteredRms("--high-filter 10", 100), 0.08);
}

TEST(Export, FiltersBeyondTheRecordingAreRefused) {
    const TempDir dir;
    threeSignals().writeTo(dir.file("a.edf"));
    const CommandResult run = runCommand(dir, "export a.edf --notch 60");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: a.edf: --notch 60 is not below half the sampling rate, 2 Hz\n");
    EXPECT_EQ(runCommand(dir, "export a.edf --low-filter -1").exitCode, 2);
}

// The stream of windows carries the filters' state: where it starts must not matter later on, and
// the constant of a channel passes all filters but a high-pass.
TEST(Export, ConstantsPassAllFiltersButTheHighPass) {
    const TempDir dir;
    EdfFile()
        .signal("Cz", 256)
        .physical("100000", "106553.5")
        .samples([](int, std::int64_t) { return 0; })
        .records(30)
        .writeTo(dir.file("a.edf"));
    const auto lastValue = [&dir](const std::string& options) {
        const std::string out = runCommand(dir, "export a.edf --from 29.99 " + options).out;
        return leadingDouble(out.substr(out.rfind(',') + 1));
    };
    EXPECT_NEAR(lastValue(""), 103276.8, 0.01);
    EXPECT_NEAR(lastValue("--high-filter 70"), 103276.8, 0.01);
    EXPECT_NEAR(lastValue("--notch 60"), 103276.8, 0.05);
    EXPECT_NEAR(lastValue("--low-filter 1"), 0.0, 0.01);
    // Filters once ran in on zeros before the start: the first seconds were their step response.
    const auto firstValue = [&dir](const std::string& options) {
        const std::string out = runCommand(dir, "export a.edf --to 0.001 " + options).out;
        return leadingDouble(out.substr(out.rfind(',') + 1));
    };
    EXPECT_NEAR(firstValue("--high-filter 70"), 103276.8, 0.05);
    EXPECT_NEAR(firstValue("--notch 60"), 103276.8, 0.05);
    EXPECT_NEAR(firstValue("--low-filter 1"), 0.0, 0.01);
}

} // namespace
} // namespace kvsig::test
