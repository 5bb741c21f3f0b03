#include "Measure.h"

#include "PeakMemory.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <exception>

namespace kvsig::bench {
namespace {

void timeContender(benchmark::State& state, const Contender& contender) {
    try {
        const Work work = contender.prepare();
        for ([[maybe_unused]] auto run : state) {
            if (work.reset) {
                state.PauseTiming();
                work.reset();
                state.ResumeTiming();
            }
            work.run();
        }
    } catch (const std::exception& fault) {
        state.SkipWithError(fault.what());
    }
}

// Keeps the times of each contender's repetitions.
class Collector final : public benchmark::BenchmarkReporter {
  public:
    struct Times {
        std::vector<double> seconds;
        std::string error;
    };

    explicit Collector(std::size_t contenders) : m_times(contenders) {}
    [[nodiscard]] const Times& times(std::size_t contender) const { return m_times[contender]; }

    bool ReportContext(const Context& /*context*/) override { return true; }
    void ReportRuns(const std::vector<Run>& report) override {
        for (const Run& run : report) {
            Times& times = m_times[std::stoul(run.run_name.function_name)];
            if (run.error_occurred)
                times.error = run.error_message;
            else if (run.run_type == Run::RT_Iteration)
                times.seconds.push_back(run.cpu_accumulated_time /
                                        static_cast<double>(run.iterations));
        }
    }

  private:
    std::vector<Times> m_times;
};

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t half = values.size() / 2;
    return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2.0;
}

} // namespace

void prepareMeasuring() {
    std::string words[] = {"kvsig_bench", "--benchmark_enable_random_interleaving=true"};
    char* arguments[] = {words[0].data(), words[1].data()};
    int count = 2;
    benchmark::Initialize(&count, arguments);
}

std::vector<Answer> measure(const Question& question, int repetitions) {
    std::vector<Answer> answers;
    for (const Contender& contender : question.contenders)
        answers.push_back({.name = contender.name, .peakBytes = peakMemory(contender)});

    benchmark::ClearRegisteredBenchmarks();
    for (std::size_t i = 0; i < question.contenders.size(); ++i)
        benchmark::RegisterBenchmark(
            std::to_string(i).c_str(),
            [&question, i](auto& state) { timeContender(state, question.contenders[i]); })
            ->Iterations(question.runs)
            ->Repetitions(repetitions);
    Collector collector(answers.size());
    benchmark::RunSpecifiedBenchmarks(&collector, ".");

    for (std::size_t i = 0; i < answers.size(); ++i) {
        const Collector::Times& times = collector.times(i);
        answers[i].error = times.error;
        if (!times.seconds.empty()) {
            answers[i].seconds = median(times.seconds);
            answers[i].highest = *std::max_element(times.seconds.begin(), times.seconds.end());
        } else if (times.error.empty()) {
            answers[i].error = "no time";
        }
    }
    return answers;
}

} // namespace kvsig::bench
