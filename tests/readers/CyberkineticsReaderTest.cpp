#include "kvsig/readers/CyberkineticsReader.h"

#include "kvsig/registry/FrontDoor.h"
#include "support/BlackrockFile.h"
#include "support/LogCapture.h"
#include "support/Opened.h"
#include "support/ReaderFixture.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvsig::test {
namespace {

using testing::HasSubstr;

struct Blackrock : ReaderFixture<CyberkineticsReader> {
    Blackrock() : ReaderFixture("Rec.ns3") {}

    static constexpr double start = 14 * 3600 + 7 * 60 + 9.25;
};

TEST_F(Blackrock, BlocksAreSegmentsWithTheClockOfTheirStamps) {
    BlackrockFile file("BRSMPGRP", 3, 0);
    reads({{file.channels(4).block(3000, 100).block(9000, 150).bytes(), 250, "", 2}});
    EXPECT_EQ(reader.samplingRate(), 2000.0);
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.0), start + 0.1);
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.05), start + 0.3);
    EXPECT_STREQ(reader.channelName(0), "RAMY1");
    EXPECT_STREQ(reader.patientRec()->testDate, "2014.03.26");
    EXPECT_STREQ(reader.patientRec()->comments1, "left arm"); // without the stray bytes
}

TEST_F(Blackrock, LimitsCalibrateWhateverTheyAre) {
    BlackrockFile file("NEURALCD", 2, 2);
    file.channel({.name = "a"})
        .channel({"b", "mV", -1000, 1000, -5000, 5000})
        .channel({"c", "uV", 0, 0, 0, 0})
        .channel({"d", "uV", -32768, 32767, 0, 100})
        .channel({"e", "uV", -100, 100, 7, 7})
        .block(0, 50);
    ASSERT_TRUE(opens(file));
    const struct {
        double scale, added;
    } physical[] = {{0.25, 0}, {5, 0}, {1, 0}, {100 / 65535.0, 32768 * 100 / 65535.0}, {0, 7}};
    for (int c = 0; c < 5; ++c)
        for (long i = 0; i < 50; ++i)
            EXPECT_NEAR(valuesOf(reader, c, i, i)[0],
                        rampCount(c, i) * physical[c].scale + physical[c].added, 1e-4)
                << c;
    EXPECT_EQ(reader.channelType(0), 1);
    EXPECT_EQ(reader.channelType(1), 100);
    EXPECT_STREQ(reader.channelUnits(1), "mV");
    EXPECT_EQ(findings(), std::vector<std::string>{"channel 5 has no range: all its values are 7"});
}

