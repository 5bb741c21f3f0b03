#include "kvsig/montage/DataSource.h"

#include "kvsig/kernel/DataReader.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/SampleRange.h"
#include "kvsig/util/Saturate.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <new>
#include <string>
#include <utility>

namespace kvsig {
namespace {

std::atomic<bool> defaultUseCache{true};
std::atomic<bool> defaultUseFilter{true};

bool isCacheIndex(long sample) { return std::in_range<std::int32_t>(sample); }

std::unique_ptr<float[]> workBlock(int count) {
    std::unique_ptr<float[]> block(new (std::nothrow) float[static_cast<std::size_t>(count)]);
    if (!block)
        logMessage(logWarning,
                   "DataSource: No memory to filter " + std::to_string(count) + " samples");
    return block;
}

// Counts of subclasses are not believed beyond what was asked for; the missing part is zeros.
int withZerosBehind(int got, int wanted, float* buf) {
    got = std::clamp(got, 0, wanted);
    std::fill_n(buf + got, wanted - got, 0.0F);
    return got;
}

} // namespace

void SetDataSourceDefaults(bool useCache, bool useFilter) {
    defaultUseCache = useCache;
    defaultUseFilter = useFilter;
}

DataSource::DataSource(IDataReader& reader)
    : m_reader(&reader), m_useCache(defaultUseCache), m_useFilter(defaultUseFilter) {}

DataSource::DataSource(const DataSource& other)
    : m_kind(other.m_kind),
      m_reader(other.m_reader),
      m_montage(other.m_montage),
      m_useCache(other.m_useCache),
      m_useFilter(other.m_useFilter),
      m_settings(other.m_settings),
      m_ownLowPass(other.m_ownLowPass),
      m_ownHighPass(other.m_ownHighPass),
      m_cache(other.m_cache),
      m_position(other.m_position) {
    copyChain(other);
}

DataSource& DataSource::operator=(const DataSource& other) {
    if (this == &other)
        return *this;
    m_kind = other.m_kind;
    m_reader = other.m_reader;
    m_montage = other.m_montage;
    m_useCache = other.m_useCache;
    m_useFilter = other.m_useFilter;
    m_settings = other.m_settings;
    m_ownLowPass = other.m_ownLowPass;
    m_ownHighPass = other.m_ownHighPass;
    m_cache = other.m_cache;
    m_position = other.m_position;
    copyChain(other);
    return *this;
}

DataSource::~DataSource() = default;

void DataSource::copyChain(const DataSource& other) {
    m_filters.removeAll();
    m_filters.setDeleteList(false);
    for (int i = 0; i < other.m_filters.count(); ++i) {
        Filter* filter = other.m_filters.filter(i);
        if (filter == &other.m_ownLowPass)
            filter = &m_ownLowPass;
        else if (filter == &other.m_ownHighPass)
            filter = &m_ownHighPass;
        m_filters.addNext(filter);
    }
}

bool DataSource::useCache() { return m_useCache; }
bool DataSource::useFilter() { return m_useFilter; }
void DataSource::setUseCache(bool use) { m_useCache = use; }

void DataSource::setUseFilter(bool use) {
    if (use != m_useFilter)
        flushCache();
    m_useFilter = use;
}

bool DataSource::allocCache(long first, long last, double scale) {
    const int length = rangeLength(first, last);
    if (length == 0 || !isCacheIndex(first) || !isCacheIndex(last) || !m_cache.reserve(length))
        return false;
    m_cache.dScale = scale;
    m_cache.nFirst = static_cast<std::int32_t>(first);
    m_cache.nLast = static_cast<std::int32_t>(last);
    return true;
}

int DataSource::readCache(long first, long last, float* buf, double scale) {
    // What was computed at scale 0, or at one that cannot be undone, is of no use at another.
    if (!buf || !m_cache.holds(first) || last < first || m_cache.dScale == 0.0 ||
        !std::isfinite(m_cache.dScale))
        return 0;
    const double factor = scale / m_cache.dScale;
    if (!std::isfinite(factor))
        return 0;
    const auto count = static_cast<int>(std::min<long>(last, m_cache.nLast) - first + 1);
    const float* held = m_cache.pData + (first - m_cache.nFirst);
    std::transform(held, held + count, buf,
                   [factor](float x) { return static_cast<float>(x * factor); });
    return count;
}

bool DataSource::writeCache(long first, long last, float* buf, double scale) {
    if (!buf || !allocCache(first, last, scale))
        return false;
    std::copy_n(buf, m_cache.length(), m_cache.pData);
    return true;
}

bool DataSource::addToCache(long first, long last, float* buf) {
    if (!buf || m_cache.length() == 0 || first != m_cache.nFirst || last != m_cache.nLast)
        return false;
    for (std::int32_t i = 0; i < m_cache.length(); ++i)
        m_cache.pData[i] += buf[i];
    return true;
}

void DataSource::flushCache() { m_cache.nFirst = m_cache.nLast = -1; }

int DataSource::getData(long first, long last, float* buf, double scale) {
    const int wanted = rangeLength(first, last);
    if (wanted == 0 || !buf)
        return 0;
    const int cached = useCache() ? std::clamp(readCache(first, last, buf, scale), 0, wanted) : 0;
    if (cached == wanted)
        return cached;
    float* rest = buf + cached;
    const int got = useFilter() ? filteredData(first + cached, last, rest, scale)
                                : _getData(first + cached, last, rest, scale);
    const int delivered = withZerosBehind(got, wanted - cached, rest);
    // The whole range is cached even when fewer samples were delivered, on purpose: the cache then
    // holds exactly the range and the scale of the latest request.
    if (useCache())
        writeCache(first, last, buf, scale);
    return cached + delivered;
}

// Reads the range widened by what the chain needs before and after it, and trims that off again.
int DataSource::filteredData(long first, long last, float* buf, double scale) {
    const int before = m_filters.nPrePts();
    const int after = m_filters.nPstPts();
    const int length =
        canWiden(first, last, before, after) ? rangeLength(first - before, last + after) : 0;
    const auto work = length > 0 ? workBlock(length) : nullptr;
    if (!work)
        return 0;
    const int got =
        std::clamp(_getData(first - before, last + after, work.get(), scale), 0, length);
    m_filters.apply(work.get(), got);
    const int kept = std::max(got - before - after, 0);
    std::copy_n(work.get() + before, kept, buf);
    return kept;
}

void DataSource::iterSetPosition(long position, double scale) {
    m_position = saturate<std::int32_t>(position);
    if (!useFilter())
        return;
    const int before = m_filters.nPrePts();
    const bool warm = before > 0 && canWiden(m_position, m_position, before, 0);
    const auto work = warm ? workBlock(before) : nullptr;
    const int got =
        work ? _getData(long{m_position} - before, long{m_position} - 1, work.get(), scale) : 0;
    // Without a run-in too, the filters must forget the stream before.
    m_filters.iterSetPosition(m_position, work.get(), std::clamp(got, 0, before));
}

int DataSource::iterGetData(long count, float* buf, double scale) {
    const int wanted = rangeLength(1, count);
    if (wanted == 0 || !buf || !canWiden(m_position, m_position, 0, wanted))
        return 0;
    const int got = withZerosBehind(_getData(m_position, long{m_position} + count - 1, buf, scale),
                                    wanted, buf);
    if (useFilter())
        m_filters.iterApply(buf, got);
    m_position = saturate<std::int32_t>(std::int64_t{m_position} + got);
    return got;
}

double DataSource::xStart() const {
    auto* reader = dynamic_cast<DataReader*>(m_reader);
    return reader ? reader->xStart() : 0.0;
}

double DataSource::xEnd() const { return m_reader->duration(); }

void DataSource::appendOwnFilters(double samplingRate) {
    const auto append = [this, samplingRate](Filter& filter, const FilterAttr& attr) {
        if (!isFilterOn(attr))
            return;
        setUseFilter(true);
        flushCache();
        m_filters.addNext(&filter);
        designFilter(filter, attr, samplingRate);
    };
    append(m_ownLowPass, m_settings.lowPass);
    append(m_ownHighPass, m_settings.highPass);
}

void DataSource::copyAttributes(const DataSource& other) { m_settings = other.m_settings; }

} // namespace kvsig
