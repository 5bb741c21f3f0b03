#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kvsig::bench {

/// The work of one contender, ready to be timed.
struct Work {
    std::function<void()> run;
    /// Called before each run, not timed; may be empty.
    std::function<void()> reset = {};
    /// Bytes of results that the caller holds after a run; may be empty.
    std::function<std::size_t()> callerBytes = {};
};

/// Somebody who can do the work. What prepare() opens is closed with the work that it gives.
struct Contender {
    std::string name;
    std::function<Work()> prepare;
};

/// Names that the table knows: plain reading of the bytes, the straight loops, this library.
inline constexpr const char* plainName = "read()";
inline constexpr const char* limitName = "limit";
inline constexpr const char* kvsigName = "kvsig";

/// One line of what a user asks: how long does this task take on that recording, and for whom.
struct Question {
    std::string task;
    std::string workload; ///< what it works on
    double values = 0.0;  ///< samples delivered by a run, at the common rate
    double pages = 0.0;   ///< pages shown by a run, where that is asked
    int runs = 1;         ///< timed runs of one repetition
    double goal = 0.0;    ///< the most times the limit that this library may take
    std::vector<Contender> contenders;
};

} // namespace kvsig::bench
