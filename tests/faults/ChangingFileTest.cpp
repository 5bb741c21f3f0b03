#include "compliance/RowFixture.h"
#include "support/ReadAround.h"

// Files that change while they are open.
namespace kvsig::test {
namespace {

// Of recordings of three 16-bit channels, 16 frames to a record and 160 to a page.
class ChangingFile : public RowFixture {
  protected:
    static constexpr long whole = 752;

    void resize(long frames) const {
        const std::size_t length = file.boundaries.back() + static_cast<std::size_t>(frames) * 6;
        dir.write(file.fileName, std::string_view(file.bytes).substr(0, length));
    }
    void openWith(long frames) {
        resize(frames);
        ASSERT_TRUE(reader->open(path.c_str())) << reader->lastErrorText();
        ASSERT_EQ(reader->sampleCount(), frames);
    }
    // Frames from `from` up to `to`, of which those before `end` are there.
    void expectFrames(long from, long to, long end) {
        for (int channel = 0; channel < file.channels; ++channel)
            EXPECT_EQ(rawOf(*reader, channel, from, to - 1), expected(channel, from, to - 1, end));
    }

    const std::unique_ptr<DataReader> reader = newReader();
};

// The way to follow a recording that is still being written: readSampleInfo() takes its length
// anew, flushPages(true) lets go of the page that ended with the old one.
TEST_P(ChangingFile, AGrownRecordingIsFollowed) {
    openWith(192);
    expectFrames(160, 320, 192);
    resize(528);
    EXPECT_EQ(reader->sampleCount(), 192) << "not before it is asked to";
    reader->flushPages(true);
    expectFrames(160, 320, 320); // the page that was not full
    expectFrames(320, 528, 320); // behind the known length
    for (const long length : {528L, 544L, whole}) {
        resize(length);
        ASSERT_TRUE(reader->readSampleInfo());
        reader->flushPages(true);
        EXPECT_EQ(reader->sampleCount(), length);
        expectFrames(0, length, length);
    }
    EXPECT_EQ(reader->sampleTimeCount(), 1);
}

TEST_P(ChangingFile, ADisappearedFileIsReadOnAndDoesNotOpenAgain) {
    openWith(whole);
    fs::remove(path);
    expectFrames(0, whole, whole);
    EXPECT_FALSE(reader->open(path.c_str()));
    EXPECT_EQ(reader->getLastError(), 1);
    EXPECT_STREQ(reader->lastErrorText(), (path + ": no such file").c_str());
    expectFrames(0, whole, 0);
    openWith(whole);
    expectFrames(0, whole, whole);
}

// Writers that replace a file leave the old one to those who have it open.
TEST_P(ChangingFile, AReplacedFileIsReadOnAsItWas) {
    openWith(whole);
    fs::rename(dir.write("new", std::string(file.bytes.size(), '1')), path);
    expectFrames(0, whole, whole);
}

INSTANTIATE_TEST_SUITE_P(Formats, ChangingFile,
                         testing::Values(edfRows().front(), rawRows().front()), rowName);

class ShrinkingFile : public RowFixture {};

TEST_P(ShrinkingFile, ShowsWhatIsThereAndZeros) {
    const auto reader = openedReader();
    const auto all = [&] {
        reader->flushPages(false);
        return rawOf(*reader, file.channels - 1, 0, file.storedSampleCount - 1);
    };
    const Counts sound = all();
    const std::size_t header = file.boundaries.back();
    const Counts zeros(sound.size(), 0);
    fs::resize_file(path, header + (file.bytes.size() - header) * 3 / 4);
    const Counts cut = all();
    for (std::size_t i = 0; i < sound.size(); ++i)
        ASSERT_TRUE(cut[i] == sound[i] || (i > sound.size() / 2 && cut[i] == 0)) << i;
    EXPECT_NE(cut, sound);
    for (const std::size_t length : {header, std::size_t{0}}) {
        fs::resize_file(path, length);
        EXPECT_EQ(all(), zeros);
    }
    readAround(*reader);
    static_cast<void>(file.writeTo(dir));
    EXPECT_EQ(all(), sound) << "it is back";
    fs::resize_file(path, 0);
    EXPECT_FALSE(reader->open(path.c_str()));
}

INSTANTIATE_TEST_SUITE_P(Edf, ShrinkingFile, testing::ValuesIn(edfRows()), rowName);
INSTANTIATE_TEST_SUITE_P(Raw, ShrinkingFile, testing::Values(rawRows().front()), rowName);
INSTANTIATE_TEST_SUITE_P(Flat, ShrinkingFile, testing::ValuesIn(flatRows()), rowName);

} // namespace
} // namespace kvsig::test
