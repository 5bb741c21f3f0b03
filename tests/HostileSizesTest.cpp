#include "compliance/ReaderRow.h"
#include "kvsig/readers/InterleavedReader.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/registry/types/ReaderType.h"
#include "kvsig/util/Limits.h"
#include "support/Bytes.h"
#include "support/EdfFile.h"
#include "support/ReadAround.h"

#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

// Files of few bytes that claim to be huge, in a process that cannot have the memory which they ask
// for.
namespace kvsig::test {
namespace {

constexpr rlim_t pageBytes = 4096;
constexpr rlim_t mostAddresses = rlim_t{1} << 40; // sanitizers reserve more

rlim_t usedAddresses() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * pageBytes;
}

// Runs `work` in a child that has `bytes` of address space left and says whether it ended well.
bool endsWellWithin(rlim_t bytes, const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit limit{usedAddresses() + bytes, usedAddresses() + bytes};
        const rlimit seconds{20, 20};
        if (::setrlimit(RLIMIT_AS, &limit) != 0 || ::setrlimit(RLIMIT_CPU, &seconds) != 0)
            ::_exit(2);
        work();
        ::_exit(0);
    }
    int status = -1;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class HostileSizes : public testing::Test {
  protected:
    void SetUp() override {
        if (usedAddresses() > mostAddresses)
            GTEST_SKIP() << "a sanitizer needs the address space itself";
    }

    // Whatever it says of itself, it opens and is read around, or is refused.
    void survives(const std::string& path, int type = 0) const {
        EXPECT_TRUE(endsWellWithin(room, [&] {
            std::string error;
            const ReaderPtr reader = openReader(path.c_str(), type, &error);
            if (!reader && error.empty())
                ::_exit(3);
            if (reader)
                readAround(dynamic_cast<DataReader&>(*reader));
        })) << path;
    }

    static constexpr rlim_t room = rlim_t{160} << 20;
    const TempDir dir;
};

TEST_F(HostileSizes, OfEdfHeaders) {
    EdfFile wide;
    for (int i = 0; i < 9999; ++i)
        wide.signal("EEG", 1);
    survives(dir.write("wide.edf", wide.records(4).bytes()));
    wide.poke(wide.fieldOffset(216, 8, 7), "99999999");
    survives(dir.write("wide and long.edf", wide.bytes()));

    EdfFile fast;
    fast.signal("EEG C3", 4).signal("EEG C4", 4).records(40);
    survives(dir.write("fast.edf", fast.duration("1e-7").bytes()));
    fast.duration("1");
    survives(dir.write("long.edf", fast.poke(fast.fieldOffset(216, 8, 0), "99999999").bytes()));
    survives(dir.write("records.edf", fast.poke(236, "99999999").bytes()));
}

// Every field at its greatest, in turn, and every pointer just behind the file.
TEST_F(HostileSizes, OfHeadersOfOtherMakers) {
    for (const ReaderRow& row : flatRows()) {
        const SampleRecording file = row.sample();
        static_cast<void>(file.writeTo(dir));
        EXPECT_TRUE(endsWellWithin(room, [&] {
            for (const std::size_t offset : file.boundaries)
                for (const std::string& value :
                     {u64(~0ULL), u32(0x7FFFFFFF), u32(file.bytes.size() + 1), f64(1e300)}) {
                    const auto reader = row.reader();
                    const std::string path =
                        dir.write(file.fileName, poked(file.bytes, offset, value));
                    if (reader->open(path.c_str()))
                        readAround(*reader);
                    else if (*reader->lastErrorText() == '\0')
                        ::_exit(3);
                    // A page takes a small multiple of the file, whatever rate is claimed.
                    if (std::int64_t{reader->getPagePts()} * reader->channelCount() *
                            reader->bytesPerSample() >
                        static_cast<std::int64_t>(8 * file.bytes.size()))
                        ::_exit(4);
                }
        })) << row.name;
    }
}

TEST_F(HostileSizes, OfLayouts) {
    dir.write("data.raw", std::string(1 << 18, 'x'));
    for (const char* rate : {"1", "9999999", "1e300"})
        for (const char* channels : {"1", "32767", "99999999999"})
            survives(dir.write("a.lay", std::string("[FileInfo]\nFile=data.raw\nFileType="
                                                    "Interleaved\nSamplingRate=") +
                                            rate +
                                            "\nHeaderLength=0\nCalibration=1\nDataType=6\n"
                                            "WaveformCount=" +
                                            channels + "\n[ChannelMap]\nA-B=32767\n"));
}

TEST_F(HostileSizes, OfXmlDocuments) {
    std::string deep;
    while (deep.size() < mostXmlBytes / 8)
        deep += "<a>";
    survives(dir.write("deep.kvx", deep));
    std::string bomb = "<!DOCTYPE a [<!ENTITY b \"bbbbbbbbbb\">";
    for (char c = 'c'; c <= 'z'; ++c)
        bomb += std::string("<!ENTITY ") + c + " \"&" + static_cast<char>(c - 1) + ";&" +
                static_cast<char>(c - 1) + ";&" + static_cast<char>(c - 1) + ";\">";
    survives(dir.write("bomb.kvx", bomb + "]><Layout a=\"&z;\">&z;</Layout>"));
}

} // namespace
} // namespace kvsig::test
