#include "ReaderLife.h"

#include "Check.h"
#include "Workspace.h"
#include "kvsig/kernel/ExportAttributes.h"
#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/readers/PushableReader.h"
#include "kvsig/registry/Allocation.h"
#include "kvsig/registry/Detection.h"
#include "kvsig/registry/FrontDoor.h"
#include "support/Opened.h"
#include "support/ReadAround.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace kvsig::fuzz {
namespace {

using test::rawOf;
using test::valuesOf;
using Reader = std::unique_ptr<DataReader>;

// What a page of the recording takes, and what is read of it at most: a header of few bytes may
// declare a recording of terabytes.
constexpr std::int64_t largePage = std::int64_t{4} << 20;
constexpr long longestWalk = 1L << 15;

std::string attributesOf(DataReader& reader) {
    std::ostringstream stream;
    check(reader.writeAttributeFile(stream), "the attribute file of an open reader can be written");
    return stream.str();
}

class Life {
  public:
    Life(const test::ReaderRow& row, const WrittenInput& input) : m_row(row), m_input(input) {}

    void run() {
        const int detected = DetectFileType(m_input.path.c_str());
        check(detected == DetectFileType(m_input.path.c_str()), "a type is detected twice alike");
        const Reader reader = newReader();
        if (!reader->open(m_input.path.c_str())) {
            refused(*reader);
            passTheFrontDoor(false);
            return;
        }
        check(reader->getLastError() == 0 && *reader->lastErrorText() == '\0',
              "a reader that opens has no error");
        check(reader->channelCount() > 0 && reader->sampleCount() > 0,
              "a recording that opens has channels and samples");
        askEverything(*reader);
        readEverywhere(*reader);
        keepAttributes(*reader);
        showMontages(*reader);
        reopen(*reader);
        passTheFrontDoor(true);
    }

  private:
    Reader newReader() const { return prepared(m_row.reader()); }

    Reader prepared(Reader reader) const {
        std::istringstream attributes(m_input.attributes);
        if (!m_input.attributes.empty())
            static_cast<void>(reader->readAttributeFile(attributes));
        if (auto* pushed = dynamic_cast<PushableReader*>(reader.get()))
            pushed->addPart(m_input.path.c_str(), 1.0);
        return reader;
    }

    void refused(DataReader& reader) const {
        const std::string sentence = reader.lastErrorText();
        check(reader.getLastError() != 0, "a refusal has a code");
        check(sentence.size() > m_input.path.size() + 2, "a refusal has a sentence");
        askEverything(reader);
    }

    void askEverything(DataReader& reader) const {
        test::readAround(reader);
        test::askByIndex(reader);
        std::stringstream stream;
        char name[PatientRec::displayNameSize];
        for (const bool numbers : {true, false}) {
            reader.setGridNamesAsNumbers(numbers);
            for (int channel = 0; channel < std::min<int>(reader.channelCount(), 64); ++channel)
                check(reader.indexOfG1(reader.grid1(channel)) <= channel,
                      "the first channel of an electrode's name is found");
        }
        static_cast<void>(reader.getPatientName(name));
        static_cast<void>(reader.getChannelMapDefn("(Default)", stream));
        static_cast<void>(reader.inspectFile());
    }

    // Both ends, the middle, and the joints of pages.
    [[nodiscard]] static std::vector<long> placesOf(DataReader& reader) {
        const long stored = reader.storedSampleCount();
        const long page = std::max(reader.getPagePts(), 1);
        const std::int64_t pageBytes =
            std::int64_t{page} * reader.channelCount() * reader.bytesPerSample();
        if (pageBytes > largePage)
            return {0, stored - 64};
        return {-30, 0, page - 32, stored / 2, stored - 64, stored - 1, reader.sampleCount() - 64};
    }

    void readEverywhere(DataReader& reader) const {
        const Reader other = newReader();
        check(other->open(m_input.path.c_str()), "a second reader opens what the first one did");
        const Reader framed = prepared(m_row.framedReader());
        check(framed->open(m_input.path.c_str()), "and so does one that reads chunks alone");
        std::vector<long> places = placesOf(reader);
        const std::set<int> channels{0, reader.channelCount() / 2, reader.channelCount() - 1};
        for (const int channel : channels)
            for (const long first : places)
                readWindow(reader, *other, *framed, channel, first);
        std::reverse(places.begin(), places.end());
        for (const long first : places) {
            const long last = windowEnd(reader, first);
            const auto forward = rawOf(reader, 0, first, last);
            reader.setMaxPages(1);
            reader.flushPages(false);
            check(rawOf(reader, 0, first, last) == forward,
                  "counts do not depend on what was read before");
            reader.setMaxPages(15);
        }
        walk(reader, *other, *framed);
    }

    // Up to the last sample. What a page shows behind it depends on where pages begin: zeros where
    // there is none, else the count 0, which is no 0 in channels of other units than microvolts; or
    // the second half of a recording of one-byte samples.
    static long windowEnd(DataReader& reader, long first) {
        return std::min(first + 63, reader.sampleCount() - 1);
    }

