#include "kvsig/readers/EdfOnset.h"

#include "kvsig/util/NumberText.h"

namespace kvsig::edf {

std::optional<double> recordOnset(std::string_view annotationBytes) {
    constexpr char onsetEnd = '\x14';
    const std::string_view text = annotationBytes.substr(0, annotationBytes.find(onsetEnd));
    double seconds = 0.0;
    const bool isSigned = text.starts_with('+') || text.starts_with('-');
    if (text.size() == annotationBytes.size() || !isSigned || !wholeDouble(text, seconds))
        return std::nullopt;
    return seconds;
}

} // namespace kvsig::edf
