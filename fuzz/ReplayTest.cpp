#include "Target.h"
#include "kvsig/registry/ReadableFormats.h"
#include "kvsig/registry/types/FileTypes.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <set>
#include <string>

namespace kvsig::fuzz {
namespace {

namespace fs = std::filesystem;

const fs::path corpusFolder = KVSIG_FUZZ_FOLDER "/corpus";
const fs::path dictionaryFolder = KVSIG_FUZZ_FOLDER "/dictionaries";

std::string bytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A word as dictionaries write it, without its quotes: "\\x0a" is a byte, "\\\\" and "\\"" are
// themselves.
std::string unescaped(const std::string& word) {
    std::string bytes;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] != '\\') {
            bytes += word[i];
        } else if (word.compare(i, 2, "\\x") == 0) {
            bytes += static_cast<char>(std::stoi(word.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            bytes += word[++i];
        }
    }
    return bytes;
}

class Replay : public testing::TestWithParam<Target> {};

// What fuzzing found and what it built on, in every build. A broken contract ends the process.
TEST_P(Replay, SeedsAndCorpusBreakNothing) {
    const Target& target = GetParam();
    EXPECT_FALSE(target.seeds.empty());
    for (const std::string& seed : target.seeds) {
        target.run(seed);
        target.run(std::string_view(seed).substr(0, seed.size() / 2));
    }
    target.run("");
    const fs::path corpus = corpusFolder / target.name;
    if (!fs::exists(corpus))
        return;
    for (const fs::directory_entry& entry : fs::directory_iterator(corpus)) {
        SCOPED_TRACE(entry.path());
        target.run(bytesOf(entry.path()));
    }
}

// The words of a dictionary, each in place of the seed's start and behind its end.
TEST_P(Replay, WordsOfTheDictionaryBreakNothing) {
    const Target& target = GetParam();
    std::ifstream file(dictionaryFolder / (target.dictionary + ".dict"));
    ASSERT_TRUE(file) << target.dictionary;
    const std::string seed = target.seeds.empty() ? std::string() : target.seeds.front();
    for (std::string line; std::getline(file, line);) {
        if (line.size() < 3 || line.front() != '"')
            continue;
        const std::string word = unescaped(line.substr(1, line.size() - 2));
        target.run(word + seed.substr(std::min(word.size(), seed.size())));
        target.run(seed + word);
    }
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Replay, testing::ValuesIn(targets()),
                         [](const auto& target) { return target.param.name; });

TEST(Corpus, HasASeedForEveryReadableFormat) {
    for (const ReadableFormat& format : readableFormats()) {
        const Target* target = findTarget(formatTargetName(format.type));
        ASSERT_NE(target, nullptr)
            << typeNameOf(format.type) << ": a compliance row makes its seed";
        EXPECT_FALSE(target->seeds.empty()) << typeNameOf(format.type);
    }
}

TEST(Corpus, BelongsToKnownTargetsAndStaysSmall) {
    constexpr std::uintmax_t most = 2U << 20U;
    std::uintmax_t bytes = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(corpusFolder)) {
        if (entry.is_directory())
            EXPECT_NE(findTarget(entry.path().filename().string()), nullptr) << entry.path();
        else
            bytes += entry.file_size();
    }
    EXPECT_LT(bytes, most);
}

} // namespace
} // namespace kvsig::fuzz
