// How long this library takes for what users ask of it, beside straight loops, plain reading and
// other libraries.
#include "Agreement.h"
#include "KvsigFilters.h"
#include "Questions.h"
#include "Table.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace kvsig::bench {
namespace {

struct Options {
    std::string folder;
    std::string only;
    bool shortSet = false;
    bool list = false;
    bool check = false;
    int repetitions = 5;
};

void listWorkloads(const std::vector<Workload>& all) {
    for (const Workload& workload : all)
        std::printf("%s\t%s\n", workload.path.c_str(), workload.synth.c_str());
}

std::vector<Question> questions(const std::vector<Workload>& all, const Options& options) {
    std::vector<Question> asked;
    const auto askOfEach = [&](auto question) {
        for (const Workload& workload : all)
            asked.push_back(question(workload));
    };
    askOfEach(openQuestion);
    askOfEach(wholeFileQuestion);
    askOfEach([&](const Workload& workload) {
        return randomWindowsQuestion(workload, options.shortSet ? 5 : 500);
    });
    askOfEach(oneChannelQuestion);
    for (auto& questions : {pagingQuestions(all.front()), filterQuestions()})
        asked.insert(asked.end(), questions.begin(), questions.end());
    std::erase_if(asked, [&](const Question& question) {
        return (question.task + ", " + question.workload).find(options.only) == std::string::npos;
    });
    return asked;
}

int run(const Options& options) {
    const std::vector<Workload> all = workloads(options.folder, options.shortSet);
    if (options.list) {
        listWorkloads(all);
        return EXIT_SUCCESS;
    }
    const std::vector<std::string> found = disagreements(all);
    for (const std::string& sentence : found)
        std::fprintf(stderr, "kvsig_bench: %s\n", sentence.c_str());
    if (!found.empty())
        return EXIT_FAILURE;
    std::puts("kvsig and the straight loops give the same floats.");
    if (options.check)
        return EXIT_SUCCESS;

    std::printf("Processor time, medians of %d repetitions in random order. limit: straight loops. "
                "read(): the same bytes, not looked at.\nValues count at the common rate. Peak "
                "memory: beside the caller's buffers.\n",
                options.repetitions);
    prepareMeasuring();
    Table table;
    int failures = 0;
    for (const Question& question : questions(all, options)) {
        const std::vector<Answer> answers = measure(question, options.repetitions);
        table.print(question, answers);
        if (question.pages > 0.0)
            printPagingShares(question, answers);
        for (const Answer& answer : answers)
            failures += answer.error.empty() ? 0 : 1;
    }
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace
} // namespace kvsig::bench

int main(int argc, char** argv) {
    kvsig::bench::Options options;
    CLI::App app("Measures kvsig on recordings of several kinds.");
    app.add_option("folder", options.folder, "Where the recordings are")->required();
    app.add_flag("--short", options.shortSet, "Recordings of the same kinds, much shorter");
    app.add_flag("--list", options.list,
                 "Print the recordings that are needed, each with its options of kvsig synth");
    app.add_flag("--check", options.check, "Only compare the results with the straight loops'");
    app.add_option("--only", options.only, "Ask only what has this in its name");
    app.add_option("--repetitions", options.repetitions, "Repetitions of each measurement")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        return kvsig::bench::run(options);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "kvsig_bench: %s\n", fault.what());
        return EXIT_FAILURE;
    }
}
