#include "kvsig/util/ProfileText.h"

#include "kvsig/util/Text.h"

#include <climits>
#include <fstream>
#include <gtest/gtest.h>
#include <iomanip>
#include <sstream>
#include <string>

namespace kvsig {
namespace {

// The text of a value, or "<def>" when there is none.
std::string valueIn(const std::string& text, const char* section, const char* key) {
    std::istringstream stream(text);
    char out[10000];
    const int length = GetLocalProfileString(section, key, "<def>", out, sizeof out, stream);
    EXPECT_EQ(length, viewOf(out) == "<def>" ? 0 : static_cast<int>(viewOf(out).size()));
    return out;
}

TEST(ProfileText, SectionsAndKeysAreFoundWithoutCase) {
    const std::string text =
        "File=outside\n; [FileInfo]\n [FileInfo]\nFile=no section\r\n"
        "[fileINFO] trailing\r\nOther=1\n;File=comment\nfILE= C:\\a b.dat = \r\n"
        "File=second\n[Next\nLast=x";
    EXPECT_EQ(valueIn(text, "FileInfo", "File"), " C:\\a b.dat = ");
    EXPECT_EQ(valueIn(text, "Next", "LAST"), "x") << "no bracket, no line end";
    EXPECT_EQ(valueIn(text, "FileInfo", "Last"), "<def>") << "the next section's";
    EXPECT_EQ(valueIn(text, "fileinf", "File"), "<def>");
    EXPECT_EQ(valueIn(text, "FileInfo", ";File"), "<def>");
    EXPECT_EQ(valueIn("[a]\nkey\nempty=\n", "a", "key"), "<def>") << "no mark, no key";
    EXPECT_EQ(valueIn("[a]\nkey\nempty=\n", "a", "empty"), "");
    EXPECT_EQ(valueIn("[]\n=nameless\n", nullptr, ""), "nameless");
    EXPECT_EQ(valueIn("", "a", "b"), "<def>");
    EXPECT_EQ(valueIn("\xEF\xBB\xBF[a]\nb=1\n", "a", "b"), "1") << "a byte-order mark";
    EXPECT_EQ(valueIn("\xEF\xBB[a]\nb=1\n", "a", "b"), "<def>") << "half of one";
}

TEST(ProfileText, LongLinesAreCutAndDoNotEndTheScan) {
    const std::string text = "[a]\nlong=" + std::string(20000, 'x') + "\nnext=1\n";
    EXPECT_EQ(valueIn(text, "a", "long"), std::string(8192 - 5, 'x'));
    EXPECT_EQ(valueIn(text, "a", "next"), "1");
}

TEST(ProfileText, TheStreamStandsBehindTheSectionsLine) {
    std::istringstream stream("[a]\nx\n[b]\ny\nz");
    std::string word;
    while (stream >> word)
        ;
    ASSERT_FALSE(stream.good());
    EXPECT_EQ(FindAppName(stream, "B"), 1);
    stream >> word;
    EXPECT_EQ(word, "y");
    EXPECT_EQ(FindAppName(stream, "c"), 0);
}

// Every small size, with a guard behind the buffer.
TEST(ProfileText, OutputsStayInsideTheirSize) {
    std::istringstream stream("[a]\nF3=12345\n=nameless\n;x=1\nCz=\nnot a key\n");
    for (std::size_t size = 1; size < 12; ++size) {
        const auto expectOut = [&](const char* key, const std::string& text) {
            std::string out(16, '#');
            EXPECT_EQ(
                GetLocalProfileString("a", key, "def", out.data(), static_cast<int>(size), stream),
                static_cast<int>(text.size()));
            EXPECT_EQ(out, (text + '\0').append(15 - text.size(), '#'));
        };
        expectOut("f3", std::string("12345").substr(0, size - 1));
        const std::size_t names = size >= 7 ? 2 : size >= 4 ? 1 : 0;
        expectOut(nullptr, std::string("F3\0Cz\0", 6).substr(0, 3 * names));
    }
    char untouched = '#';
    for (const char* key : {"f3", static_cast<const char*>(nullptr)})
        for (const int size : {0, -1, INT_MIN})
            EXPECT_EQ(GetLocalProfileString("a", key, "def", &untouched, size, stream), 0);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(GetLocalProfileString("a", "f3", "", nullptr, 10, stream), 0);
}

TEST(ProfileText, WholeNumbersAreDigitsOnly) {
    const auto read = [](const std::string& value) {
        std::istringstream stream("[a]\nk=" + value + "\r\n");
        return GetLocalProfileInt("a", "k", -7, stream);
    };
    EXPECT_EQ(read("42"), 42);
    EXPECT_EQ(read("0042"), 42);
    for (const char* refused : {"-5", "+5", "1.5", "", " 42", "42 ", "0x10"})
        EXPECT_EQ(read(refused), -7) << refused;
    EXPECT_EQ(read("2147483648"), INT_MAX);
    EXPECT_EQ(read("999999999999999"), INT_MAX);
    EXPECT_EQ(read("000000000000042x"), 42) << "15 characters count";
    std::istringstream stream("[a]\n");
    EXPECT_EQ(GetLocalProfileInt("a", nullptr, -7, stream), -7);
}

TEST(ProfileText, RealNumbersAreReadWhole) {
    const auto read = [](const std::string& value) {
        std::istringstream stream("[a]\nk=" + value + "\n");
        return GetLocalProfileDouble("a", "k", -7.5, stream);
    };
    EXPECT_EQ(read("0.1788139343261719"), 0.1788139343261719);
    EXPECT_EQ(read("-2.5e-3"), -0.0025);
    EXPECT_EQ(read("+256"), 256.0);
    for (const char* refused :
         {"", "1,5", "1.5 uV", " 1", "1 ", "1e", "nan", "inf", "0x1p3", "1e999"})
        EXPECT_EQ(read(refused), -7.5) << refused;
}

TEST(ProfileText, StreamsThatCannotBeReadAreEmpty) {
    std::ifstream folder("/"), missing("no such file");
    std::istream none(nullptr);
    for (std::istream* stream :
         {static_cast<std::istream*>(&folder), static_cast<std::istream*>(&missing), &none}) {
        EXPECT_EQ(FindAppName(*stream, "a"), 0);
        EXPECT_EQ(GetLocalProfileInt("a", "k", 3, *stream), 3);
    }
    std::istringstream throwing("[a]\nk=5");
    throwing.exceptions(std::ios::failbit | std::ios::eofbit);
    throwing >> std::hex >> std::setw(3);
    EXPECT_EQ(GetLocalProfileInt("a", "k", 3, throwing), 5);
    EXPECT_EQ(GetLocalProfileInt("b", "k", 3, throwing), 3);
    EXPECT_TRUE(throwing.flags() & std::ios::hex);
}

} // namespace
} // namespace kvsig
