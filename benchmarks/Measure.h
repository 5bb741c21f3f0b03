#pragma once

#include "Question.h"

#include <string>
#include <vector>

namespace kvsig::bench {

/// What one contender needed.
struct Answer {
    std::string name;
    double seconds = 0.0;   ///< of one run: median over the repetitions
    double highest = 0.0;   ///< the slowest repetition
    long peakBytes = -1;    ///< see peakMemory()
    std::string error = {}; ///< why there is no time
};

/// Times all contenders of a question in turn, repetition by repetition in random order. Times are
/// processor time of the thread, so that what else the machine does disturbs less.
[[nodiscard]] std::vector<Answer> measure(const Question& question, int repetitions);

/// To be called once, before.
void prepareMeasuring();

} // namespace kvsig::bench
