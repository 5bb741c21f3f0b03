#include "KvsigFilters.h"

#include "KvsigWeights.h"
#include "kvsig/kvsig.h"

#include <cmath>
#include <random>
#include <utility>

namespace kvsig::bench {
namespace {

constexpr double rate = 256.0; // hertz

MeasuredFilter measured(std::string name, std::shared_ptr<Filter> filter, double goal) {
    FilterCase facts{.name = std::move(name), .numerator = {}, .denominator = {}};
    for (int i = 0; i < filter->nNumerWeights(); ++i)
        facts.numerator.push_back(static_cast<float>(filter->getNumerWeight(i)));
    for (int i = 0; i < filter->nDenomWeights(); ++i)
        facts.denominator.push_back(static_cast<float>(filter->getDenomWeight(i)));
    return {std::move(filter), std::move(facts), goal};
}

MeasuredFilter fir(int taps) {
    constexpr double attenuation = 60.0;
    auto filter = std::make_shared<FIRLowPass>();
    // Kaiser's estimate of the length, the other way round.
    filter->design(30.0 / rate, (attenuation - 8.0) / (14.357 * (taps + 0.5)), attenuation);
    return measured("FIR, " + std::to_string(filter->nNumerWeights()) + " taps", filter, 2.0);
}

} // namespace

std::vector<MeasuredFilter> measuredFilters() {
    auto highPass = std::make_shared<IIRHighPass>();
    highPass->design(1.0 / rate, 0.0, 0.0);
    auto notch = std::make_shared<IIRNotch>();
    notch->design(60.0 / rate, notchWidthFrequency(60.0, 1.0, rate) / rate, 0.0);
    return {fir(45), fir(255), measured("first-order IIR", highPass, 1.3),
            measured("notch", notch, 1.3)};
}

const std::vector<float>& filterSignal() {
    static const std::vector<float> signal = [] {
        std::vector<float> values(1'000'000);
        std::mt19937 random(1);
        for (std::size_t i = 0; i < values.size(); ++i)
            values[i] = static_cast<float>(random() % 1000) * 0.1F +
                        20.0F * std::sin(1.4726F * static_cast<float>(i % 256));
        return values;
    }();
    return signal;
}

void runStraight(const FilterCase& filter, const std::vector<float>& signal,
                 std::vector<float>& out) {
    const auto count = static_cast<std::int64_t>(signal.size());
    const auto numerator = [&](std::size_t i) {
        return i < filter.numerator.size() ? filter.numerator[i] : 0.0F;
    };
    const auto denominator = [&](std::size_t i) {
        return i < filter.denominator.size() ? filter.denominator[i] : 0.0F;
    };
    const Recurrence weights{numerator(0), numerator(1), numerator(2), denominator(1),
                             denominator(2)};
    switch (filter.denominator.size()) {
    case 0:
        straightFir(filter.numerator.data(), static_cast<std::int64_t>(filter.numerator.size()),
                    signal.data(), count, out.data());
        break;
    case 2:
        straightFirstOrder(weights, out.data(), count);
        break;
    default:
        straightSecondOrder(weights, out.data(), count);
        break;
    }
}

} // namespace kvsig::bench
