#include "tool/LeftOut.h"

#include "kvsig/montage/names/Derivation.h"
#include "kvsig/util/Text.h"

#include <algorithm>

namespace kvsig::tool {
namespace {

// Without its settings, which may hold a "+" too.
std::string derivationOf(const std::string& defn) {
    const std::size_t start = std::min(defn.find_first_not_of('|'), defn.size());
    return defn.substr(start, defn.find('|', start) - start);
}

std::vector<std::string>& kindOf(const std::string& defn, LeftOut& leftOut) {
    const std::string derivation = derivationOf(defn);
    if (IsAvgDefn(derivation.c_str()) && !IsNumericDefn(derivation.c_str()))
        return derivation.find_first_not_of('+') == std::string::npos ? leftOut.nonsense
                                                                      : leftOut.averages;
    char grid1[gridNameSize];
    char grid2[gridNameSize];
    return ParseG1G2(derivation.c_str(), grid1, grid2, nullptr) == 0 ? leftOut.nonsense
                                                                     : leftOut.rows;
}

} // namespace

LeftOut leftOutOf(const SourceMontage& montage) {
    LeftOut leftOut;
    for (const std::string& defn : montage.unresolved())
        kindOf(defn, leftOut).push_back(defn);
    return leftOut;
}

DataSource* TrackedMontage::createSource(const char* defn) {
    DataSource* source = SourceMontage::createSource(defn);
    LeftOut leftOut;
    if (!source && &kindOf(std::string(viewOf(defn)), leftOut) == &leftOut.rows)
        m_leftOutBefore.insert(sourceCount());
    return source;
}

void TrackedMontage::deleteSources() {
    SourceMontage::deleteSources();
    m_leftOutBefore.clear();
}

} // namespace kvsig::tool
