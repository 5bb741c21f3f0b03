#include "kvsig/montage/DefinitionBuilder.h"

#include "kvsig/kernel/IDataReader.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/SourceMontage.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace kvsig {
namespace {

struct Derivation {
    int names = 0;
    std::string grid1, grid2, rest;
};

Derivation parsed(const char* defn) {
    char grid1[gridNameSize] = "";
    char grid2[gridNameSize] = "";
    std::vector<char> rest(viewOf(defn).size() + 1, '\0');
    const int names = ParseG1G2(defn, grid1, grid2, rest.data());
    return {names, grid1, grid2, rest.data()};
}

/// The terms of a weighted sum, resolved.
struct Terms {
    std::vector<int> channels;
    std::vector<double> weights;
};

// The channel of that label, or -1. A pair of recordings answers for electrodes of the second one
// with their numbers there, on purpose; the channel that has such a number in the pair is another
// one, and no row may show it under this label.
int channelOf(IDataReader& reader, const char* label) {
    const int channel = reader.indexOfG1(label);
    return channel >= 0 && equalNoCase(viewOf(reader.grid1(channel)), label) ? channel : -1;
}

DataSource* buildGap(SourceMontage& montage) {
    G1G2Source* gap = montage.createSource(0, 0);
    gap->setKind(1);
    gap->setName(gszGap);
    return gap;
}

void applySettings(G1G2Source& source, const std::string& rest) {
    SourceSettings settings;
    PolyScale scale;
    if (!scanSettings(rest.c_str(), settings, scale))
        return;
    source.setSettings(settings);
    source.setShowScaling(scale.showScaling);
    source.setTransparentScale(scale.transparentScale);
    source.setPolyMinimum(scale.minimum);
    source.setPolyMaximum(scale.maximum);
}

DataSource* buildRow(SourceMontage& montage, int channel1, int channel2, const std::string& rest) {
    G1G2Source* row = montage.createSource(channel1, channel2);
    if (row)
        applySettings(*row, rest);
    return row;
}

AvgSource* buildWeighted(SourceMontage& montage, Terms& terms, const char* defn) {
    AvgSource* average = montage.createSource(terms.channels);
    if (!average || terms.weights.empty())
        return average;
    if (terms.weights.size() == terms.channels.size())
        average->setWeights(terms.weights);
    else
        logMessage(logWarning, "SourceMontage: only some terms of an average have weights; it is "
                               "a plain one: " +
                                   std::string(viewOf(defn)));
    return average;
}

// "0.5*F7" is half of F7; a term of any other form is a label.
bool addFactorTerm(IDataReader& reader, const std::string& term, Terms& terms) {
    double factor = 1.0;
    std::string label = term;
    const std::size_t star = term.find('*');
    if (star != std::string::npos && star + 1 < term.size() &&
        wholeDouble(std::string_view(term).substr(0, star), factor))
        label = term.substr(star + 1);
    else
        factor = 1.0;
    terms.channels.push_back(channelOf(reader, label.c_str()));
    terms.weights.push_back(factor);
    return terms.channels.back() >= 0;
}

// The terms after grid 1. ParseG1G2() cuts them to the size of a name, and a sum with terms missing
// would be another one.
std::string_view uncutTerms(const char* defn) {
    const std::string_view text = derivationOf(defn);
    const std::size_t start = std::min(text.find_first_not_of('-'), text.size());
    return text.substr(std::min(text.find('-', start), text.size()));
}

// The row is built from the average itself: by its text it could name "*" once more.
DataSource* buildNumeric(SourceMontage& montage, const char* defn, const Derivation& derivation) {
    IDataReader& reader = *montage.reader();
    const int channel1 = channelOf(reader, derivation.grid1.c_str());
    if (channel1 < 0 || derivation.names < 2)
        return nullptr;
    Terms terms;
    for (const std::string& term : splitWords(uncutTerms(defn), '-'))
        if (!addFactorTerm(reader, term, terms))
            return nullptr;
    AvgSource* average = buildWeighted(montage, terms, defn);
    if (!average)
        return nullptr;
    const int count = montage.avgRefCount();
    average->setName(("_av" + std::to_string(count)).c_str());
    return buildRow(montage, channel1, (count - 1) | G1G2Source::averageBit, derivation.rest);
}

DataSource* buildAverage(SourceMontage& montage, const char* defn) {
    Terms terms;
    for (std::string& term : splitWords(viewOf(defn), '+')) {
        double weight = 0.0;
        if (YankAvgWgt(term.data(), weight))
            terms.weights.push_back(weight);
        terms.channels.push_back(channelOf(*montage.reader(), term.c_str()));
        if (terms.channels.back() < 0)
            return nullptr;
    }
    AvgSource* average = terms.channels.empty() ? nullptr : buildWeighted(montage, terms, defn);
    // Rows look averages up by name: it is not put together anew each time.
    if (average)
        average->setName(std::string(average->name()).c_str());
    return average;
}

// Where the channels are recorded pairs, only such a pair can be shown.
DataSource* buildRecordedPair(SourceMontage& montage, const Derivation& derivation) {
    IDataReader& reader = *montage.reader();
    for (int i = 0; i < reader.channelCount(); ++i)
        if (equalNoCase(derivation.grid1, reader.grid1(i)) &&
            equalNoCase(derivation.grid2, reader.grid2(i)))
            return buildRow(montage, i, -1, derivation.rest);
    return nullptr;
}

// Whether grid 2 is what the channel was recorded against. A number, where channels go by numbers,
// is always a channel's.
bool isRecordingReference(IDataReader& reader, int channel, const std::string& grid2) {
    const bool isNumber = std::all_of(grid2.begin(), grid2.end(), isDigit);
    return !(reader.gridNamesAsNumbers() && isNumber) && equalNoCase(grid2, reader.grid2(channel));
}

// What stands behind the hyphen: an average or a channel, or -1.
int referenceOf(SourceMontage& montage, const std::string& grid2) {
    return montage.indexOfAvgRef(grid2.c_str()) >= 0 ? montage.idOfChannel2(grid2.c_str())
                                                     : channelOf(*montage.reader(), grid2.c_str());
}

DataSource* buildDerivation(SourceMontage& montage, const Derivation& derivation) {
    IDataReader& reader = *montage.reader();
    const int channel1 = channelOf(reader, derivation.grid1.c_str());
    if (channel1 < 0)
        return nullptr;
    int channel2 = -1;
    if (derivation.names == 2 && !isRecordingReference(reader, channel1, derivation.grid2)) {
        channel2 = referenceOf(montage, derivation.grid2);
        if (channel2 < 0) // else the row would show grid 1 alone under the name of a pair
            return nullptr;
    }
    return buildRow(montage, channel1, channel2, derivation.rest);
}

} // namespace

std::string_view derivationOf(const char* defn) {
    std::string_view text = viewOf(defn);
    text.remove_prefix(std::min(text.find_first_not_of('|'), text.size()));
    return text.substr(0, text.find('|'));
}

bool isAverageDerivation(const char* defn) {
    return derivationOf(defn).find('+') != std::string_view::npos;
}

DataSource* buildSource(SourceMontage& montage, const char* defn) {
    if (IsGapDefn(defn))
        return buildGap(montage);
    const bool referential = montage.reader()->isMapReferential() != 0;
    const bool numeric = IsNumericDefn(defn);
    if (isAverageDerivation(defn) && !numeric)
        return referential ? buildAverage(montage, defn) : nullptr;
    const Derivation derivation = parsed(defn);
    if (derivation.names == 0)
        return nullptr;
    if (!referential)
        return buildRecordedPair(montage, derivation);
    // A "*" may belong to a label: what is no arithmetic may still be plain names.
    DataSource* row = numeric ? buildNumeric(montage, defn, derivation) : nullptr;
    return row ? row : buildDerivation(montage, derivation);
}

} // namespace kvsig