    static void readWindow(DataReader& reader, DataReader& other, DataReader& framed, int channel,
                           long first) {
        const long last = windowEnd(reader, first);
        if (last < first)
            return;
        const auto counts = rawOf(reader, channel, first, last);
        const auto values = valuesOf(reader, channel, first, last);
        check(rawOf(reader, channel, first, last) == counts, "a range read twice is equal");
        check(sameValues(valuesOf(reader, channel, first, last), values), "and so are its values");
        reader.flushPages(true);
        check(sameValues(valuesOf(reader, channel, first, last), values),
              "values do not depend on the last page being read again");
        check(rawOf(other, channel, first, last) == counts, "two readers of a file agree");
        check(rawOf(framed, channel, first, last) == counts,
              "counts do not depend on the way to them");
        check(sameValues(valuesOf(framed, channel, first, last), values), "nor do values");
        const long middle = first + (last - first) / 2;
        const auto one = static_cast<std::size_t>(middle - first);
        check(rawOf(reader, channel, middle, middle).front() == counts[one],
              "a single count is that of its block");
        check(sameValues(valuesOf(reader, channel, middle, middle), {values[one]}),
              "a single value is that of its block");
    }

    // End to end in blocks of an odd length, against one block of the other reader.
    static void walk(DataReader& reader, DataReader& other, DataReader& framed) {
        const long length = std::min(reader.sampleCount(), longestWalk);
        const long step = std::max(length / 7 + 1, 1L);
        const int channel = reader.channelCount() - 1;
        const auto whole = valuesOf(other, channel, 0, length - 1);
        check(sameValues(valuesOf(framed, channel, 0, length - 1), whole),
              "a recording read in chunks is the one read in pages");
        for (long first = 0; first < length; first += step) {
            const long last = std::min(first + step, length) - 1;
            const auto block = valuesOf(reader, channel, first, last);
            check(sameValues(block, {whole.begin() + first, whole.begin() + last + 1}),
                  "a recording read in blocks is the one read at once");
        }
        std::vector<float> out(64);
        check(reader.getData(channel, 0, 63, out.data(), 1.0, 1) == 64,
              "the length of the range is returned");
    }

    void keepAttributes(DataReader& reader) const {
        const std::string written = attributesOf(reader);
        const Reader copy = m_row.reader();
        std::istringstream stream(written);
        copy->setFileType(reader.fileType());
        if (!copy->readAttributeFile(stream) || !copy->open(copy->filePath().c_str()))
            return;
        check(attributesOf(*copy) == written,
              "an attribute file that is read back writes the same");
        std::ostringstream ignored;
        check(WriteExportAttributeFile(ignored, &reader, "x.raw"),
              "the attribute file of an export can be written");
    }

    // Rows that keep what they read give what rows without a cache do. Filters are left out: those
    // of a part that the cache does not hold run in anew.
    static void showMontages(DataReader& reader) {
        std::vector<std::string> names{"Recorded"};
        for (int i = 0; i < std::min(reader.montageCount(), 4); ++i)
            names.emplace_back(reader.montageName(i));
        for (const std::string& name : names) {
            SourceMontage cached, plain;
            for (SourceMontage* montage : {&cached, &plain}) {
                montage->setReader(&reader);
                static_cast<void>(montage->createMontage(name.c_str()));
            }
            for (const int row : {0, cached.sourceCount() - 1})
                if (cached.source(row))
                    readCached(*cached.source(row), *plain.source(row));
        }
    }

    static void readCached(DataSource& cached, DataSource& plain) {
        std::vector<float> out(64), expected(64);
        static_cast<void>(cached.getData(0, 63, out.data(), 1.0));
        cached.setUseFilter(false);
        plain.setUseFilter(false);
        plain.setUseCache(false);
        for (const long first : {-8L, 24L, 24L, 40L}) {
            static_cast<void>(plain.getData(first, first + 63, expected.data(), 1.0));
            static_cast<void>(cached.getData(first, first + 63, out.data(), 1.0));
            check(sameValues(out, expected), "a row with a cache gives what one without does");
        }
    }

    void reopen(DataReader& reader) const {
        const short channels = reader.channelCount();
        const long samples = reader.sampleCount();
        const auto before = valuesOf(reader, 0, 0, 63);
        reader.close();
        check(reader.open(m_input.path.c_str()), "a recording that opened opens again");
        check(reader.channelCount() == channels && reader.sampleCount() == samples,
              "with the same channels and samples");
        check(sameValues(valuesOf(reader, 0, 0, 63), before), "and the same values");
    }

    // What the registry allocates is the same reader. Where an attribute file describes the
    // recording, its name alone does not open it.
    void passTheFrontDoor(bool opens) const {
        std::string error;
        const ReaderPtr asked = openReader(m_input.path.c_str(), m_row.type, &error);
        if (m_input.attributes.empty())
            check(static_cast<bool>(asked) == opens, "the front door opens what the reader opens");
        check(asked || error.size() > m_input.path.size(), "the front door says why it does not");
        if (const ReaderPtr found = openReader(m_input.path.c_str()))
            test::readAround(dynamic_cast<DataReader&>(*found));
    }

    const test::ReaderRow& m_row;
    const WrittenInput& m_input;
};

} // namespace

void readerLife(const test::ReaderRow& row, std::string_view fileName, std::string_view input) {
    const WrittenInput written(input, fileName);
    Life(row, written).run();
}

} // namespace kvsig::fuzz
