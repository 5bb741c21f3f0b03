#include "kvsig/filters/DisplayDefaults.h"

#include <cmath>

namespace kvsig {

std::vector<float>& GetDefValsSensitivity() {
    static std::vector<float> values{1.0F,   2.0F,   3.0F,   5.0F,   7.0F,   10.0F,
                                     15.0F,  20.0F,  30.0F,  50.0F,  70.0F,  100.0F,
                                     150.0F, 200.0F, 300.0F, 500.0F, 700.0F, 1000.0F};
    return values;
}

std::vector<float>& GetDefValsLowFilter() {
    // 0.16 / 3 and 1.6 / 3 in single precision: time constants of 3 s and 0.3 s.
    static std::vector<float> values{0.053333335F, 0.08F, 0.16F, 0.53333336F, 0.8F,
                                     1.0F,         1.6F,  2.0F,  3.0F,        4.0F,
                                     5.0F,         10.0F, 20.0F, 30.0F,       40.0F};
    return values;
}

std::vector<float>& GetDefValsHighFilter() {
    static std::vector<float> values{100.0F, 90.0F, 80.0F, 70.0F, 60.0F, 50.0F, 40.0F, 35.0F, 30.0F,
                                     25.0F,  20.0F, 15.0F, 10.0F, 5.0F,  4.0F,  3.0F,  2.0F,  1.0F};
    return values;
}

std::vector<float>& GetDefValsNotchFilter() {
    static std::vector<float> values{60.0F, 50.0F};
    return values;
}

float GetNearestDefVal(const std::vector<float>& list, float x) {
    if (list.empty())
        return x;
    const auto distance = [x](float value) {
        return std::trunc(std::fabs(static_cast<double>(x) - static_cast<double>(value)));
    };
    float best = list.front();
    for (const float value : list)
        if (distance(value) < distance(best))
            best = value;
    return best;
}

} // namespace kvsig
