#include "Questions.h"
#include "Reading.h"
#include "StraightFile.h"

namespace kvsig::bench {

Question oneChannelQuestion(const Workload& workload) {
    const StraightFile file(workload.path);
    // Where records are long the limit skips nearly all of the file.
    const bool longRecords = file.pointsPerRecord() >= 1000;
    return {.task = "one channel through the file in 10 s windows",
            .workload = workload.name + "  " + workload.what,
            .values = static_cast<double>(file.records() * file.pointsPerRecord()),
            .goal = longRecords ? 4.0 : 2.0,
            .contenders = contenders(workload.path, [](Reading& reading) {
                const double end = reading.duration() - windowSeconds;
                for (double start = 0.0; start <= end; start += windowSeconds)
                    reading.channelWindow(2, start, windowSeconds);
            })};
}

} // namespace kvsig::bench
