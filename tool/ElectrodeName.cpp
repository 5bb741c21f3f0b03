#include "tool/ElectrodeName.h"

#include "kvsig/util/Text.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

// Places of R. Oostenveld and P. Praamstra, "The five percent electrode system for high-resolution
// EEG and ERP measurements", Clin. Neurophysiol. 112 (2001), then earlobes, mastoids, sphenoidal.
constexpr std::string_view places[] = {"N",   "NFp", "Fp",  "AFp", "AF",  "AFF", "F",   "FFC",
                                       "FC",  "FCC", "FT",  "FFT", "FTT", "C",   "CCP", "CP",
                                       "CPP", "T",   "TTP", "TP",  "TPP", "P",   "PPO", "PO",
                                       "POO", "O",   "OI",  "I",   "A",   "M",   "Sp"};

} // namespace

bool isElectrodeName(std::string_view name) {
    const auto place = std::max_element(std::begin(places), std::end(places),
                                        [name](std::string_view a, std::string_view b) {
                                            const auto fit = [name](std::string_view p) {
                                                return startsWithNoCase(name, p) ? p.size() : 0;
                                            };
                                            return fit(a) < fit(b);
                                        });
    if (!startsWithNoCase(name, *place))
        return false;
    std::string_view rest = name.substr(place->size());
    if (rest.size() > 1 && lowerCase(rest.back()) == 'h')
        rest.remove_suffix(1);
    if (rest.size() == 1 && lowerCase(rest.front()) == 'z')
        return true;
    return !rest.empty() && rest.size() <= 2 && std::all_of(rest.begin(), rest.end(), isDigit);
}

} // namespace kvsig::tool
