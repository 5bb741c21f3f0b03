#include "Target.h"

#include <algorithm>
#include <iterator>

namespace kvsig::fuzz {

const std::vector<Target>& targets() {
    static const std::vector<Target> all = [] {
        std::vector<Target> joined;
        for (auto part :
             {readerTargets, layoutTargets, attributeTargets, montageTargets, textTargets}) {
            std::vector<Target> some = part();
            std::move(some.begin(), some.end(), std::back_inserter(joined));
        }
        return joined;
    }();
    return all;
}

const Target* findTarget(std::string_view name) {
    const auto& all = targets();
    const auto found =
        std::find_if(all.begin(), all.end(), [name](const Target& t) { return t.name == name; });
    return found == all.end() ? nullptr : &*found;
}

} // namespace kvsig::fuzz
