#include "kvsig/filters/Filter.h"

namespace kvsig {

Filter::~Filter() = default;

bool Filter::operator==(const Filter& other) const {
    return m_type == other.m_type && m_cutoff == other.m_cutoff &&
           m_transition == other.m_transition && m_attenuation == other.m_attenuation;
}

void Filter::setParameters(double cutoff, double transition, double attenuation) {
    m_cutoff = cutoff;
    m_transition = transition;
    m_attenuation = attenuation;
}

} // namespace kvsig
