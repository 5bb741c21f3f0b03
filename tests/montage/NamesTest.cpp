#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/References.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/montage/names/Translate1020.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <tuple>
#include <utility>

namespace kvsig {
namespace {

// How many names there are, grid 1, grid 2 and the rest.
using Parsed = std::tuple<int, std::string, std::string, std::string>;

Parsed parse(const char* defn) {
    char grid1[gridNameSize] = "1?";
    char grid2[gridNameSize] = "2?";
    char rest[256] = "r?";
    const int names = ParseG1G2(defn, grid1, grid2, rest);
    return {names, grid1, grid2, rest};
}

TEST(ParseG1G2, SplitsDerivationAndRest) {
    EXPECT_EQ(parse("Fp1-F7|abc"), Parsed(2, "Fp1", "F7", "abc"));
    EXPECT_EQ(parse("C3"), Parsed(1, "C3", "2?", "r?"));
    EXPECT_EQ(parse("A-B-C"), Parsed(2, "A", "B-C", "r?"));
    EXPECT_EQ(parse("A--B"), Parsed(2, "A", "-B", "r?"));
    EXPECT_EQ(parse("C3-"), Parsed(1, "C3", "2?", "r?"));
    EXPECT_EQ(parse("|C3-C4|x"), Parsed(2, "C3", "C4", "x"));
    EXPECT_EQ(parse("C3|"), Parsed(1, "C3", "2?", ""));
}

TEST(ParseG1G2, FindsNothingInEmptyTexts) {
    for (const char* defn : {"", "|", "||", "-", "--"})
        EXPECT_EQ(std::get<0>(parse(defn)), 0) << defn;
    EXPECT_EQ(parse("-|x"), Parsed(0, "1?", "2?", "x"));
    EXPECT_EQ(ParseG1G2(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(ParseG1G2("C3-C4|x", nullptr, nullptr, nullptr), 2);
}

TEST(ParseG1G2, CutsLongNames) {
    EXPECT_EQ(parse("12345678901234567890"), Parsed(1, "123456789012345", "2?", "r?"));
    // 31 characters of derivation: 13 + "-" + 17, of which grid 2 keeps 15.
    EXPECT_EQ(parse("ABCDEFGHIJKLM-abcdefghijklmnopqrstuvwxyz"),
              Parsed(2, "ABCDEFGHIJKLM", "abcdefghijklmno", "r?"));
    EXPECT_EQ(std::get<0>(parse("ABCDEFGHIJKLMNOPQRSTUVWXYZ12345-x")), 1)
        << "the hyphen is the 32nd";
}

TEST(Definitions, KindsAreToldApart) {
    EXPECT_TRUE(IsGapDefn("Gap3"));
    EXPECT_FALSE(IsGapDefn("gap"));
    EXPECT_FALSE(IsGapDefn("Ga"));
    EXPECT_TRUE(IsAvgDefn("A1+A2"));
    EXPECT_FALSE(IsAvgDefn("A1-A2"));
    EXPECT_TRUE(IsNumericDefn("Fp1*2|x"));
    EXPECT_FALSE(IsNumericDefn("Fp1|2*x"));
    for (auto* test : {IsGapDefn, IsAvgDefn, IsNumericDefn}) {
        EXPECT_FALSE(test(""));
        EXPECT_FALSE(test(nullptr));
    }
}

std::string nameOf(const std::string& defn, const char* ref = nullptr) {
    char out[derivationNameSize];
    NameFromDefn(defn.c_str(), ref, out);
    return out;
}

TEST(Definitions, NamesFollowTheKind) {
    EXPECT_EQ(nameOf("Gap3"), "        ");
    EXPECT_EQ(nameOf("C3", "Av17"), "C3-Av17");
    EXPECT_EQ(nameOf("Fp1-F7|1,2", "Cz"), "Fp1-F7");
    EXPECT_EQ(nameOf("F7+F3"), "F7F3");
    EXPECT_EQ(nameOf("F3:0.5+F4:0.5"), "F3F4");
    EXPECT_EQ(nameOf(""), "-");
    std::string many = "A1";
    for (int i = 0; i < 1000; ++i)
        many += "+A1";
    EXPECT_EQ(nameOf(many).size(), std::size_t{derivationNameSize - 1});
}

TEST(Definitions, WeightsAreCutOffTheirTerm) {
    double weight = -9.0;
    char term[] = "F3:1e-1";
    EXPECT_TRUE(YankAvgWgt(term, weight));
    EXPECT_STREQ(term, "F3");
    EXPECT_EQ(weight, 0.1);
    EXPECT_FALSE(YankAvgWgt(term, weight) || YankAvgWgt(nullptr, weight));
    EXPECT_EQ(weight, 0.1) << "left as it was";
}

std::pair<std::string, int> translated(std::string text, bool toNew) {
    const int changed = Translate1020To1010Names(text.data(), text.data() + text.size(), toNew);
    return {text, changed};
}

TEST(Translate1020, RewritesWholeNamesOnly) {
    using Result = std::pair<std::string, int>;
    EXPECT_EQ(translated("T3-T5", true), Result("T7-P7", 2));
    EXPECT_EQ(translated("T4+T6:0.5|T3", true), Result("T8+P8:0.5|T7", 3));
    EXPECT_EQ(translated("T7-P7+T8-P8", false), Result("T3-T5+T4-T6", 4));
    for (const char* untouched : {"FT7", "T10", "t3", "TP8", "T33", "T", "", "P3", "5T3"}) {
        EXPECT_EQ(translated(untouched, true).second, 0) << untouched;
        EXPECT_EQ(translated(untouched, false).second, 0) << untouched;
    }
    EXPECT_EQ(Translate1020To1010Names(nullptr, nullptr, true), 0);
}

TEST(ScalpGrid, NamesAreFoundInEitherGeneration) {
    EXPECT_EQ(IndexOf1020("cz"), 38);
    EXPECT_EQ(IndexOf1020("T3"), 33);
    EXPECT_EQ(IndexOf1020("T7"), 32);
    EXPECT_EQ(IndexOf1020("A1"), -1);
    EXPECT_EQ(IndexOf1020(nullptr), -1);
}

// The bits follow from the names: odd numbers left, even right, "z" on the midline; the letters
// name the rows. A slip in one of the 78 rows shows here. Nz carries its midline bit alone.
TEST(ScalpGrid, RegionBitsFollowFromTheNames) {
    std::set<std::string> names;
    for (const ScalpGrid& row : Grid1020) {
        const std::string name = row.pszName;
        EXPECT_TRUE(names.insert(name).second) << name << " stands twice";
        const char end = name.back();
        const bool z = end == 'z';
        const bool even = !z && (end - '0') % 2 == 0;
        EXPECT_EQ((row.nRegionBits & region::midline) != 0, z) << name;
        if (name == "Nz")
            continue;
        EXPECT_EQ((row.nRegionBits & region::right) != 0, even) << name;
        EXPECT_EQ((row.nRegionBits & region::left) != 0, !z && !even) << name;
        for (const auto& [letter, bit] : {std::pair('F', region::frontal),
                                          {'T', region::temporal},
                                          {'C', region::central},
                                          {'O', region::occipital},
                                          {'P', region::parietal}})
            EXPECT_EQ((row.nRegionBits & bit) != 0, name.find(letter) != name.npos) << name;
    }
}

TEST(References, DefaultsAreFoundByName) {
    EXPECT_EQ(IndexOfDefRef("av12"), 6);
    EXPECT_EQ(IndexOfDefRef("Cz"), 0);
    EXPECT_EQ(IndexOfDefRef("Av"), -1);
    EXPECT_EQ(gGlobalAvgRefs[3].pszName, nullptr);
    EXPECT_EQ(gGlobalAvgRefs[3].pszDefn, nullptr);
}

} // namespace
} // namespace kvsig
