#include "kvsig/filters/FilterList.h"

#include "kvsig/filters/IIRCascade.h"

#include <algorithm>
#include <utility>

namespace kvsig {

FilterList::FilterList(const FilterList& other) : Filter(other), m_filters(other.m_filters) {}

FilterList& FilterList::operator=(const FilterList& other) {
    if (this == &other)
        return *this;
    removeAll();
    Filter::operator=(other);
    m_filters = other.m_filters;
    m_deleteList = false;
    return *this;
}

FilterList::~FilterList() { removeAll(); }

int FilterList::isDesigned() const {
    return std::all_of(m_filters.begin(), m_filters.end(),
                       [](const Filter* filter) { return filter->isDesigned() != 0; })
               ? 1
               : 0;
}

int FilterList::design(double /*cutoff*/, double /*transition*/, double /*attenuation*/) {
    return 0;
}

int FilterList::apply(float* data, int count) {
    if (data && count >= IIRCascade::shortestBlock)
        if (const auto cascade = IIRCascade::of(*this)) {
            IIRCascade::remember(*this, cascade->apply(data, count));
            return 1;
        }
    for (Filter* filter : m_filters)
        filter->apply(data, count);
    return 1;
}

void FilterList::reset() {
    for (Filter* filter : m_filters)
        filter->reset();
}

long FilterList::iterGetPosition() const {
    return m_filters.empty() ? -1 : m_filters.front()->iterGetPosition();
}

void FilterList::iterSetPosition(long position, float* data, int count) {
    for (Filter* filter : m_filters)
        filter->iterSetPosition(position, data, count);
}

int FilterList::iterApply(float* data, int count) {
    for (Filter* filter : m_filters)
        filter->iterApply(data, count);
    return 1;
}

int FilterList::nPrePts() const {
    int points = 0;
    for (const Filter* filter : m_filters)
        points = std::max(points, filter->nPrePts());
    return points;
}

int FilterList::nPstPts() const {
    int points = 0;
    for (const Filter* filter : m_filters)
        points = std::max(points, filter->nPstPts());
    return points;
}

int FilterList::nNumerWeights() const { return 0; }

double FilterList::getNumerWeight(int /*index*/) const { return 0.0; }

int FilterList::nDenomWeights() const { return 0; }

double FilterList::getDenomWeight(int /*index*/) const { return 0.0; }

void FilterList::addNext(Filter* filter) {
    if (filter && filter != this)
        m_filters.push_back(filter);
}

void FilterList::removeAll() {
    const std::vector<Filter*> filters = std::exchange(m_filters, {});
    if (!m_deleteList)
        return;
    for (const Filter* filter : filters)
        delete filter;
}

Filter* FilterList::filter(int index) const {
    return index >= 0 && index < count() ? m_filters[static_cast<std::size_t>(index)] : nullptr;
}

} // namespace kvsig
