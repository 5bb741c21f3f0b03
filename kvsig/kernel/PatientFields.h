#pragma once

#include "kvsig/kernel/PatientRec.h"

namespace kvsig {

/// Hands out the fields behind the name, each with its label in texts, in the order of all texts.
template <typename Patient, typename Consume>
void forEachPatientField(Patient& patient, Consume consume) {
    consume("Sex", patient.sex);
    consume("Hand", patient.hand);
    consume("BirthDate", patient.birthDate);
    consume("ID", patient.id);
    consume("TestDate", patient.testDate);
    consume("TestTime", patient.testTime);
    consume("Physician", patient.physician);
    consume("Technician", patient.technician);
    consume("Medications", patient.medications);
    consume("History", patient.history);
    consume("Comments1", patient.comments1);
    consume("Comments2", patient.comments2);
}

} // namespace kvsig
