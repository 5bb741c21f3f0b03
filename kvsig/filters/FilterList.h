#pragma once

#include "kvsig/filters/Filter.h"

#include <vector>

namespace kvsig {

/// Filters that are applied one after the other, in the order in which they were added.
///
/// The list holds pointers. With deleteList() it owns its filters: removeAll() and the destructor
/// delete them, so each must come from `new` and stand in one list, once. Without it (the initial
/// state) the filters must outlive the list. Streams need a filter object per channel: one that
/// stands in several lists mixes their histories.
class KVSIG_API FilterList : public Filter {
  public:
    FilterList() : Filter(list) {}
    /// A copy holds the same filters and owns none of them.
    FilterList(const FilterList& other);
    /// First lets go of what this list holds, deleting it when owned, then copies as above; so
    /// `other` must not hold filters that this list owns.
    FilterList& operator=(const FilterList& other);
    ~FilterList() override;

    /// 1 when every filter is designed; an empty list is.
    int isDesigned() const override;
    /// A list is not designed as a whole: always 0, nothing is stored.
    int design(double cutoff, double transition, double attenuation) override;
    /// Always 1, whatever the single filters answer.
    int apply(float* data, int count) override;
    void reset() override;

    /// The first filter's position, -1 for an empty list.
    long iterGetPosition() const override;
    void iterSetPosition(long position, float* data, int count) override;
    /// Always 1, whatever the single filters answer.
    int iterApply(float* data, int count) override;

    /// The largest of the filters' values.
    int nPrePts() const override;
    int nPstPts() const override;

    /// A list has no weights of its own.
    int nNumerWeights() const override;
    double getNumerWeight(int index) const override;
    int nDenomWeights() const override;
    double getDenomWeight(int index) const override;

    /// Appends `filter` to the chain; null and the list itself are ignored.
    void addNext(Filter* filter);
    /// @{
    /// The filters held, in order of application; null outside 0..count() - 1.
    int count() const { return static_cast<int>(m_filters.size()); }
    Filter* filter(int index) const;
    /// @}

    /// Empties the list; deletes the filters when it owns them.
    void removeAll();

    /// @{
    /// Whether the list owns its filters.
    bool deleteList() const { return m_deleteList; }
    void setDeleteList(bool deleteList) { m_deleteList = deleteList; }
    /// @}

  private:
    std::vector<Filter*> m_filters;
    bool m_deleteList = false;
};

} // namespace kvsig
