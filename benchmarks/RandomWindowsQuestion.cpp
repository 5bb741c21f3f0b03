#include "Questions.h"
#include "Reading.h"
#include "StraightFile.h"

#include <random>

namespace kvsig::bench {

Question randomWindowsQuestion(const Workload& workload, int windows) {
    const StraightFile file(workload.path);
    const double values = windowSeconds / file.recordSeconds() *
                          static_cast<double>(file.pointsPerRecord()) *
                          static_cast<double>(file.channels());
    // Starts are whole seconds, the same for all.
    std::vector<double> starts;
    std::mt19937 random(1);
    const auto choices = static_cast<std::uint32_t>(file.duration() - windowSeconds) + 1;
    for (int i = 0; i < windows; ++i)
        starts.push_back(static_cast<double>(random() % choices));
    return {.task = std::to_string(windows) + " random 10 s windows, all channels",
            .workload = workload.name + "  " + workload.what,
            .values = values * windows,
            .goal = 2.0,
            .contenders = contenders(workload.path, [starts](Reading& reading) {
                for (const double start : starts)
                    reading.window(start, windowSeconds);
            })};
}

} // namespace kvsig::bench
