#include "KvsigFilters.h"
#include "Peers.h"
#include "Questions.h"

#include <memory>

namespace kvsig::bench {
namespace {

using Signal = std::shared_ptr<std::vector<float>>;

Work inPlace(const Signal& data, std::function<void()> run) {
    return {.run = std::move(run),
            .reset = [data] { *data = filterSignal(); },
            .callerBytes = [data] { return data->size() * sizeof(float); }};
}

} // namespace

std::vector<Question> filterQuestions() {
    std::vector<Question> questions;
    for (const MeasuredFilter& measured : measuredFilters()) {
        const FilterCase& facts = measured.facts;
        const auto filter = measured.filter;
        Question& question = questions.emplace_back();
        question.task = "1,000,000 floats through a filter";
        question.workload = facts.name;
        question.values = static_cast<double>(filterSignal().size());
        question.runs = 5;
        question.goal = measured.goal;
        question.contenders = {
            {limitName,
             [facts] {
                 const auto data = std::make_shared<std::vector<float>>(filterSignal());
                 return inPlace(data, [facts, data] { runStraight(facts, filterSignal(), *data); });
             }},
            {kvsigName, [filter] {
                 const auto data = std::make_shared<std::vector<float>>(filterSignal());
                 return inPlace(data, [filter, data] {
                     filter->apply(data->data(), static_cast<int>(data->size()));
                 });
             }}};
        for (Contender& peer : peerFilters(facts))
            question.contenders.push_back(std::move(peer));
    }
    return questions;
}

} // namespace kvsig::bench
