#include "tool/synth/Annotations.h"

#include "kvsig/util/NumberText.h"
#include "tool/synth/PlainNumber.h"

namespace kvsig::tool {
namespace {

constexpr int textDecimals = 3;
constexpr char endOfField = '\x14';

std::string list(double onset, int decimals, std::string_view text) {
    std::string bytes = "+" + fixedText(onset, decimals) + endOfField;
    bytes += text;
    bytes += endOfField;
    bytes += '\0';
    return bytes;
}

} // namespace

AnnotationWriter::AnnotationWriter(double recordDuration, double duration, std::size_t mostTexts,
                                   std::size_t longestText)
    : m_recordDecimals(fewestDecimals(recordDuration)),
      m_bytesPerRecord(list(duration, m_recordDecimals, "").size() +
                       mostTexts * (list(duration, textDecimals, "").size() + longestText)) {}

void AnnotationWriter::beginRecord(double onset) { m_bytes = list(onset, m_recordDecimals, ""); }

void AnnotationWriter::add(double onset, std::string_view text) {
    m_bytes += list(onset, textDecimals, text);
}

} // namespace kvsig::tool
