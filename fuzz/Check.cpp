#include "Check.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>

namespace kvsig::fuzz {

void check(bool holds, std::string_view contract) {
    if (holds)
        return;
    std::cerr << "broken contract: " << contract << std::endl;
    std::abort();
}

bool sameValues(const std::vector<float>& a, const std::vector<float>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](float x, float y) { return x == y || (std::isnan(x) && std::isnan(y)); });
}

} // namespace kvsig::fuzz
