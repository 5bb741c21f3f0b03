#include "kvsig/montage/names/Derivation.h"

#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/util/NumberText.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace kvsig {
namespace {

constexpr std::size_t derivationLength = 31;

// Leading delimiters are skipped, as in every tokeniser of these texts ("-F7" names F7).
std::string_view skipLeading(std::string_view text, char delimiter) {
    return text.substr(std::min(text.find_first_not_of(delimiter), text.size()));
}

std::string_view takeUntil(std::string_view& text, char delimiter) {
    const std::size_t end = std::min(text.find(delimiter), text.size());
    const std::string_view token = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return token;
}

} // namespace

bool IsGapDefn(const char* defn) { return viewOf(defn).starts_with("Gap"); }

bool IsAvgDefn(const char* defn) { return viewOf(defn).find('+') != std::string_view::npos; }

bool IsNumericDefn(const char* defn) {
    const std::string_view text = viewOf(defn);
    return text.substr(0, text.find('|')).find('*') != std::string_view::npos;
}

int ParseG1G2(const char* defn, char* grid1, char* grid2, char* rest) {
    const std::string_view text = skipLeading(viewOf(defn), '|');
    if (text.empty())
        return 0;
    const std::size_t bar = text.find('|');
    std::string_view derivation = text.substr(0, std::min(bar, derivationLength));
    if (rest && bar != std::string_view::npos)
        copyText(rest, text.size() - bar, text.substr(bar + 1));

    derivation = skipLeading(derivation, '-');
    if (derivation.empty())
        return 0;
    copyText(grid1, gridNameSize, takeUntil(derivation, '-'));
    // Grid 2 is the whole remainder, not the next token: "A-B-C" is A against "B-C".
    if (derivation.empty())
        return 1;
    copyText(grid2, gridNameSize, derivation);
    return 2;
}

void NameFromG1G2(const char* grid1, const char* grid2, char* out) {
    copyText(out, derivationNameSize, std::string(viewOf(grid1)).append("-").append(viewOf(grid2)));
}

void NameFromDefn(const char* defn, const char* ref, char* out) {
    if (IsGapDefn(defn)) {
        copyText(out, derivationNameSize, gszGap);
        return;
    }
    if (!IsAvgDefn(defn)) {
        char grid1[gridNameSize] = "";
        char grid2[gridNameSize] = "";
        const bool hasGrid2 = ParseG1G2(defn, grid1, grid2, nullptr) == 2;
        NameFromG1G2(grid1, hasGrid2 ? grid2 : ref, out);
        return;
    }
    // No separator between the names: this is how the global averages get theirs (A1+A2: "A1A2").
    std::string name;
    for (const std::string& term : splitWords(viewOf(defn), '+'))
        name.append(term, 0, term.find(':'));
    copyText(out, derivationNameSize, name);
}

bool YankAvgWgt(char* term, double& weight) {
    char* colon = term ? std::strchr(term, ':') : nullptr;
    if (!colon)
        return false;
    *colon = '\0';
    weight = leadingDouble(colon + 1);
    return true;
}

} // namespace kvsig
