#include "kvsig/kernel/PatientRec.h"

#include "kvsig/util/Text.h"
#include "support/FakeReader.h"

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>

namespace kvsig {
namespace {

PatientRec named(const char* first, const char* mi, const char* last) {
    PatientRec patient{};
    copyText(patient.first, first);
    copyText(patient.mi, mi);
    copyText(patient.last, last);
    return patient;
}

// What a reader's getPatientName() answers; "(none)" for false.
std::string nameOf(const PatientRec& patient) {
    test::FakeReader reader;
    *reader.patientRec() = patient;
    char name[PatientRec::displayNameSize + 1];
    std::fill(std::begin(name), std::end(name), '~');
    if (!reader.getPatientName(name))
        return name[0] == '~' ? "(none)" : "(written to)";
    EXPECT_EQ(name[PatientRec::displayNameSize], '~') << "past the documented size";
    return name;
}

TEST(PatientRec, NamePartsAreLastThenFirst) {
    EXPECT_EQ(nameOf(named("Ann", "B", "Smith")), "Smith, Ann");
    EXPECT_EQ(nameOf(named("Ann", "", "")), ", Ann");
    EXPECT_EQ(nameOf(named("", "", "Smith")), "Smith, ");
    EXPECT_EQ(nameOf(named("", "B", "")), "(none)");
    const std::string longest(40, 'x');
    EXPECT_EQ(nameOf(named(longest.c_str(), "yy", longest.c_str())),
              std::string(31, 'x') + ", " + std::string(31, 'x'));
}

TEST(PatientRec, AWholeNameRunsOverTheNameFields) {
    std::string text;
    for (int i = 0; i < 80; ++i)
        text.push_back(static_cast<char>('A' + i % 26));
    // Around the ends of first (32), mi (35) and last (67).
    for (std::size_t length : {1U, 31U, 32U, 33U, 34U, 35U, 36U, 65U, 66U}) {
        PatientRec patient = named("Old", "O", "Older");
        patient.setName(text.substr(0, length));
        EXPECT_NE(patient.fullName, 0);
        EXPECT_EQ(patient.name(), text.substr(0, length));
        EXPECT_EQ(nameOf(patient), text.substr(0, length));
    }
    PatientRec patient = named("", "", "");
    patient.setName(text);
    EXPECT_EQ(patient.name(), text.substr(0, 66));
    patient.setName("");
    EXPECT_EQ(nameOf(patient), "(none)");
    EXPECT_EQ(named("Ann", "", "Smith").name(), "") << "no whole name without the flag";
}

PatientRec filled() {
    PatientRec patient = named("Ann", "B", "Smith");
    copyText(patient.sex, "F");
    copyText(patient.hand, "R");
    copyText(patient.birthDate, "01/02/1990");
    copyText(patient.id, "X1");
    copyText(patient.testDate, "03/04/2020");
    copyText(patient.testTime, "10:11:12");
    copyText(patient.physician, "Dr P");
    copyText(patient.technician, "T");
    copyText(patient.medications, "none");
    copyText(patient.history, "h");
    copyText(patient.comments1, "c1");
    copyText(patient.comments2, "c2");
    return patient;
}

std::string infoOf(const PatientRec& patient) {
    test::FakeReader reader;
    *reader.patientRec() = patient;
    std::ostringstream stream;
    stream << std::setw(30) << std::setfill('*');
    EXPECT_TRUE(reader.patientInfo(stream, false));
    return stream.str();
}

TEST(PatientRec, InfoWritesAllLabelsInOrder) {
    const std::string rest =
        "Sex: F\nHand: R\nBirthDate: 01/02/1990\nID: X1\nTestDate: 03/04/2020\n"
        "TestTime: 10:11:12\nPhysician: Dr P\nTechnician: T\nMedications: none\nHistory: h\n"
        "Comments1: c1\nComments2: c2\n";
    PatientRec patient = filled();
    EXPECT_EQ(infoOf(patient), "Name: Smith, Ann\nFirst: Ann\nMI: B\nLast: Smith\n" + rest);
    patient.setName("Smith-Jones, Ann Beatrice, of Some Place");
    EXPECT_EQ(infoOf(patient),
              "Name: Smith-Jones, Ann Beatrice, of Some Place\nFirst: \nMI: \nLast: \n" + rest)
        << "a whole name leaves the parts empty";
}

// Records filled by others: texts that leave no room for a terminator end with their field.
TEST(PatientRec, FullFieldsEndWhereTheyEnd) {
    PatientRec patient{};
    std::memset(&patient, 'x', sizeof patient);
    patient.fullName = 0;
    EXPECT_EQ(nameOf(patient), std::string(32, 'x') + ", " + std::string(32, 'x'));
    const std::string text = infoOf(patient);
    EXPECT_THAT(text, testing::HasSubstr("\nSex: xxxxxxxx\nHand: xxxxxxxx\n"));
    EXPECT_TRUE(text.ends_with("\nComments2: " + std::string(200, 'x') + "\n")) << text;
    patient.fullName = 1;
    EXPECT_EQ(nameOf(patient), std::string(66, 'x'));
}

} // namespace
} // namespace kvsig
