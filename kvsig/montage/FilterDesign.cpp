#include "kvsig/montage/FilterDesign.h"

#include "kvsig/filters/Filter.h"
#include "kvsig/filters/FilterAttr.h"

namespace kvsig {

int designFilter(Filter& filter, FilterAttr attr, double samplingRate) {
    if (!(samplingRate > 0))
        return 0;
    return filter.design(attr.cutoff / samplingRate, attr.second / samplingRate, attr.third);
}

} // namespace kvsig
