#pragma once

#include "Question.h"

#include <string>
#include <vector>

namespace kvsig::bench {

/// A filter by its weights: y[i] = sum of numerator[j] * x[i - j] + sum of denominator[j] *
/// y[i - j], where denominator[0] is 0. Without a denominator it is a symmetric FIR filter.
struct FilterCase {
    std::string name;
    std::vector<float> numerator;
    std::vector<float> denominator;
};

/// What is filtered: 1,000,000 samples of noise with a hum, some tens of microvolts.
[[nodiscard]] const std::vector<float>& filterSignal();

[[nodiscard]] std::vector<Contender> liquidFilters(const FilterCase& filter);

} // namespace kvsig::bench
