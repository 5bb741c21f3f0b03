#include "kvsig/kernel/PatientRec.h"

#include "kvsig/kernel/PatientFields.h"
#include "kvsig/util/Text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace kvsig {
namespace {

// The three name fields stand together; a whole name runs over their joints.
constexpr std::size_t wholeNameSize = PatientRec::wholeNameLength + 1;
static_assert(offsetof(PatientRec, mi) == 32 && offsetof(PatientRec, last) == 35 &&
              offsetof(PatientRec, last) + sizeof(PatientRec::last) == wholeNameSize);

} // namespace

std::string PatientRec::name() const {
    if (!fullName)
        return {};
    char joined[wholeNameSize];
    std::memcpy(joined, this, wholeNameSize);
    joined[wholeNameSize - 1] = '\0';
    return joined;
}

void PatientRec::setName(std::string_view text) {
    char joined[wholeNameSize] = {};
    copyText(joined, text);
    std::memcpy(first, joined, sizeof first);
    std::memcpy(mi, joined + sizeof first, sizeof mi);
    std::memcpy(last, joined + sizeof first + sizeof mi, sizeof last);
    fullName = 1;
}

std::string displayName(const PatientRec& patient) {
    if (patient.fullName && patient.first[0] != '\0')
        return patient.name();
    if (patient.first[0] == '\0' && patient.last[0] == '\0')
        return {};
    return std::string(fieldView(patient.last)).append(", ").append(fieldView(patient.first));
}

void writePatientInfo(std::ostream& stream, const PatientRec& patient) {
    const auto line = [&stream](std::string_view label, std::string_view value) {
        writeText(stream, label);
        writeText(stream, value);
        writeText(stream, "\n");
    };
    const bool parts = patient.fullName == 0;
    line("Name: ", parts ? displayName(patient) : patient.name());
    line("First: ", parts ? fieldView(patient.first) : "");
    line("MI: ", parts ? fieldView(patient.mi) : "");
    line("Last: ", parts ? fieldView(patient.last) : "");
    forEachPatientField(patient, [&line](const char* label, const auto& field) {
        line(std::string(label) + ": ", fieldView(field));
    });
}

} // namespace kvsig
