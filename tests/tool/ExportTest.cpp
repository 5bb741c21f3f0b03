#include "kvsig/util/NumberText.h"
#include "support/Command.h"
#include "support/EdfFile.h"

#include <cstring>
#include <iterator>
#include <numbers>

namespace kvsig::test {
namespace {

// Samples 1, 2, 3 ... in the first signal and ten times that in the others.
std::int32_t counting(int signal, std::int64_t index) {
    return static_cast<std::int32_t>(index + 1) * (signal == 0 ? 1 : 10);
}

class Export : public CommandTest {
  protected:
    void SetUp() override {
        EdfFile file = EdfFile().samples(counting).records(2);
        file.signal("EEG C3-Ref", 4).physical("-1638.4", "1638.35"); // 0.05 uV a count
        // 0.1 uV a count, and a constant of 3276.8 uV
        file.signal("A, \"odd\" one", 4).physical("0", "6553.5");
        file.signal("Temp", 2).units("DegC").physical("30", "40").digital("0", "1000");
        file.writeTo(dir.file("a.edf"));
    }
};

TEST_F(Export, CsvHoldsTimesNamesAndPhysicalValues) {
    EXPECT_EQ(command("export a.edf --to 1").out, "time,C3-Ref,\"A, \"\"odd\"\" one\",Temp\n"
                                                  "0,0.05,3277.8,30.1\n"
                                                  "0.25,0.1,3278.8,30.1\n"
                                                  "0.5,0.15,3279.8,30.2\n"
                                                  "0.75,0.2,3280.8,30.2\n");
}

// The kernel leaves the constant out and multiplies other units by the calibration once more.
TEST_F(Export, KernelAndRawValues) {
    EXPECT_EQ(
        command("export a.edf --format tsv --to 0.5 --values kernel").out,
        "time\tC3-Ref\t\"A, \"\"odd\"\" one\"\tTemp\n0\t0.05\t1\t0.301\n0.25\t0.1\t2\t0.301\n");
    EXPECT_EQ(command("export a.edf --from 1.5 --values raw --format tsv").out,
              "time\tC3-Ref\t\"A, \"\"odd\"\" one\"\tTemp\n1.5\t7\t70\t40\n1.75\t8\t80\t40\n");
    EXPECT_EQ(command("export a.edf --values raw --high-filter 1").exitCode, 2);
    EXPECT_EQ(command("export a.edf --values raw --channels C3-Temp").exitCode, 1);
    EXPECT_THAT(command("export a.edf --channels C3-Temp").err,
                HasSubstr("differ in units or scale"));
}

TEST_F(Export, DerivationsAndSelections) {
    EdfFile file;
    for (const char* label : {"EEG C3-Ref", "EEG A1-Ref", "EEG A2-Ref"})
        file.signal(label, 4).physical("-1638.4", "1638.35");
    file.samples([](int signal, std::int64_t) { return 100 * (signal + 1); })
        .writeTo(dir.file("a.edf"));
    // C3 = 5, A1 = 10, A2 = 15 uV.
    EXPECT_EQ(command("export a.edf --to 0.25 --channels "
                      "c3,C3-A1,C3-A1+A2,C3-A1A2,A1+A2,A1:0.1+A2:0.2,#2,C3-Ref-A2-Ref,"
                      "A1-Ref+A2-Ref,C3-Ref-A1-Ref:2+A2:-1")
                  .out,
              "time,C3-Ref,C3-A1,C3-A1+A2,C3-A1A2,A1+A2,A1:0.1+A2:0.2,A2-Ref,C3-Ref-A2-Ref,"
              "A1-Ref+A2-Ref,C3-Ref-A1-Ref:2+A2:-1\n"
              "0,5,-5,-7.5,-7.5,12.5,4,15,-10,12.5,0\n");
}

TEST_F(Export, UnreadableSelectionsNameTheirFault) {
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
            command(std::string("export a.edf --channels ") + "'" + channels + "'");
        EXPECT_EQ(run.exitCode, 1) << channels;
        EXPECT_THAT(run.err, HasSubstr(std::string("a.edf: --channels ") + channels + ": "));
        EXPECT_THAT(run.err, HasSubstr(fault));
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(Export, SharedAndMissingNamesAreTold) {
    EdfFile().signal("Cz", 4).signal("", 4).signal("Cz", 4).signal("Pz", 4).writeTo(
        dir.file("a.edf"));
    const std::string remark = "kvsig: a.edf: channels #0 and #2 are both named cz; #0 is taken\n";
    const CommandResult run = command("export a.edf --to 0.25 --channels 'pz-cz, cz-pz,#2'");
    EXPECT_EQ(run.err, remark) << "once, inside derivations too, and not for an index";
    EXPECT_THAT(run.out, StartsWith("time,pz-cz,cz-pz,Cz\n"));
    EXPECT_THAT(command("export a.edf").out, StartsWith("time,Cz,#1,Cz,Pz\n"));
    EXPECT_THAT(command("export a.edf --channels '#1-Pz'").out, StartsWith("time,#1-Pz\n"));
}

TEST_F(Export, RangesAreClippedAndTold) {
    const CommandResult beyond = command("export a.edf --channels C3 --from 1.75 --to 9");
    EXPECT_EQ(beyond.exitCode, 0);
    EXPECT_EQ(beyond.out, "time,C3-Ref\n1.75,0.4\n");
    EXPECT_EQ(beyond.err, "kvsig: a.edf: the range 1.75 to 9 s is clipped to the recording, 0 to 2 "
                          "s\n");
    EXPECT_EQ(command("export a.edf -q --to 0:09").err, "");
    const CommandResult outside = command("export a.edf --from 5");
    EXPECT_EQ(outside.exitCode, 1);
    EXPECT_THAT(outside.err, HasSubstr("no samples from 5 s on; the recording lasts 2 s"));
    EXPECT_EQ(command("export a.edf --from 5 --to 9").err,
              "kvsig: a.edf: no samples from 5 s on; the recording lasts 2 s\n");
    EXPECT_THAT(command("export a.edf --from 1 --to 0.5").err,
                HasSubstr("no samples from 1 s on and before 0.5 s;"));
    EXPECT_EQ(command("export a.edf --from 1:x").exitCode, 2);
}

// The kernel counts a BDF half again as long as it is; exports end where the data does.
TEST_F(Export, BdfEndsAtItsStoredLength) {
    EdfFile file = EdfFile().bdf().signal("Cz", 4).records(4);
    file.samples([](int, std::int64_t i) { return static_cast<std::int32_t>(-8388608 + i); });
    file.writeTo(dir.file("a.bdf"));
    const std::string out = command("export a.bdf --values raw").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1 + 16);
    EXPECT_THAT(out, HasSubstr("\n3.75,-8388593\n"));
}

TEST_F(Export, NpyIsChannelsBySamples) {
    ASSERT_EQ(command("export a.edf --format npy -o a.npy").exitCode, 0);
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
    EXPECT_EQ(command("export a.edf --format npy").out, file) << "standard output";
}

TEST_F(Export, AFailedExportLeavesTheOldFile) {
    dir.write("a.csv", "old");
    EXPECT_EQ(command("export a.edf -o a.csv --channels nosuch").exitCode, 1);
    EXPECT_EQ(dir.read("a.csv"), "old");
    // Once the export took its own recording's place.
    const std::string recording = dir.read("a.edf");
    EXPECT_EQ(command("export a.edf -o ./a.edf").exitCode, 1);
    EXPECT_EQ(dir.read("a.edf"), recording);
    const CommandResult run = command("export a.edf -o nosuchdir/a.csv");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, StartsWith("kvsig: nosuchdir/a.csv: "));
}

TEST_F(Export, AFullDiskLeavesNothingBehind) {
    EdfFile().signal("Cz", 256).records(200).writeTo(dir.file("a.edf"));
    const std::string noLargeFiles = "trap '' XFSZ && ulimit -f 600";
    for (const char* format : {"csv", "npy"}) {
        const CommandResult run = command(
            std::string("export a.edf --channels Cz,Cz,Cz,Cz -o x.") + format, noLargeFiles);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, std::string("kvsig: x.") + format + ": File too large\n");
    }
    const fs::directory_iterator left(dir.path());
    EXPECT_EQ(std::distance(begin(left), end(left)), 3) << "the recording and what was printed";
    if (fs::exists("/dev/full")) {
        const CommandResult run = command("export a.edf -o /dev/full");
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.err, "kvsig: /dev/full: no space left on the disk\n");
    }
}

