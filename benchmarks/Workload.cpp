#include "Workload.h"

namespace kvsig::bench {
namespace {

struct Shape {
    const char* name;
    const char* what;
    const char* signals;
    const char* format;
    const char* longDuration;
    const char* shortDuration;
};

constexpr Shape shapes[] = {
    {"A", "EDF 32 ch x 256 Hz", "--channels 32 --rate 256", "edf", "24:00:00", "20:00"},
    {"B", "EDF 128 ch x 2000 Hz", "--channels 128 --rate 2000", "edf", "20:00", "20"},
    {"C", "EDF mixed rates", "--rates 8x512,8x256,6x64,4x1", "edf", "8:00:00", "10:00"},
    {"D", "BDF 72 ch x 2048 Hz", "--channels 72 --rate 2048", "bdf", "10:00", "20"},
    {"E", "EDF+C 24 ch x 200 Hz", "--channels 24 --rate 200", "edf+c", "24:00:00", "20:00"},
};

} // namespace

std::vector<Workload> workloads(const std::string& folder, bool shortSet) {
    std::vector<Workload> all;
    for (const Shape& shape : shapes) {
        const std::string duration = shortSet ? shape.shortDuration : shape.longDuration;
        all.push_back(
            {shape.name, std::string(shape.what) + " x " + duration,
             std::string(shape.signals) + " --format " + shape.format + " --duration " + duration,
             folder + "/" + shape.name + (shortSet ? "-short" : "") +
                 (std::string(shape.format) == "bdf" ? ".bdf" : ".edf")});
    }
    return all;
}

} // namespace kvsig::bench
