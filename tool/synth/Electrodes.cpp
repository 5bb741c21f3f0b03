#include "tool/synth/Electrodes.h"

#include "tool/synth/StableMath.h"

#include <array>
#include <cmath>
#include <string_view>

namespace kvsig::tool {
namespace {

struct Place {
    std::string_view name;
    float x;
    float y;
};

constexpr std::size_t ecgIndex = 21;

// The rows of the 10-10 system cross the midline every 18 degrees and meet the circle at 72
// degrees from Cz in steps of 18 degrees of azimuth; between these two ends places are equidistant.
constexpr auto places = std::to_array<Place>(
    {{"Fp1", -0.25F, 0.76F},  {"Fp2", 0.25F, 0.76F},   {"F7", -0.65F, 0.47F},
     {"F3", -0.32F, 0.44F},   {"Fz", 0.00F, 0.40F},    {"F4", 0.32F, 0.44F},
     {"F8", 0.65F, 0.47F},    {"T3", -0.80F, 0.00F},   {"C3", -0.40F, 0.00F},
     {"Cz", 0.00F, 0.00F},    {"C4", 0.40F, 0.00F},    {"T4", 0.80F, 0.00F},
     {"T5", -0.65F, -0.47F},  {"P3", -0.32F, -0.44F},  {"Pz", 0.00F, -0.40F},
     {"P4", 0.32F, -0.44F},   {"T6", 0.65F, -0.47F},   {"O1", -0.25F, -0.76F},
     {"O2", 0.25F, -0.76F},   {"A1", -1.00F, -0.10F},  {"A2", 1.00F, -0.10F},
     {"ECG", 0, 0},           {"Fpz", 0.00F, 0.80F},   {"Oz", 0.00F, -0.80F},
     {"AF7", -0.47F, 0.65F},  {"AF3", -0.24F, 0.62F},  {"AFz", 0.00F, 0.60F},
     {"AF4", 0.24F, 0.62F},   {"AF8", 0.47F, 0.65F},   {"F5", -0.49F, 0.45F},
     {"F1", -0.16F, 0.42F},   {"F2", 0.16F, 0.42F},    {"F6", 0.49F, 0.45F},
     {"FT7", -0.76F, 0.25F},  {"FC5", -0.57F, 0.24F},  {"FC3", -0.38F, 0.22F},
     {"FC1", -0.19F, 0.21F},  {"FCz", 0.00F, 0.20F},   {"FC2", 0.19F, 0.21F},
     {"FC4", 0.38F, 0.22F},   {"FC6", 0.57F, 0.24F},   {"FT8", 0.76F, 0.25F},
     {"C5", -0.60F, 0.00F},   {"C1", -0.20F, 0.00F},   {"C2", 0.20F, 0.00F},
     {"C6", 0.60F, 0.00F},    {"TP7", -0.76F, -0.25F}, {"CP5", -0.57F, -0.24F},
     {"CP3", -0.38F, -0.22F}, {"CP1", -0.19F, -0.21F}, {"CPz", 0.00F, -0.20F},
     {"CP2", 0.19F, -0.21F},  {"CP4", 0.38F, -0.22F},  {"CP6", 0.57F, -0.24F},
     {"TP8", 0.76F, -0.25F},  {"P5", -0.49F, -0.45F},  {"P1", -0.16F, -0.42F},
     {"P2", 0.16F, -0.42F},   {"P6", 0.49F, -0.45F},   {"PO7", -0.47F, -0.65F},
     {"PO3", -0.24F, -0.62F}, {"POz", 0.00F, -0.60F},  {"PO4", 0.24F, -0.62F},
     {"PO8", 0.47F, -0.65F},  {"F9", -0.78F, 0.48F},   {"F10", 0.78F, 0.48F},
     {"FT9", -0.91F, 0.26F},  {"FT10", 0.91F, 0.26F},  {"TP9", -0.91F, -0.26F},
     {"TP10", 0.91F, -0.26F}, {"P9", -0.78F, -0.48F},  {"P10", 0.78F, -0.48F}});
static_assert(places[ecgIndex].name == "ECG");

// The spiral that a sunflower's seeds follow: every count of points covers the scalp evenly.
Electrode spiralPlace(std::size_t index) {
    constexpr double goldenAngle = 2.39996322972865332;
    const double turns = static_cast<double>(index);
    const double radius = 0.8 * std::sqrt((static_cast<double>(index % 128) + 0.5) / 128);
    return {"E" + std::to_string(index + 1),
            static_cast<float>(radius * stableCos(goldenAngle * turns)),
            static_cast<float>(radius * stableSin(goldenAngle * turns)), false};
}

} // namespace

Electrode electrodeAt(std::size_t index) {
    if (index >= places.size())
        return spiralPlace(index);
    const Place& place = places[index];
    return {std::string(place.name), place.x, place.y, index == ecgIndex};
}

float distanceBetween(float x1, float y1, float x2, float y2) {
    return std::sqrt((x1 - x2) * (x1 - x2) + (y1 - y2) * (y1 - y2));
}

} // namespace kvsig::tool
