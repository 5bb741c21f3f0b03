#include "Table.h"

#include "Paging.h"
#include "Questions.h"

#include <algorithm>
#include <cstdio>

namespace kvsig::bench {
namespace {

double secondsOf(const std::vector<Answer>& answers, const std::string& name) {
    const auto found = std::find_if(answers.begin(), answers.end(),
                                    [&](const Answer& answer) { return answer.name == name; });
    return found == answers.end() ? 0.0 : found->seconds;
}

std::string formatted(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string timeText(double seconds) {
    if (seconds < 1e-3)
        return formatted("%.1f us", seconds * 1e6);
    return seconds < 1.0 ? formatted("%.2f ms", seconds * 1e3) : formatted("%.2f s ", seconds);
}

std::string ratioText(double seconds, double base) {
    return base > 0.0 ? formatted("%.2f", seconds / base) : "";
}

std::string verdict(const Question& question, const std::vector<Answer>& answers) {
    const double own = secondsOf(answers, kvsigName);
    const bool met = own <= question.goal * secondsOf(answers, limitName);
    std::string text = formatted("<= %.1f ", question.goal) + (met ? "met" : "missed");
    for (const Answer& answer : answers) {
        const bool peer = !answer.name.starts_with(kvsigName) && answer.name != limitName &&
                          answer.name != plainName;
        if (peer && answer.error.empty() && answer.seconds < own)
            text += ", behind " + answer.name;
    }
    return text;
}

} // namespace

void Table::printHead(const std::string& task) {
    std::printf("\n%s\n%-36s  %-20s  %10s  %10s  %7s  %8s  %9s  %8s  %s\n", task.c_str(), "on",
                "by", "median", "slowest", "x limit", "x read()", "Mvalues/s", "peak MiB", "goal");
    m_task = task;
}

void Table::print(const Question& question, const std::vector<Answer>& answers) {
    if (question.task != m_task)
        printHead(question.task);
    for (const Answer& answer : answers) {
        if (!answer.error.empty()) {
            std::printf("%-36s  %-20s  %s\n", question.workload.c_str(), answer.name.c_str(),
                        answer.error.c_str());
            continue;
        }
        const bool counts = question.values > 0.0 && answer.name != plainName;
        std::printf(
            "%-36s  %-20s  %10s  %10s  %7s  %8s  %9s  %8s  %s\n", question.workload.c_str(),
            answer.name.c_str(), timeText(answer.seconds).c_str(), timeText(answer.highest).c_str(),
            ratioText(answer.seconds, secondsOf(answers, limitName)).c_str(),
            ratioText(answer.seconds, secondsOf(answers, plainName)).c_str(),
            counts ? formatted("%.1f", question.values / answer.seconds / 1e6).c_str() : "",
            answer.peakBytes < 0
                ? ""
                : formatted("%.1f", static_cast<double>(answer.peakBytes) / (1 << 20)).c_str(),
            answer.name == kvsigName ? verdict(question, answers).c_str() : "");
    }
    std::fflush(stdout);
}

void printPagingShares(const Question& question, const std::vector<Answer>& answers) {
    const double all = secondsOf(answers, kvsigName);
    const double reading = secondsOf(answers, channelsOnlyName);
    const double unfiltered = secondsOf(answers, unfilteredName);
    if (!(all > 0.0) || !(reading > 0.0) || !(unfiltered > 0.0))
        return;
    std::printf("kvsig: %.0f pages/s; reading %.0f %%, deriving %.0f %%, filtering and caching "
                "%.0f %%\n",
                question.pages / all, 100.0 * reading / all, 100.0 * (unfiltered - reading) / all,
                100.0 * (all - unfiltered) / all);
}

} // namespace kvsig::bench