TEST_F(Blackrock, BlocksThatLieOrAreDamagedGiveWhatIsThere) {
    const auto started = [] { return BlackrockFile("NEURALCD", 2, 3).channels(2); };
    const auto made = [&] { return started().block(0, 30); };
    const auto empty = [&] { return made().block(800, 0); }; // no end, whatever follows it
    const std::string quiet("\1\0\0\4\0\0\0\0", 9);          // samples 1 and 1024, zeros
    const auto cut = [](const BlackrockFile& file) {
        return file.bytes().substr(0, file.bytes().size() - 20);
    };
    reads({
        {made().block(900, 20, 4'000'000'000).bytes(), 50, "says 4000000000 samples, 20 are left"},
        {made().append("\2").block(900, 20).bytes(), 50, "last 1 bytes"},
        {made().append(std::string(60, '\2')).bytes(), 30, "block (offset 575) is 2, not 1"},
        {made().block(900, 20, 0).bytes(), 50, "not closed"},
        {empty().block(900, 20).bytes(), 50, ""},
        {cut(empty().block(900, 20).block(2000, 20)), 65, "says 20 samples, 15 are left", 3},
        {empty().block(900, 20).block(2000, 20, 0).bytes(), 70, "not closed", 3},
        {empty().block(900, 20).append(std::string(7, '\1')).bytes(), 50, "last 7 bytes", 2},
        // What is behind the empty block may be its samples.
        {empty().block(900, 20, 0).bytes(), 30, "shown up to there", 1},
        {empty().block(900, 0).block(950, 20, 0).bytes(), 30, "shown up to there", 1},
        {cut(empty().block(900, 20)), 30, "shown up to there", 1},
        {empty().block(900, 20).append(std::string(60, '\7')).bytes(), 30, "shown up to there", 1},
        {empty().block(60, 20, 0).bytes(), 30, "shown up to there", 1},
        {empty().block(60, 20, 4'000'000'000).bytes(), 30, "shown up to there", 1},
        {empty().block(60, 20).append(std::string(60, '\7')).bytes(), 30, "shown up to there", 1},
        // The clock starts anew, or a day passes, behind it.
        {cut(empty().block(900, 20).block(60, 20)), 65, "15 are left", 3},
        {cut(empty().block(60, 20).block(3000, 20)), 65, "15 are left", 3},
        {empty().block(60, 20).block(9000, 20, 0).bytes(), 70, "not closed", 3},
        {empty().block(900, 20).block(60, 20, 0).bytes(), 70, "not closed", 3},
        {empty().block(60, 20).append("123").bytes(), 50, "last 3 bytes", 2},
        {empty().block(900, 3).block(60, 40).bytes(), 73, "clock started anew", 3},
        {empty().block(900, 20).block(2'600'000'000, 20).bytes(), 70, "", 3},
        {cut(empty().block(2'600'000'000, 20).block(2'600'001'000, 20)), 65, "15 are left", 3},
        {made().block(800, 0).append(quiet + std::string(200, '\0')).bytes(), 30, "up to there"},
        {started().block(5000, 3).block(60, 40).bytes(), 43, "clock started anew", 2},
    });
    EXPECT_DOUBLE_EQ(reader.getClockTime(3 / 2000.0), start + 60 / 30000.0);
}

TEST_F(Blackrock, CopiesThatWereCutHoldNoSampleThatIsNone) {
    const std::string whole = BlackrockFile("NEURALCD", 2, 3)
                                  .channels(2)
                                  .block(50000, 3)
                                  .block(50100, 0)
                                  .block(50100, 0)
                                  .block(0, 200) // more than 16 times what a short copy holds
                                  .block(30000, 20)
                                  .bytes();
    // From the first sample on.
    for (std::size_t length = 459; length <= whole.size(); length += length < 500 ? 1 : 7) {
        ASSERT_TRUE(opens(whole.substr(0, length))) << length;
        EXPECT_GE(reader.sampleCount(), length < 1294 ? 1 : 203) << length;
        ASSERT_NO_FATAL_FAILURE(holds(ramp)) << length;
    }
}

TEST_F(Blackrock, ClocksThatStartAnewKeepThePausesBefore) {
    const BlackrockFile file =
        BlackrockFile("NEURALCD", 2, 3).channels(1).block(0, 100).block(6000, 100).block(750, 100);
    dir.write("Rec.nev", BlackrockEventFile()
                             .digital(300, 1)   // the first block alone
                             .digital(1200, 2)  // the first and the last
                             .digital(2000, 3)  // the last, a pause before the second
                             .digital(3000, 4)  // that pause alone
                             .digital(6750, 5)  // the second
                             .digital(90000, 6) // none
                             .bytes());
    ASSERT_TRUE(opens(file));
    // The second block ends at 0.25 s, where the third begins at 0.025 s.
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.0), start - 0.225);
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.05), start - 0.025);
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.1), start + 0.025);
    EXPECT_EQ(findings(), std::vector<std::string>{"the time stamp of the data block at offset 798 "
                                                   "is lower than the one before: the clock "
                                                   "started anew"});
    LogCapture log;
    EXPECT_EQ(events(), (std::vector<std::string>{"20 1", "100 4", "150 5", "230 2", "283 3"}));
    EXPECT_THAT(log.take(logWarning),
                testing::ElementsAre(HasSubstr("left out (1)"), HasSubstr("showed as well (1)")));
}