TEST_F(Export, SeveralFilesGoToOneFolder) {
    EdfFile().signal("Cz", 4).writeTo(dir.file("b.EDF"));
    fs::create_directory(dir.file("out"));
    fs::copy(dir.file("a.edf"), dir.file("out/a.edf"));
    const CommandResult run = command("export a.edf missing.edf b.EDF --format npy -o out");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: missing.edf: no such file\n");
    EXPECT_THAT(dir.read("out/a.npy"), HasSubstr("(3, 8)"));
    EXPECT_THAT(dir.read("out/b.npy"), HasSubstr("(1, 4)")) << "the others are still done";

    EXPECT_EQ(command("export b.EDF -o out/").exitCode, 0);
    const std::string table = dir.read("out/b.csv");
    EXPECT_THAT(table, StartsWith("time,Cz\n0,"));
    EXPECT_EQ(command("export b.EDF b.EDF").out, table + table) << "standard output";
    EXPECT_EQ(command("export b.EDF -o x.tsv").exitCode, 0);
    EXPECT_THAT(dir.read("x.tsv"), StartsWith("time\tCz\n")) << "by the ending";
    for (const char* wrong : {"a.edf b.EDF -o x.csv", "a.edf out/a.edf -o out"})
        EXPECT_EQ(command(std::string("export ") + wrong).exitCode, 2) << wrong;
    EXPECT_EQ(dir.read("x.csv") + dir.read("out/a.csv"), "");
}

