#include "Check.h"
#include "Target.h"
#include "Workspace.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageFiles.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/Translate1020.h"
#include "kvsig/readers/EDF90Reader.h"
#include "support/EdfFile.h"
#include "support/TempDir.h"

#include <algorithm>
#include <array>
#include <sstream>

// Montages over one recording of the usual electrodes, against a common reference or bipolar.
namespace kvsig::fuzz {
namespace {

constexpr int mostMontages = 4;
constexpr int mostRows = 12;
constexpr int mostRowsAtOnce = 64;
constexpr int mostLines = 64;

class Recording {
  public:
    explicit Recording(const char* reference) {
        test::EdfFile file;
        for (const char* name : {"Fp1", "Fp2", "F7", "F3", "Fz", "F4", "F8", "T3", "C3", "Cz", "C4",
                                 "T4",  "T5",  "P3", "Pz", "P4", "T6", "O1", "O2", "A1", "A2"})
            file.signal(std::string("EEG ") + name + reference, 32);
        reader.open(file.records(8).writeTo(m_dir.file("montage.edf")).c_str());
        check(reader.sampleCount() == 256, "the recording opens");
    }

    EDF90Reader reader;

  private:
    test::TempDir m_dir;
};

DataReader& referential() {
    static Recording recording("-Ref");
    return recording.reader;
}

DataReader& bipolar() {
    static Recording recording("-T3");
    return recording.reader;
}

void showRow(DataSource& row) {
    std::array<float, 64> out{};
    char definition[DataSource::definitionSize];
    static_cast<void>(row.getData(0, 63, out.data(), 1.0));
    row.iterSetPosition(16, 1.0);
    static_cast<void>(row.iterGetData(16, out.data(), 1.0));
    for (const bool settings : {false, true})
        row.constructDefn(definition, settings);
    static_cast<void>(std::string(row.name()) + row.grid1() + row.grid2());
    static_cast<void>(row.type());
}

void showMontage(SourceMontage& montage) {
    for (int i = 0; i < std::min(montage.sourceCount(), mostRows); ++i)
        showRow(*montage.source(i));
    for (int i = 0; i < std::min(montage.avgRefCount(), mostRows); ++i)
        showRow(*montage.avgRef(i));
    static_cast<void>(montage.isReferential());
    static_cast<void>(montage.changeReference("A1"));
    static_cast<void>(montage.changeReference(nullptr));
}

// Two montages made alike: the rows of one are asked one after the other, those of the other all at
// once.
void compareRows(SourceMontage& single, SourceMontage& together) {
    const int count = std::min(single.sourceCount(), mostRowsAtOnce);
    for (const long first : {40L, 70L}) {
        std::vector<std::vector<float>> rows(static_cast<std::size_t>(count),
                                             std::vector<float>(64));
        std::vector<float*> buffers(static_cast<std::size_t>(together.sourceCount()), nullptr);
        std::transform(rows.begin(), rows.end(), buffers.begin(),
                       [](std::vector<float>& row) { return row.data(); });
        static_cast<void>(together.getData(first, first + 63, buffers.data(), 0.5));
        std::vector<float> alone(64);
        for (int i = 0; i < count; ++i) {
            static_cast<void>(single.source(i)->getData(first, first + 63, alone.data(), 0.5));
            check(sameValues(alone, rows[static_cast<std::size_t>(i)]),
                  "rows at once are the rows one by one");
        }
    }
}

template <typename Make>
void makeTwice(DataReader& reader, SourceMontage& single, Make make) {
    SourceMontage together;
    for (SourceMontage* montage : {&single, &together}) {
        montage->setReader(&reader);
        montage->setHighPass({.use = true, .cutoff = 1.0});
        make(*montage);
        montage->updateFilters();
    }
    compareRows(single, together);
}

void makeMontages(DataReader& reader) {
    const std::vector<std::string> names = MontageNames();
    int count = 0;
    for (const std::string& name : names) {
        if (++count > mostMontages)
            break;
        SourceMontage montage;
        makeTwice(reader, montage, [&name](SourceMontage& made) {
            static_cast<void>(made.createMontage(name.c_str()));
        });
        showMontage(montage);
    }
}

void readMontages(std::string_view input, const char* fileName) {
    const WrittenInput file(input, fileName);
    SetMontageDirectory("");
    for (DataReader* reader : {&referential(), &bipolar()})
        makeMontages(*reader);
    SetMontageDirectory(nullptr);
}

// Each line is a definition; rows that it makes can be described and made again.
void resolveDefinitions(std::string_view input) {
    SourceMontage montage;
    montage.setReader(&referential());
    std::vector<std::string> made;
    for (int line = 0; line < mostLines && !input.empty(); ++line) {
        const std::string defn(input.substr(0, input.find('\n')));
        input.remove_prefix(std::min(defn.size() + 1, input.size()));
        char grid1[gridNameSize] = "";
        char grid2[gridNameSize] = "";
        char name[derivationNameSize];
        std::string rest(defn.size() + 1, '\0');
        static_cast<void>(ParseG1G2(defn.c_str(), grid1, grid2, rest.data()));
        NameFromDefn(defn.c_str(), "Ref", name);
        double weight = 0.0;
        std::string term = defn;
        static_cast<void>(YankAvgWgt(term.data(), weight));
        std::string names = defn;
        static_cast<void>(
            Translate1020To1010Names(names.data(), names.data() + names.size(), true));
        static_cast<void>(montage.indexOfName(defn.c_str()));
        static_cast<void>(montage.indexOfFullName(defn.c_str()));
        static_cast<void>(montage.changeReference(defn.c_str()));
        DataSource* source = montage.createSource(defn.c_str());
        if (!source)
            continue;
        made.push_back(defn);
        showRow(*source);
        char written[DataSource::definitionSize];
        source->constructDefn(written, true);
        // An average may be longer than a definition can be; it is cut then.
        if (std::string_view(written).size() + 1 < sizeof written && !source->isGap() &&
            montage.avgRefCount() == 0)
            check(montage.createSource(written) != nullptr, "a row's own definition makes a row");
    }
    SourceMontage again;
    makeTwice(referential(), again, [&made](SourceMontage& rows) {
        for (const std::string& defn : made)
            static_cast<void>(rows.createSource(defn.c_str()));
    });
}

} // namespace

std::vector<Target> montageTargets() {
    const char* const ini =
        "[Double banana]\nFp1-F7=\nF7-T3|10,1,1,0,(off),70 Hz,0,0,0,0=own name\n"
        "Gap=\nCz-0.5*F3-0.5*F4=\nA1+A2=\nC3-A1+A2=\n[Avg]\nF3:0.5+F4:0.5=\n";
    const char* const xml =
        "<Templates><Template Name=\"A\"><Defn><AvgRef Definition=\"A1+A2\" Name=\"Ears\"/>"
        "<Channel Definition=\"Fp1-F7\"/><Channel Definition=\"C3-Ears|0,0,0,0,1 sec,(off)\"/>"
        "</Defn></Template></Templates>";
    const char* const definitions =
        "Fp1-F7\nC3\nGap 2\nF3:0.5+F4:0.5\nFp1-0.5*F7-0.5*T3\nCz-Ref|10,1,0,3,0.16 sec,70 Hz,"
        "1,1,-5.5,5.5\nO1-A1+A2\n";
    return {{"montage_ini",
             "montage",
             [](std::string_view input) { readMontages(input, "kvmont.ini"); },
             {ini}},
            {"montage_xml",
             "xml",
             [](std::string_view input) { readMontages(input, "KVMontageTemplates.xml"); },
             {xml}},
            {"definitions", "montage", resolveDefinitions, {definitions}}};
}

} // namespace kvsig::fuzz
