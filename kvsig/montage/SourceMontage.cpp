#include "kvsig/montage/SourceMontage.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/DefinitionBuilder.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageEvents.h"
#include "kvsig/montage/MontageLoader.h"
#include "kvsig/montage/MontageSearch.h"
#include "kvsig/montage/ReferenceAnalysis.h"
#include "kvsig/montage/RowsAtOnce.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/References.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/Limits.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Saturate.h"
#include "kvsig/util/Text.h"

#include <algorithm>

namespace kvsig {
namespace {

template <typename Sources>
auto find(Sources& sources, const DataSource* wanted) {
    return std::find_if(sources.begin(), sources.end(),
                        [wanted](const auto& source) { return source.get() == wanted; });
}

template <typename Sources>
int indexOf(Sources& sources, const DataSource* wanted) {
    const auto found = find(sources, wanted);
    return found == sources.end() ? -1 : static_cast<int>(found - sources.begin());
}

template <typename Source>
Source* at(const std::vector<std::unique_ptr<Source>>& sources, int index) {
    return index >= 0 && std::cmp_less(index, sources.size())
               ? sources[static_cast<std::size_t>(index)].get()
               : nullptr;
}

// A row that takes part in references: no gap.
G1G2Source* referenceRow(DataSource& source) {
    return source.isGap() ? nullptr : dynamic_cast<G1G2Source*>(&source);
}

} // namespace

SourceMontage::SourceMontage() = default;
SourceMontage::~SourceMontage() = default;

IDataReader* SourceMontage::reader() { return m_reader; }
const char* SourceMontage::name() { return m_name; }
const char* SourceMontage::ref() { return m_ref; }

void SourceMontage::flushCache() {
    for (const auto& source : m_sources)
        source->flushCache();
    for (const auto& average : m_averages)
        if (average)
            average->flushCache();
}

void SourceMontage::setUseCache(bool use) {
    for (const auto& source : m_sources)
        source->setUseCache(use);
}

void SourceMontage::setUseFilter(bool use) {
    for (const auto& source : m_sources)
        source->setUseFilter(use);
}

void SourceMontage::setReader(IDataReader* reader) {
    m_reader = reader;
    m_toldNoAverages = false;
}

void SourceMontage::setName(const char* name) { copyText(m_name, name); }

void SourceMontage::deleteSources() {
    m_sources.clear();
    m_averages.clear();
    m_unresolved.clear();
}

void SourceMontage::deleteSource(DataSource* source) {
    if (!source) // it would be found where an average was deleted
        return;
    if (const auto row = find(m_sources, source); row != m_sources.end())
        m_sources.erase(row);
    else if (const int average = indexOf(m_averages, source); average >= 0)
        forgetAverage(average);
}

// Its place stays empty: ids that were given for other averages hold.
void SourceMontage::forgetAverage(int index) {
    m_averages[static_cast<std::size_t>(index)].reset();
    for (const auto& source : m_sources)
        if (const auto* row = dynamic_cast<G1G2Source*>(source.get());
            row && row->channel2() == (index | G1G2Source::averageBit))
            source->flushCache();
}

DataSource* SourceMontage::createSource(const char* defn) {
    if (!m_reader)
        return nullptr;
    DataSource* source = buildSource(*this, defn);
    if (!source && m_unresolved.size() < mostUnresolved)
        m_unresolved.emplace_back(viewOf(defn));
    return source;
}

// Of more channels, some would have the numbers that name averages.
bool SourceMontage::canHoldAverages() {
    if (m_reader->channelCount() <= G1G2Source::averageBit)
        return true;
    if (!m_toldNoAverages)
        logMessage(logWarning, "SourceMontage: no averages over a recording of more than " +
                                   std::to_string(G1G2Source::averageBit) + " channels");
    m_toldNoAverages = true;
    return false;
}

AvgSource* SourceMontage::createSource(std::vector<int>& channels) {
    if (!m_reader || avgRefCount() >= maxAverages || !canHoldAverages())
        return nullptr;
    m_averages.push_back(std::make_unique<AvgSource>(*m_reader, channels));
    m_averages.back()->setMontage(this);
    return m_averages.back().get();
}

G1G2Source* SourceMontage::createSource(int channel1, int channel2) {
    if (!m_reader)
        return nullptr;
    auto source = std::make_unique<G1G2Source>(*m_reader, channel1, channel2);
    source->setMontage(this);
    G1G2Source* made = source.get();
    m_sources.push_back(std::move(source));
    return made;
}

int SourceMontage::createRecordedMontage() {
    setName(gszRecorded);
    deleteSources();
    if (!m_reader)
        return 0;
    for (int i = 0; i < m_reader->channelCount(); ++i)
        createSource(i, -1);
    addGlobalAvgRefs();
    isReferential();
    updateFilters();
    return 1;
}

int SourceMontage::createMontage(const char* name) {
    const std::string wanted(viewOf(name)); // may be the montage's own name
    setName(wanted.c_str());
    deleteSources();
    if (!m_reader)
        return 0;
    if (equalNoCase(wanted, gszRecorded))
        return createRecordedMontage();
    const int made = fill(wanted);
    updateFilters();
    return made;
}

int SourceMontage::fill(const std::string& name) {
    if (const auto content = findMontage(name)) {
        if (const auto* text = std::get_if<std::string>(&*content))
            return createMontageXML(text->c_str());
        return loadMontageEntries(*this, std::get<std::vector<ProfileEntry>>(*content));
    }
    auto* kernel = dynamic_cast<DataReader*>(m_reader);
    if (!kernel || !kernel->isMapReferential() || kernel->montageIndex(name.c_str()) < 0)
        return 0;
    kernel->montageApply(*this, name.c_str());
    addGlobalAvgRefs();
    isReferential();
    return 1;
}

int SourceMontage::createMontageXML(const char* text) {
    return loadMontageXML(*this, std::string(viewOf(text)));
}

int SourceMontage::rowNamed(const std::string& name) const {
    for (int i = 0; i < sourceCount(); ++i)
        if (equalNoCase(source(i)->name(), name))
            return i;
    return -1;
}

int SourceMontage::indexOfName(const char* name) {
    const std::string_view start = viewOf(name);
    for (int i = 0; i < sourceCount(); ++i)
        if (startsWithNoCase(source(i)->name(), start))
            return i;
    if (start.empty() || !isDigit(start.front()))
        return -1;
    return saturate<int>(leadingInteger(start) - 1);
}

int SourceMontage::indexOfFullName(const char* name) {
    const std::string wanted(viewOf(name));
    const int row = rowNamed(wanted);
    if (row >= 0 || wanted.empty() || !m_reader)
        return row;
    const int channel = m_reader->indexOfG1(wanted.c_str());
    return channel < 0 ? -1 : rowNamed(wanted + "-" + m_reader->grid2(channel));
}

int SourceMontage::indexOfAvgRef(const char* name) {
    for (int i = 0; i < avgRefCount(); ++i)
        if (avgRef(i) && equalNoCase(avgRef(i)->name(), viewOf(name)))
            return i;
    return -1;
}

int SourceMontage::idOfChannel2(const char* name) {
    const int average = indexOfAvgRef(name);
    if (average >= 0)
        return average | G1G2Source::averageBit;
    return m_reader ? m_reader->indexOfG1(name) : -1;
}

bool SourceMontage::isReferential() {
    m_ref[0] = '\0';
    if (!m_reader || !m_reader->isMapReferential())
        return false;
    // Under that name the recording's reference is answered even when rows were given another one,
    // on purpose.
    if (equalNoCase(m_name, gszRecorded)) {
        copyText(m_ref, m_reader->refGrid());
        return true;
    }
    std::vector<RowGrids> rows;
    for (const auto& source : m_sources)
        if (!source->isGap()) {
            RowGrids& row = rows.emplace_back();
            row.grid1 = source->grid1();
            row.grid2 = source->grid2();
        }
    const std::optional<std::string> reference = commonReference(rows);
    copyText(m_ref, reference.value_or(""));
    return reference.has_value();
}

// A pair of recordings answers for electrodes of the second one with their numbers there: such a
// number is another channel of the pair, and no reference.
bool SourceMontage::isValidReference(const char* name, int* id) {
    const int found = viewOf(name).empty() ? -1 : idOfChannel2(name);
    if (found < 0 ||
        (indexOfAvgRef(name) < 0 && !equalNoCase(viewOf(m_reader->grid1(found)), name)))
        return false;
    if (id)
        *id = found;
    return true;
}

void SourceMontage::moveReference(G1G2Source& row, int channel2) {
    row.setChannel12(row.channel1(), channel2);
    char text[derivationNameSize];
    const std::string grid1 = row.grid1();
    NameFromG1G2(grid1.c_str(), row.grid2(), text);
    row.setName(text);
    row.flushCache();
}

bool SourceMontage::changeReference(const char* ref) {
    int id = -1;
    if (ref && !isValidReference(ref, &id))
        return false;
    for (const auto& source : m_sources) {
        G1G2Source* row = referenceRow(*source);
        if (!row)
            continue;
        const std::string grid2 = row->grid2();
        if (!ref || equalNoCase(grid2, row->reader()->grid2(row->channel1())))
            moveReference(*row, id);
    }
    isReferential();
    return true;
}

void SourceMontage::addGlobalAvgRefs() {
    if (!m_reader)
        return;
    const std::size_t resolvedUntilNow = m_unresolved.size();
    for (const AvgRefDefn* row = gGlobalAvgRefs; row->pszName; ++row) {
        if (isValidReference(row->pszName, nullptr))
            continue;
        const std::string defn = translatedFor(*m_reader, row->pszDefn);
        if (DataSource* average = createSource(defn.c_str()))
            average->setName(row->pszName);
    }
    // Averages that were only on offer are not missing from the montage.
    m_unresolved.resize(resolvedUntilNow);
}

bool SourceMontage::updateState(const ClientEvent& event) {
    if (!applyDisplayEvent(*this, event))
        return false;
    updateFilters();
    flushCache();
    return true;
}

int SourceMontage::getData(long first, long last, float* const* rows, double scale) {
    RowsAtOnce together(first, last, scale, m_rowWork);
    for (std::size_t i = 0; rows && i < m_sources.size(); ++i)
        if (rows[i])
            together.add(*m_sources[i], rows[i]);
    return together.finish();
}

void SourceMontage::updateFilters() {
    const double rate = m_reader ? m_reader->samplingRate() : 0.0;
    designFilter(m_lowPass, m_lowPassAttr, rate);
    designFilter(m_highPass, m_highPassAttr, rate);
    // A notch without a width cancels itself out: the samples come out as they went in. Kept on
    // purpose. Below 0 it would run away.
    designFilter(m_notch, m_notchAttr, rate);
    FilterAttr notch = m_notchAttr;
    notch.use = notch.use && notch.second >= 0;
    for (const auto& source : m_sources) {
        FilterList& chain = *source->filters();
        chain.removeAll();
        chain.setDeleteList(false);
        source->setUseCache(true);
        source->setUseFilter(false);
        const auto append = [&](Filter& filter, FilterAttr attr) {
            if (!isFilterOn(attr))
                return;
            source->setUseFilter(true);
            chain.addNext(&filter);
        };
        if (source->settings().followMontage) {
            append(m_lowPass, m_lowPassAttr);
            append(m_highPass, m_highPassAttr);
        } else {
            source->appendOwnFilters(rate);
        }
        append(m_notch, notch);
    }
}

int SourceMontage::sourceCount() const { return static_cast<int>(m_sources.size()); }
DataSource* SourceMontage::source(int index) const { return at(m_sources, index); }
int SourceMontage::avgRefCount() const { return static_cast<int>(m_averages.size()); }
AvgSource* SourceMontage::avgRef(int index) const { return at(m_averages, index); }

AvgSource* SourceMontage::averageReference(int index) { return avgRef(index); }
int SourceMontage::rowOf(const DataSource& source) { return indexOf(m_sources, &source); }

} // namespace kvsig
