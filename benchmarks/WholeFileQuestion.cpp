#include "Questions.h"
#include "Reading.h"
#include "StraightFile.h"

namespace kvsig::bench {

Question wholeFileQuestion(const Workload& workload) {
    const StraightFile file(workload.path);
    const double points = static_cast<double>(file.records() * file.pointsPerRecord());
    return {.task = "whole file to floats in 10 s windows, all channels",
            .workload = workload.name + "  " + workload.what,
            .values = points * static_cast<double>(file.channels()),
            .goal = 1.5,
            .contenders = contenders(workload.path, [](Reading& reading) {
                const double end = reading.duration() - windowSeconds;
                for (double start = 0.0; start <= end; start += windowSeconds)
                    reading.window(start, windowSeconds);
            })};
}

} // namespace kvsig::bench
