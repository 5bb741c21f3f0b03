#pragma once

#include <string>
#include <vector>

namespace kvsig::bench {

/// A made recording that stands for a kind of work.
struct Workload {
    std::string name;  ///< "A"
    std::string what;  ///< for the table
    std::string synth; ///< arguments of kvsig synth, the file name left out
    std::string path;
};

/// The workloads, in the folder where script/bench makes them. The short set has the same shapes
/// at a fraction of the length.
[[nodiscard]] std::vector<Workload> workloads(const std::string& folder, bool shortSet);

} // namespace kvsig::bench