TEST_F(Blackrock, ClocksThatStartAnewAllTheTimeAreToldOnce) {
    BlackrockFile file = BlackrockFile("NEURALCD", 2, 3).channels(1);
    for (std::uint64_t i = 0; i < 80; ++i)
        file.block(80000 - 1000 * i, 10);
    dir.write("Rec.nev", BlackrockEventFile().digital(1075, 7).digital(80000, 8).bytes());
    ASSERT_TRUE(opens(file));
    EXPECT_THAT(findings(), testing::ElementsAre(HasSubstr("anew, and so it did 78 times more")));
    LogCapture log;
    EXPECT_EQ(events(), std::vector<std::string>{"795 7"}); // the other one's part is too long ago
    EXPECT_THAT(log.take(logWarning),
                testing::ElementsAre(HasSubstr("left out (1)"), HasSubstr("showed as well (2)")));
}

TEST_F(Blackrock, TicksThatDoNotAgreeWithThePeriodAreTold) {
    reads({
        {BlackrockFile("NEURALCD", 2, 3).channels(1).ticks(20000).block(0, 20).bytes(), 20,
         "(offset 290) is 20000, not 30000: the rate of 2000 Hz is doubtful"},
        {BlackrockFile("NEURALCD", 2, 3).channels(1).ticks(1'000'000'000).block(0, 20).bytes(), 20,
         "is doubtful"},
        {BlackrockFile("BRSMPGRP", 3, 0).channels(1).ticks(1'000'000'000).block(0, 20).bytes(), 20,
         ""},
    });
}

TEST_F(Blackrock, SamplesOfANetworkClockFormRuns) {
    BlackrockFile file("BRSMPGRP", 3, 0);
    file.channels(3).ticks(1'000'000'000);
    for (std::uint64_t i = 0; i < 200; ++i) // 2 kHz with jitter, and a pause of 2 s
        file.block(7'000'000 + i * 500'000 + i % 3 * 1000 + (i < 120 ? 0 : 2'000'000'000), 1);
    reads({{file.bytes(), 200, "", 2}});
    EXPECT_NEAR(reader.getClockTime(0.06), start + 2.067, 1e-5);
    EXPECT_FALSE(opens(file.block(9'000'000'000, 7)));
    EXPECT_EQ(reader.getLastError(), 3);
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("(that at offset 4312 has 7)"));
}

TEST_F(Blackrock, DriftsOfANetworkClockMoveNoEventAndHideNoLoss) {
    const struct {
        std::uint64_t step; // nanoseconds; the rate says 500'000
        const char* missing;
    } cases[] = {{505'000, "30 samples (0.015155 s)"}, {495'000, "30 samples (0.014845 s)"}};
    for (const auto& c : cases) {
        const auto stamp = [&](std::uint64_t i) {
            return c.step * (i + (i < 200 ? 0 : 30) + (i < 250 ? 0 : 40));
        };
        BlackrockFile file = BlackrockFile("BRSMPGRP", 3, 0).channels(1).ticks(1'000'000'000);
        for (std::uint64_t i = 0; i < 300; ++i)
            file.block(stamp(i), 1);
        dir.write("Rec.nev", BlackrockEventFile(true)
                                 .ticks(1'000'000'000)
                                 .digital(stamp(100), 1)
                                 .digital(stamp(199), 2)
                                 .digital(stamp(199) + 9 * c.step, 3) // lost
                                 .digital(stamp(249), 4)
                                 .digital(stamp(250) - c.step / 3, 5)
                                 .digital(stamp(299), 6)
                                 .digital(stamp(299) + c.step, 7) // the very end
                                 .digital(stamp(299) + 2 * c.step, 8)
                                 .bytes());
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(findings(), std::vector<std::string>{
                                  "by its time stamps " + std::string(c.missing) +
                                  " are missing before sample 200, and more at others (1)"});
        LogCapture log;
        EXPECT_EQ(events(), (std::vector<std::string>{"100 1", "199 2", "200 3", "249 4", "250 5",
                                                      "299 6", "300 7"}));
        EXPECT_THAT(log.take(logWarning), testing::ElementsAre(HasSubstr("left out (1)")));
    }
}

TEST_F(Blackrock, OddStampsOfANetworkClockAreToldForWhatTheyAre) {
    const struct {
        std::function<std::uint64_t(std::uint64_t)> stamp; // in samples of 0.5 ms
        std::vector<std::string> findings;
    } cases[] = {
        {[](auto i) { return i == 400 ? 300 : i; }, {}}, // nothing is missing
        {[](auto i) { return i + (i < 100 ? 0 : 1) + (i < 110 ? 0 : 1); },
         {"steps of its time stamps of 1.5 to 2 times the usual one, at each of which a sample may "
          "be missing: 2"}},
        {[](auto i) { return i < 60 ? i + 100 : i - 60; },
         {"the time stamp of the data block at offset 1280 is lower than the one before: the clock "
          "started anew"}},
        {[](auto i) { return 3 * i; }, // no two samples follow each other
         {"by its time stamps 2 samples (0.001 s) are missing before sample 1, and more at others "
          "(598)"}},
        {[](auto i) { return i * 8 / 5; }, // joined, but at another rate
         {"steps of its time stamps of 1.5 to 2 times the usual one, at each of which a sample may "
          "be missing: 359",
          "its time stamps tell of 0.4795 s for the 600 samples from 0 on, which last 0.3 s at "
          "2000 "
          "Hz: that rate or the clock there is wrong"}},
        // Another loss behind a run that was set back: 190 samples from the latest stamp.
        {[](auto i) {
             return i < 100 ? i : i < 200 ? i + 60 : i < 400 ? i - 100 : i + 90;
         },
         {"by its time stamps 60 samples (0.03 s) are missing before sample 100, and more at "
          "others (1)",
          "segment 3 of 4 begins 0.03 s before an earlier one: samples there are shown as if there "
          "were no pause"}},
    };
    for (const auto& c : cases) {
        BlackrockFile file = BlackrockFile("BRSMPGRP", 3, 0).channels(1).ticks(1'000'000'000);
        for (std::uint64_t i = 0; i < 600; ++i)
            file.block(500'000 * c.stamp(i), 1);
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(findings(), c.findings) << &c - cases;
    }
}

// Half a second each. A drift of the clock explains a ten-thousandth of that, no more.
TEST_F(Blackrock, WhatIsMissingBetweenLongBlocksIsTold) {
    const auto findingsOf = [this](std::int64_t frames, std::uint64_t apart) {
        BlackrockFile file = BlackrockFile("BRSMPGRP", 3, 0).channels(1).ticks(1'000'000'000);
        for (std::uint64_t i = 0; i < 5; ++i)
            file.block(i * apart, frames);
        EXPECT_TRUE(opens(file));
        return findings();
    };
    EXPECT_THAT(findingsOf(1000, 500'500'000), testing::IsEmpty());
    EXPECT_THAT(findingsOf(1000, 590'000'000),
                testing::ElementsAre("by its time stamps 180 samples (0.09 s) are missing before "
                                     "sample 1000, and more at others (3)"));
    EXPECT_THAT(findingsOf(20000, 10'001'400'000), testing::IsEmpty());
    EXPECT_THAT(findingsOf(20000, 10'001'600'000),
                testing::ElementsAre(HasSubstr("3 samples (0.0016 s) are missing before")));
    EXPECT_THAT(findingsOf(1000, 480'000'000), testing::IsEmpty()) << "80 ms less in all";
    EXPECT_THAT(findingsOf(1000, 450'000'000),
                testing::ElementsAre("its time stamps tell of 2.3 s for the 5000 samples from 0 "
                                     "on, which last 2.5 s at 2000 Hz: that rate or the clock "
                                     "there is wrong"));
}

TEST_F(Blackrock, NetworkClocksStartAnewBeyondTheirJitter) {
    const struct {
        std::uint64_t back; // samples of 0.5 ms
        std::vector<std::string> findings;
        double begin; // seconds behind the start
        std::vector<std::string> events;
    } cases[] = {
        {600,
         {"the time stamp of the data block at offset 15380 is lower than the one before: the "
          "clock "
          "started anew"},
         0.2 - 0.5,
         {"200 1", "900 3", "1050 2"}},
        {100, {}, 0.0, {"200 1", "450 2", "1000 3"}},
    };
    for (const auto& c : cases) {
        BlackrockFile file = BlackrockFile("BRSMPGRP", 3, 0).channels(1).ticks(1'000'000'000);
        for (std::uint64_t i = 0; i < 1100; ++i)
            file.block(500'000 * (i < 1000 ? i : i - c.back), 1);
        dir.write("Rec.nev", BlackrockEventFile(true)
                                 .ticks(1'000'000'000)
                                 .digital(100'000'000, 1)
                                 .digital(225'000'000, 2)
                                 .digital(450'000'000, 3)
                                 .bytes());
        ASSERT_TRUE(opens(file));
        EXPECT_EQ(findings(), c.findings);
        EXPECT_NEAR(reader.getClockTime(0.0), start + c.begin, 1e-6);
        const LogCapture log;
        EXPECT_EQ(events(), c.events);
    }
}

TEST_F(Blackrock, EventsStandAtTheirSamples) {
    const auto text = std::string("\xB5\0s\0", 4); // in UTF-16
    const BlackrockEventFile made = BlackrockEventFile()
                                        .digital(2992, 1)
                                        .digital(3000 + 15 * 40, 513)
                                        .spike(3100, 7)
                                        .comment(3000 + 15 * 50, "seizure ")
                                        .comment(0xFFFFFFFF, "on the left")
                                        .comment(6000, text, 1)
                                        .digital(9000 + 15 * 150 + 300, 4);
    dir.write("rec.NEV", made.bytes());
    const BlackrockFile file =
        BlackrockFile("NEURALCD", 2, 3).channels(1).block(3000, 100).block(9000, 150);
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(events(),
              (std::vector<std::string>{"40 513", "50 seizure on the left", "100 \xC2\xB5s"}));
    EXPECT_TRUE(findings().empty());
    for (std::size_t length = 8; length < made.bytes().size(); length += 13) {
        dir.write("rec.NEV", made.bytes().substr(0, length));
        ASSERT_TRUE(opens(file)) << length;
        LogCapture log;
        EXPECT_LE(events().size(), 3U);
        const std::size_t packets = length < 336 ? 0 : (length - 336) / 48;
        EXPECT_EQ(log.take(logWarning).size(),
                  (length > 336 && (length - 336) % 48 > 0 ? 1U : 0U) + (packets > 0 ? 1U : 0U));
        ASSERT_EQ(findings().size(), length < 336 ? 1U : 0U) << length;
        if (length < 336) {
            EXPECT_THAT(findings()[0], HasSubstr("ends after " + std::to_string(length)));
        }
    }
    const struct {
        std::string bytes;
        const char* told;
    } outside[] = {
        {made.bytes(), "events outside the recording are left out (2)"},
        {BlackrockEventFile().digital(9, 5).digital(2'000'000, 5).bytes(), "all its events (2)"},
    };
    for (const auto& c : outside) {
        dir.write("rec.NEV", c.bytes);
        ASSERT_TRUE(opens(file));
        LogCapture log;
        events();
        EXPECT_THAT(log.take(logWarning), testing::ElementsAre(HasSubstr(c.told)));
    }
    dir.write("rec.NEV", BlackrockEventFile().hour(12).digital(3000, 5).bytes());
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(events(), std::vector<std::string>{"0 5"}) << "another time zone";
    dir.write("rec.NEV", poked(made.bytes(), 38, u8(17))); // the minute of its start
    ASSERT_TRUE(opens(file));
    EXPECT_TRUE(events().empty());
    EXPECT_THAT(findings().at(0), HasSubstr("another recording"));
}

TEST_F(Blackrock, EventsOfANetworkClockHaveWideStamps) {
    BlackrockFile file("BRSMPGRP", 3, 0);
    file.channels(2).ticks(1'000'000'000);
    constexpr std::uint64_t epoch = 1'700'000'000'000'000'000; // nanoseconds since 1970
    for (std::uint64_t i = 0; i < 100; ++i)
        file.block(epoch + i * 500'000, 1);
    dir.write("Rec.nev", BlackrockEventFile(true)
                             .ticks(1'000'000'000)
                             .digital(epoch + 20'000'000, 65535)
                             .comment(epoch + 30'000'000, "half ")
                             .comment(~std::uint64_t{0}, "and ")
                             .comment(0xFFFFFFFF, "half")
                             .bytes());
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(events(), (std::vector<std::string>{"40 65535", "60 half and half"}));
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.0), start);
    EXPECT_THAT(findings().at(0), HasSubstr("first time stamp lies 1700000000 s"));
}

TEST_F(Blackrock, FilesOfVersion21TakeScaleNamesAndTimeFromTheEventFile) {
    const BlackrockFile file = BlackrockFile("NEURALSG", 2, 1).channels(3).block(0, 60).append("x");
    ASSERT_TRUE(opens(file));
    EXPECT_STREQ(reader.channelName(2), "elec3");
    EXPECT_EQ(reader.calibration(0), 0.25);
    EXPECT_THAT(findings().at(0), HasSubstr("for 3 of 3 channels: 0.25 uV per bit is assumed"));
    dir.write("Rec.nev", BlackrockEventFile()
                             .scale(1, 500)
                             .scale(2, 21516)
                             .label(2, "left")
                             .comment(600, "go")
                             .bytes());
    ASSERT_TRUE(opens(file));
    EXPECT_EQ(reader.calibration(0), 0.5);
    EXPECT_DOUBLE_EQ(reader.calibration(1), 152.592547);
    EXPECT_STREQ(reader.channelName(1), "left");
    EXPECT_DOUBLE_EQ(reader.getClockTime(0.0), start);
    EXPECT_EQ(events(), std::vector<std::string>{"40 go"});
    EXPECT_THAT(findings().at(0), HasSubstr("for 1 of 3 channels"));
    std::filesystem::remove(dir.file("Rec.nev"));
    std::filesystem::create_symlink("nowhere", dir.file("Rec.nev"));
    EXPECT_FALSE(opens(file));
    EXPECT_THAT(reader.lastErrorText(), HasSubstr("of the .nev beside it: no such file"));
}

TEST_F(Blackrock, OtherVariantsAndLyingHeadersAreRefused) {
    const std::string good = BlackrockFile("NEURALCD", 2, 3).channels(2).block(0, 30).bytes();
    refuses({
        {BlackrockEventFile().bytes(), 3, "event file"},
        {poked(good, 9, "\4"), 3, "version 2.4 of NEURALCD"},
        {BlackrockFile("BRSMPGRP", 2, 3).channels(1).block(0, 9).bytes(), 3, "version 2.3"},
        {poked(good, 0, "NEURALXX"), 3, "file id (offset 0) is \"NEURALXX\", none of NEURALSG"},
        {poked(good, 310, u32(0)), 2, "number of channels (offset 310) is 0"},
        {poked(good, 310, u32(~0U)), 2, "is 4294967295"},
        {poked(good, 310, "\3"), 2, "header of 3 channels takes 512"},
        {poked(good, 10, u32(0x7FFFFFFF)), 2, "number of header bytes (offset 10) is 2147483647"},
        {poked(good, 286, u32(0)), 2, "sampling period (offset 286) is 0"},
        {poked(good, 290, u32(0)), 2, "ticks per second (offset 290) is 0"},
        {poked(good, 380, "XX"), 2, "channel 2 (offset 380)"},
        {good.substr(0, 446), 2, "no samples"},
    });
    std::string error;
    EXPECT_FALSE(openReader(dir.write("a.toc", "anything").c_str(), 0, &error));
    EXPECT_THAT(error, HasSubstr(".toc are a variant"));
}

} // namespace
} // namespace kvsig::test
