#include "Trial.h"

#include "support/TempDir.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kvsig::mutants {
namespace {

// Sanitizers end a process with the code 1, as libraries do that give up; both once counted as
// refusals.
TEST(Mutants, OnlyWhatTheLibrarySaysIsARefusal) {
    const test::TempDir dir;
    const auto outcomeOf = [&](const std::function<bool()>& work) {
        return tryIn({"a library", [work](const std::string&) { return work(); }}, "",
                     (dir.path() / "log").string());
    };
    EXPECT_EQ(outcomeOf([] { return true; }), Outcome::opened);
    EXPECT_EQ(outcomeOf([] { return false; }), Outcome::refused);
    EXPECT_EQ(outcomeOf([]() -> bool { ::_exit(1); }), Outcome::crashed);
    EXPECT_EQ(outcomeOf([]() -> bool { std::abort(); }), Outcome::crashed);
}

} // namespace
} // namespace kvsig::mutants
