#include "kvsig/readers/EdfOnsetGrid.h"

#include "kvsig/readers/EdfOnset.h"
#include "kvsig/util/NumberText.h"

#include <cmath>
#include <string>

namespace kvsig::edf {
namespace {

using Severity = OpenFinding::Severity;

constexpr std::size_t toldInFull = 20;

} // namespace

OnsetGrid::OnsetGrid(const Header& header) : m_header(header) {}

void OnsetGrid::add(std::optional<double> onset) {
    ++m_records;
    ++m_sinceOnset;
    if (!onset) {
        ++m_withoutOnset;
        return;
    }
    if (m_records == 1)
        m_firstOnset = *onset;
    // Records without a duration hold no samples that could be out of place.
    if (m_lastOnset && m_header.duration() > 0) {
        const double due = *m_lastOnset + static_cast<double>(m_sinceOnset) * m_header.duration();
        const double length = *onset - due;
        if (std::abs(length) > onsetTolerance(m_header, m_sinceOnset)) {
            if (m_jumps.size() < toldInFull)
                m_jumps.push_back({m_records, due, length});
            else
                ++(length > 0 ? m_moreGaps : m_moreOverlaps);
        }
    }
    m_lastOnset = onset;
    m_sinceOnset = 0;
}

std::vector<OpenFinding> OnsetGrid::findings() const {
    std::vector<OpenFinding> found;
    if (m_firstOnset != 0.0)
        found.push_back({Severity::note, "the first data record begins " +
                                             fixedText(m_firstOnset, 6) +
                                             " s after the start time"});
    for (const Jump& jump : m_jumps) {
        const std::string record = "data record " + std::to_string(jump.record);
        found.push_back({Severity::warning,
                         jump.length > 0 ? "a gap of " + secondsText(jump.length) + " at " +
                                               secondsText(jump.due) + ", before " + record
                                         : record + " overlaps by " + secondsText(-jump.length) +
                                               " with what ends at " + secondsText(jump.due)});
    }
    if (m_moreGaps + m_moreOverlaps > 0)
        found.push_back({Severity::warning, std::to_string(m_moreGaps) + " more gaps and " +
                                                std::to_string(m_moreOverlaps) +
                                                " more overlaps between data records"});
    if (m_withoutOnset > 0)
        found.push_back({Severity::note, std::to_string(m_withoutOnset) + " of " +
                                             std::to_string(m_records) +
                                             " data records have no onset in their annotation "
                                             "signal"});
    return found;
}

} // namespace kvsig::edf