TEST_F(Export, AFolderIsMadeForTheFirstOutput) {
    EXPECT_EQ(command("export missing.edf -o new/").exitCode, 1);
    EXPECT_FALSE(fs::exists(dir.file("new"))) << "there was nothing to write";
    EXPECT_EQ(command("export missing.edf a.edf -o new/deep/ --format raw").exitCode, 1);
    EXPECT_NE(dir.read("new/deep/a.raw"), "");
    EXPECT_NE(dir.read("new/deep/a.lay"), "");
    const CommandResult run = command("export a.edf -o a.edf/");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, StartsWith("kvsig: a.edf/: cannot be made: "));
}

TEST_F(Export, FiltersActAsTheyAreNamed) {
    // Root mean square of a sine after the filters, over a second in mid-file.
    const auto filtered = [this](const std::string& options, double hertz) {
        EdfFile file = EdfFile().signal("Cz", 256).records(12);
        file.samples([hertz](int, std::int64_t i) {
            return static_cast<std::int32_t>(std::lround(
                10000 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / 256)));
        });
        file.writeTo(dir.file("a.edf"));
        std::istringstream lines(command("export a.edf --from 10 --to 11 " + options).out);
        double sum = 0.0;
        std::string line;
        std::getline(lines, line);
        while (std::getline(lines, line))
            sum += std::pow(leadingDouble(line.substr(line.find(',') + 1)) / 1000, 2);
        return std::sqrt(sum / 256);
    };
    const double unfiltered = std::numbers::sqrt2 / 2;
    EXPECT_NEAR(filtered("", 10), unfiltered, 0.001);
    EXPECT_LT(filtered("--notch 60", 60), 0.01);
    EXPECT_NEAR(filtered("--notch 60", 10), unfiltered, 0.01);
    // The notch is 2 Hz wide at -3 dB.
    EXPECT_NEAR(filtered("--notch 60", 59), 0.5, 0.02);
    EXPECT_NEAR(filtered("--notch 60", 61), 0.5, 0.02);
    EXPECT_NEAR(filtered("--low-filter 10", 10), 0.5, 0.01);
    EXPECT_NEAR(filtered("--high-filter 10", 10), 0.5, 0.01);
    EXPECT_LT(filtered("--low-filter 10", 1), 0.08);
    EXPECT_LT(filtered("--high-filter 10", 100), 0.08);
}

TEST_F(Export, FiltersBeyondTheRecordingAreRefused) {
    const CommandResult run = command("export a.edf --notch 60");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.err, "kvsig: a.edf: --notch 60 is not below half the sampling rate, 2 Hz\n");
    EXPECT_EQ(command("export a.edf --low-filter -1").exitCode, 2);
}

// The stream of windows carries the filters' state: where it starts must not matter later on, and
// the constant of a channel passes all filters but a high-pass.
TEST_F(Export, ConstantsPassAllFiltersButTheHighPass) {
    EdfFile file = EdfFile().signal("Cz", 256).physical("100000", "106553.5").records(30);
    file.samples([](int, std::int64_t) { return 0; }).writeTo(dir.file("a.edf"));
    const auto lastValue = [this](const std::string& options) {
        const std::string out = command("export a.edf " + options).out;
        return leadingDouble(out.substr(out.rfind(',') + 1));
    };
    // Filters once ran in on zeros before the start: the first seconds were their step response.
    for (const std::string where : {"--from 29.99 ", "--to 0.001 "}) {
        EXPECT_NEAR(lastValue(where), 103276.8, 0.01);
        EXPECT_NEAR(lastValue(where + "--high-filter 70"), 103276.8, 0.01);
        EXPECT_NEAR(lastValue(where + "--notch 60"), 103276.8, 0.05);
        EXPECT_NEAR(lastValue(where + "--low-filter 1"), 0.0, 0.01);
    }
}

} // namespace
} // namespace kvsig::test
