#include "FilterCase.h"

#include <complex>
#include <liquid/liquid.h>
#include <memory>

namespace kvsig::bench {
namespace {

using Weights = std::vector<float>;

Work intoOwnBuffer(std::function<void(float* x, float* y, unsigned int count)> run) {
    const auto x = std::make_shared<Weights>(filterSignal());
    const auto y = std::make_shared<Weights>(x->size());
    return {.run = [x, y, run] { run(x->data(), y->data(), static_cast<unsigned int>(x->size())); },
            .callerBytes = [x, y] { return (x->size() + y->size()) * sizeof(float); }};
}

Work direct(Weights weights) {
    const std::shared_ptr<firfilt_rrrf_s> filter(
        firfilt_rrrf_create(weights.data(), static_cast<unsigned int>(weights.size())),
        firfilt_rrrf_destroy);
    return intoOwnBuffer([filter](float* x, float* y, unsigned int count) {
        firfilt_rrrf_execute_block(filter.get(), x, count, y);
    });
}

Work byTransforms(Weights weights) {
    constexpr unsigned int block = 1024;
    const std::shared_ptr<fftfilt_rrrf_s> filter(
        fftfilt_rrrf_create(weights.data(), static_cast<unsigned int>(weights.size()), block),
        fftfilt_rrrf_destroy);
    return intoOwnBuffer([filter](float* x, float* y, unsigned int count) {
        for (unsigned int i = 0; i + block <= count; i += block)
            fftfilt_rrrf_execute(filter.get(), x + i, y + i);
    });
}

Work recursive(Weights numerator, const Weights& feedback) {
    Weights denominator{1.0F};
    for (std::size_t i = 1; i < feedback.size(); ++i)
        denominator.push_back(-feedback[i]);
    const std::shared_ptr<iirfilt_rrrf_s> filter(
        iirfilt_rrrf_create(numerator.data(), static_cast<unsigned int>(numerator.size()),
                            denominator.data(), static_cast<unsigned int>(denominator.size())),
        iirfilt_rrrf_destroy);
    return intoOwnBuffer([filter](float* x, float* y, unsigned int count) {
        iirfilt_rrrf_execute_block(filter.get(), x, count, y);
    });
}

} // namespace

std::vector<Contender> liquidFilters(const FilterCase& filter) {
    if (filter.denominator.empty())
        return {{"liquid-dsp", [filter] { return direct(filter.numerator); }},
                {"liquid-dsp, FFT", [filter] { return byTransforms(filter.numerator); }}};
    return {{"liquid-dsp", [filter] { return recursive(filter.numerator, filter.denominator); }}};
}

} // namespace kvsig::bench
