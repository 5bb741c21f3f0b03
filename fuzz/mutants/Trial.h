#pragma once

#include <functional>
#include <string>

namespace kvsig::mutants {

/// A library that mutants are given to: opens the recording at `path` and reads it as a program
/// does that shows and exports it; false when it refuses the recording.
struct Subject {
    std::string name;
    std::function<bool(const std::string& path)> opensAndReads;
};

enum class Outcome { opened, refused, crashed, hung, greedy };

/// Seconds of processor time that a mutant may take, and kilobytes of resident memory.
inline constexpr unsigned mostSeconds = 5;
inline constexpr long mostKilobytes = 512L << 10;

/// Lets the subject read one file in a process of its own, with its output going to the file `log`.
[[nodiscard]] Outcome tryIn(const Subject& subject, const std::string& path,
                            const std::string& log);

/// Gives `subject` mutants of every recording below a folder and prints a line of counts; mutants
/// that break it are kept with its output. Arguments: COUNT FOLDER KEEP. Returns the exit code: 1
/// when something broke.
[[nodiscard]] int runMutants(const Subject& subject, int count, char** arguments);

} // namespace kvsig::mutants
