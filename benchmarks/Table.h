#pragma once

#include "Measure.h"

namespace kvsig::bench {

/// Prints the answers to a question, one line a contender: median time, ratios to the limit and to
/// plain reading, values delivered per second, peak memory. This library's line says whether the
/// goal is met and who is faster. A new task begins with its head line.
class Table {
  public:
    void print(const Question& question, const std::vector<Answer>& answers);

  private:
    void printHead(const std::string& task);

    std::string m_task;
};

/// What the paging table adds: pages per second, and what part of the time goes where.
void printPagingShares(const Question& question, const std::vector<Answer>& answers);

} // namespace kvsig::bench
