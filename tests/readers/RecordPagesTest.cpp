#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "support/EdfFile.h"
#include "support/Opened.h"
#include "support/SameSamples.h"
#include "support/TempDir.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace kvsig {
namespace {

using test::EdfFile;
using test::FramesOnly;

// Records long enough that one channel is read alone.
EdfFile wideFile() {
    EdfFile file;
    for (const char* label : {"Fp1", "Fp2", "Cz", "ECG"})
        file.signal(label, 1500);
    return file.units("mV").duration("0.5").records(41);
}

EdfFile mixedFile() {
    EdfFile file;
    file.signal("Fp1", 4096).signal("Fp2", 2048).signal("EDF Annotations", 57).signal("Cz", 1024);
    file.signal("Resp", 512).units("").signal("Steps", 300).signal("Temp", 1).units("C");
    return file.duration("1").records(23).reserved("EDF+C");
}

// The same file by both ways.
template <typename Reader>
class BothWays {
  public:
    explicit BothWays(const EdfFile& file, const char* name = "a.edf")
        : path(m_dir.write(name, file.bytes())) {
        EXPECT_TRUE(straight.open(path.c_str())) << straight.lastErrorText();
        EXPECT_TRUE(framed.open(path.c_str()));
    }

  private:
    test::TempDir m_dir;

  public:
    const std::string path;
    Reader straight;
    FramesOnly<Reader> framed;
};

TEST(RecordPages, GiveTheSamplesOfChunkReads) {
    BothWays<EDF90Reader> wide(wideFile());
    test::expectSameSamples(wide.straight, wide.framed, 2000);
    BothWays<EDF90Reader> mixed(mixedFile());
    test::expectSameSamples(mixed.straight, mixed.framed, 2000);
    BothWays<TelefactorEDFReader> telefactor(wideFile().append("half a record"));
    test::expectSameSamples(telefactor.straight, telefactor.framed, 300);
    // Signals behind the ones that chunks take, between them, and of another rate.
    BothWays<BDFReader> bdf(wideFile().bdf(), "a.bdf");
    test::expectSameSamples(bdf.straight, bdf.framed, 2000);
    BothWays<BDFReader> annotated(EdfFile()
                                      .bdf()
                                      .reserved("EDF+C")
                                      .signal("A", 1500)
                                      .signal("EDF Annotations", 1500)
                                      .signal("B", 1500)
                                      .records(12),
                                  "a.bdf");
    test::expectSameSamples(annotated.straight, annotated.framed, 500);
    BothWays<BDFReader> uneven(mixedFile().bdf(), "a.bdf");
    test::expectSameSamples(uneven.straight, uneven.framed, 100);
}

TEST(RecordPages, FollowAFileThatShrinksAndGrows) {
    BothWays<EDF90Reader> both(wideFile());
    const auto whole = std::filesystem::file_size(both.path);
    for (const auto length :
         {whole / 2, std::uintmax_t{1280}, whole / 3, std::uintmax_t{5}, whole}) {
        std::filesystem::resize_file(both.path, length);
        for (DataReader* reader :
             {static_cast<DataReader*>(&both.straight), static_cast<DataReader*>(&both.framed)})
            reader->flushPages(false);
        test::expectSameSamples(both.straight, both.framed, 120);
    }
}

// Fewer channels than the file has are a host's business, more are nobody's.
TEST(RecordPages, FollowTheHostsChannelCount) {
    BothWays<EDF90Reader> both(wideFile());
    for (const int count : {2, 4, 5, 1, 3}) {
        both.straight.setChannelCount(count);
        both.framed.setChannelCount(count);
        test::expectSameSamples(both.straight, both.framed, 60);
    }
}

// A host's own chunks are what its reader shows.
TEST(RecordPages, LeaveAHostsOwnChunksAlone) {
    class Doubled : public EDF90Reader {
      public:
        int getChunk(long bytePos, short* buffer, int bytes) override {
            const int read = EDF90Reader::getChunk(bytePos, buffer, bytes);
            for (int i = 0; i < read / 2; ++i)
                buffer[i] = static_cast<short>(2 * buffer[i]);
            return read;
        }
    };
    test::TempDir dir;
    const EdfFile file = EdfFile().signal("Fp1", 100).records(3);
    const std::string path = dir.write("a.edf", file.bytes());
    Doubled reader;
    ASSERT_TRUE(reader.open(path.c_str()));
    EXPECT_EQ(test::rawOf(reader, 0, 7, 7).front(), 2 * file.sample(0, 7));
}

} // namespace
} // namespace kvsig
