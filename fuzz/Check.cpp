#include "Check.h"

#include <cstdlib>
#include <iostream>

namespace kvsig::fuzz {

void check(bool holds, std::string_view contract) {
    if (holds)
        return;
    std::cerr << "broken contract: " << contract << std::endl;
    std::abort();
}

} // namespace kvsig::fuzz
